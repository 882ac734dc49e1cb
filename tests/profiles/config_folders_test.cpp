// SPDX-License-Identifier: Apache-2.0
#include "tests/profiles/profile_fixture.h"
#include "tests/support/environment.h"

namespace core::test {
namespace {

using ConfigFolders = ProfileTest;

TEST_F(ConfigFolders, AreThoseOfTheEnvironment) {
    const bool isList = support::kSystemConfigFolder == std::string_view("XDG_CONFIG_DIRS");
    const std::string folders = file("etc") + (isList ? ":/elsewhere" : "");
    const support::EnvironmentVariable users(support::kUserConfigFolder, file("config").c_str());
    const support::EnvironmentVariable systems(support::kSystemConfigFolder, folders.c_str());
    const host::HostProcess process;
    auto& profile = require_service<IProfile>();
    EXPECT_EQ(file_path(profile.fileOf(ProfileLayer::user)), file("config/core/settings.list"));
    EXPECT_EQ(file_path(profile.fileOf(ProfileLayer::system)), file("etc/core/settings.list"));
    profile.set(u"a", 1);
    EXPECT_TRUE(std::filesystem::exists(file("config/core/settings.list")));
}

} // namespace
} // namespace core::test
