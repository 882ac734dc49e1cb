// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/new_folder.h"

#include <core/files.h>
#include <core/runtime.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace core::test {

inline std::span<const std::byte> bytes_of(std::string_view text) {
    return std::as_bytes(std::span(text));
}

inline std::string text_of(IFile& file) {
    const std::vector<std::byte> bytes = read_whole(file);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// A folder of its own for a test, gone at the end.
class TempFolder {
  public:
    explicit TempFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path())
        : path_(support::new_folder("core-test", parent).generic_string()) {}
    ~TempFolder() { std::filesystem::remove_all(path_); }
    [[nodiscard]] std::string operator/(std::string_view name) const {
        return path_ + "/" + std::string(name);
    }

  private:
    std::string path_;
};

/// The system's reason in the FileException that `call` throws, 0 for none. Its message names the file.
template <class Call>
int reason_of(Call call) {
    try {
        call();
    } catch (const FileException& e) {
        EXPECT_NE(e.description().find(shown_url(e.url())), wstring::npos) << e.what();
        return e.systemError();
    }
    return 0;
}

} // namespace core::test
