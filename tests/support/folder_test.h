// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/new_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace host {

inline std::string text_of(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Has a folder of its own.
class FolderTest : public testing::Test {
  protected:
    ~FolderTest() override { std::filesystem::remove_all(folder_); }

    [[nodiscard]] const std::filesystem::path& folder() const noexcept { return folder_; }
    [[nodiscard]] std::string path(const std::string& name) const {
        return (folder_ / name).generic_string();
    }
    /// Writes a file and returns its path.
    [[nodiscard]] std::string file(const std::string& name, std::string_view text) const {
        std::ofstream(folder_ / name, std::ios::binary) << text;
        return path(name);
    }

  private:
    std::filesystem::path folder_ = support::new_folder("corehost");
};

} // namespace host
