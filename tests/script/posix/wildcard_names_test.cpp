// SPDX-License-Identifier: Apache-2.0
#include "tests/script/script_fixture.h"
#include "tests/support/new_folder.h"

#include <filesystem>

namespace core::script {
namespace {

namespace fs = std::filesystem;

TEST(FileNames, WithAWildcardAreShownAsUrls) {
    const fs::path before = fs::current_path();
    const fs::path folder = support::new_folder("wildcards");
    fs::current_path(folder);
    EXPECT_EQ(Session().run("SaveText(\"в*.txt\", \"\"); Print(FindFiles(\"в*\")[0].Path)"),
              "file://%D0%B2%2A.txt");
    fs::current_path(before);
    fs::remove_all(folder);
}

} // namespace
} // namespace core::script
