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

TEST(Golden, ContainersHoldWhatTheyHeld) {
    StorageRW narrow(golden("hello32.st"), kStorageLayout32);
    EXPECT_EQ(test::contents(narrow), (Model{{u"a.txt", text("Hello")}}));
    StorageRW wide(golden("names64.st"), kStorageLayout64);
    const Bytes content = text("content");
    EXPECT_EQ(test::contents(wide), (Model{{u"", content},
                                           {u"A", content},
                                           {u"a", content},
                                           {u"empty", {}},
                                           {u"long", Bytes(1300, std::byte{'x'})},
                                           {u"Имя", content}}));
    for (StorageRW* storage : {&narrow, &wide}) {
        for (const StorageFound& found : storage->find())
            EXPECT_EQ(found.modified, Date(2024, 1, 2, 12));
        EXPECT_TRUE(storage->check().isClean());
        storage->put(u"new", content);
        EXPECT_TRUE(storage->check().isClean());
    }
}

TEST(Golden, TheDumpInTheDescriptionIsTheFile) {
    const Bytes bytes = read_whole(*golden("hello32.st"));
    std::ifstream page(kRoot + "/docs/container-format.md");
    int lines = 0;
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("    0000", 0) != 0 || line.find('|') == std::string::npos)
            continue;
        ++lines;
        std::istringstream fields(line.substr(0, line.find('|')));
        std::size_t address = 0;
        fields >> std::hex >> address;
        for (unsigned byte = 0; fields >> byte; ++address)
            ASSERT_EQ(bytes.at(address), static_cast<std::byte>(byte)) << line;
    }
    EXPECT_EQ(lines, 20);
}

} // namespace
} // namespace core
