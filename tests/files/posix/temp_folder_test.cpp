// SPDX-License-Identifier: Apache-2.0
#include "tests/support/environment.h"
#include "tests/support/file_helpers.h"

namespace core {
namespace {

using support::EnvironmentVariable;
using support::kTemporaryFolder;

TEST(TempFileService, TakesTheSystemsFolderWhenThereIsNoOther) {
    const test::TempFolder folder;
    const auto folder_of_new = [] {
        const std::string path = file_path(create_temp_file_service()->createNamed());
        std::filesystem::remove(path);
        return std::filesystem::path(path).parent_path().string();
    };
    {
        const EnvironmentVariable own(kTemporaryFolder, (folder / "").c_str());
        EXPECT_EQ(folder_of_new() + "/", folder / "");
    }
    const EnvironmentVariable missing(kTemporaryFolder, (folder / "missing").c_str());
    EXPECT_EQ(folder_of_new(), "/tmp");
}

} // namespace
} // namespace core
