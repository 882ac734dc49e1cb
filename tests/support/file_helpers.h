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
    ~TempFolder() {
        std::error_code left; // names that are too long for the standard library of some systems
        std::filesystem::remove_all(path_, left);
    }
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

/// Whether system and disk put another file in the place of one that is open; makes the file and removes it.
inline bool replaces_open_files(const std::string& path) {
    const auto system = create_file_system();
    const wstring url = file_url(path);
    (void)system->openURL(url, OpenMode::createNew)->close();
    bool done = true;
    {
        const auto open = system->openURL(url, OpenMode::read);
        try {
            system->writeFile(url, [](IFile&) {});
        } catch (const FileException&) {
            done = false;
        }
    }
    system->remove(url);
    return done;
}

} // namespace core::test
