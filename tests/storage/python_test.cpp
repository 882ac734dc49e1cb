// SPDX-License-Identifier: Apache-2.0
// The format as somebody else reads and writes it, who has only its description: tests/storage/container.py.
#include "tests/support/storage_fixture.h"

#include <core/runtime/utf8.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace core {
namespace {

using test::Bytes;
using test::Model;

std::string hexadecimal(std::span<const std::byte> bytes) {
    std::string text;
    for (const std::byte b : bytes) {
        text.push_back("0123456789abcdef"[std::to_integer<int>(b) >> 4]);
        text.push_back("0123456789abcdef"[std::to_integer<int>(b) & 15]);
    }
    return text.empty() ? "-" : text;
}

/// What container.py says of a container that holds what the library finds in it.
std::string listing(const StorageRW& storage) {
    std::ostringstream lines;
    for (const StorageFound& found : storage.find()) {
        lines << hexadecimal(std::as_bytes(std::span(found.name))) << ' ' << found.created.ticks() << ' '
              << found.modified.ticks() << ' ' << hexadecimal(storage.get(found.name)) << '\n';
    }
    return lines.str();
}

class Python : public test::InBothLayouts {
  protected:
    void SetUp() override {
        if (std::system("python3 -c ''") != 0)
            GTEST_SKIP() << "no Python";
    }
    ~Python() override {
        std::filesystem::remove(container_);
        std::filesystem::remove(lines_);
    }
    [[nodiscard]] bool run(const std::string& command, const std::string& more) const {
        const std::string call = "python3 -B " CORE_SOURCE_DIR "/tests/storage/container.py " + command +
                                 " " + container_ + " " + (layout_.width == 4 ? "32 " : "64 ") + more;
        return std::system(call.c_str()) == 0;
    }
    [[nodiscard]] std::string lines() const {
        std::ostringstream text;
        text << std::ifstream(lines_).rdbuf();
        return text.str();
    }

    const std::string container_ = file_path(create_temp_file_service()->createNamed());
    const std::string lines_ = container_ + ".txt";
};
INSTANTIATE_TEST_SUITE_P(Layouts, Python, test::kBothLayouts, test::name_of_layout);

TEST_P(Python, ReadsWhatTheLibraryWrote) {
    StorageRW::create(*open_disk_file(container_, OpenMode::readWrite), layout_);
    StorageRW storage(open_disk_file(container_, OpenMode::readWrite), layout_);
    test::Random random(29);
    Model model;
    for (int round = 0; round < 4; ++round) {
        ASSERT_TRUE(run("list", ">" + lines_)) << "round " << round;
        ASSERT_EQ(lines(), listing(storage)) << "round " << round;
        for (int i = 0; i < 8; ++i)
            test::change(random, storage, model);
    }
}

TEST_P(Python, WritesWhatTheLibraryReadsAndChanges) {
    test::Random random(31);
    for (int round = 1; round <= 3; ++round) {
        Model model;
        std::ofstream input(lines_);
        for (std::size_t i = random.below(12); i > 0; --i)
            model[random.name()] = random.bytes(random.size());
        for (const auto& [name, content] : model)
            input << hexadecimal(std::as_bytes(std::span(name))) << " 12 345678 " << hexadecimal(content)
                  << '\n';
        input.close();
        ASSERT_TRUE(run("make", std::to_string(round) + " <" + lines_));
        StorageRW storage(open_disk_file(container_, OpenMode::readWrite), layout_);
        for (const StorageProblem& problem : storage.check().problems)
            ADD_FAILURE() << to_utf8(problem.text());
        ASSERT_EQ(test::contents(storage), model);
        EXPECT_EQ(storage.changeCounter(), 41U);
        for (int i = 0; i < 12; ++i)
            test::change(random, storage, model);
        storage.compact();
        EXPECT_TRUE(storage.check().isClean());
        EXPECT_EQ(test::contents(storage), model);
    }
}

} // namespace
} // namespace core
