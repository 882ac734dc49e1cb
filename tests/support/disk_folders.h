// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/file_helpers.h"

#include <fstream>
#include <string>

namespace core::test {

/// A folder of its own for each test, with the file system.
class DiskFolders : public testing::Test {
  protected:
    [[nodiscard]] std::string path(const std::string& name) const { return folder_ / name; }
    [[nodiscard]] wstring url(const std::string& name) const { return file_url(path(name)); }
    void write(const std::string& name, std::size_t size) const {
        std::ofstream(path(name), std::ios::binary) << std::string(size, 'x');
    }

    const TempFolder folder_;
    InterfacePtr<IFileSystem> system_ = create_file_system();
};

} // namespace core::test
