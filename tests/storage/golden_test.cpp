// SPDX-License-Identifier: Apache-2.0
// Containers written once and kept for ever: what holds them today must read them always.
#include "tests/support/storage_model.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace core {
namespace {

using test::Bytes;
using test::Model;

const std::string kRoot = CORE_SOURCE_DIR;

Bytes text(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

/// A copy in memory, so that nothing can be done to the original.
InterfacePtr<IFile> golden(const std::string& name) {
    auto copy = open_memory_file(create_memory_data());
    copy_bytes(*open_disk_file(kRoot + "/tests/storage/golden/" + name, OpenMode::read), *copy);
    return copy;
}

/// One that was made by the library of its day: what it holds, whole, and it can be changed and compacted.
void expect_held(const std::string& name, const StorageLayout& layout, Model model) {
    StorageRW storage(golden(name), layout);
    EXPECT_TRUE(test::contents(storage) == model) << name;
    for (const StorageFound& found : storage.find()) {
        EXPECT_EQ(found.created, Date(2024, 1, 2));
        EXPECT_EQ(found.modified, Date(2024, 1, 2, 12));
    }
    EXPECT_TRUE(storage.check().isClean()) << name;
    storage.put(u"new", model[u"new"] = text("content"));
    EXPECT_TRUE(storage.check().isClean()) << name;
    storage.compact();
    EXPECT_TRUE(storage.check().isClean()) << name;
    EXPECT_TRUE(test::contents(storage) == model) << name;
}

TEST(Golden, ContainersHoldWhatTheyHeld) {
    const Bytes content = text("content");
    for (const std::string table : {"", "-tree"}) {
        expect_held("hello32" + table + ".st", kStorageLayout32, {{u"a.txt", text("Hello")}});
        expect_held("names64" + table + ".st", kStorageLayout64,
                    {{u"", content},
                     {u"A", content},
                     {u"a", content},
                     {u"empty", {}},
                     {u"long", Bytes(1300, std::byte{'x'})},
                     {u"Имя", content}});
    }
    Model deep; // more than one node in the tree, and holes
    for (int i = 0; i < 14; ++i) {
        if (i % 3 != 0)
            deep[wstring(300, u'n') + static_cast<wchar>(u'a' + i % 26) + static_cast<wchar>(u'0' + i / 26)] =
                text(std::to_string(i));
    }
    expect_held("deep32-tree.st", kStorageLayout32, deep);
}

TEST(Golden, TheDumpsInTheDescriptionAreTheFiles) {
    const Bytes files[] = {read_whole(*golden("hello32.st")), read_whole(*golden("hello32-tree.st"))};
    std::size_t file = 0;
    std::ifstream page(kRoot + "/docs/container-format.md");
    int lines = 0;
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("    0000", 0) != 0 || line.find('|') == std::string::npos)
            continue;
        if (lines++ != 0 && line.rfind("    00000000", 0) == 0) {
            ASSERT_LT(++file, std::size(files));
        }
        const Bytes& bytes = files[file];
        std::istringstream fields(line.substr(0, line.find('|')));
        std::size_t address = 0;
        fields >> std::hex >> address;
        for (unsigned byte = 0; fields >> byte; ++address)
            ASSERT_EQ(bytes.at(address), static_cast<std::byte>(byte)) << line;
    }
    EXPECT_GE(lines, 20);
    EXPECT_EQ(file, 1U) << "one of each table layout";
}

} // namespace
} // namespace core
