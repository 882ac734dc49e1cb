// SPDX-License-Identifier: Apache-2.0
#include "tests/profiles/profile_fixture.h"
#include "tests/support/environment.h"

namespace core::test {
namespace {

using ConfigFolders = ProfileTest;

TEST_F(ConfigFolders, AreThoseOfTheEnvironment) {
    const support::EnvironmentVariable users("APPDATA", file("config").c_str());
    const support::EnvironmentVariable systems("PROGRAMDATA", file("etc").c_str());
    const host::HostProcess process;
    auto& profile = require_service<IProfile>();
    EXPECT_EQ(file_path(profile.fileOf(ProfileLayer::user)), file("config/core/settings.list"));
    EXPECT_EQ(file_path(profile.fileOf(ProfileLayer::system)), file("etc/core/settings.list"));
    profile.set(u"a", 1);
    EXPECT_TRUE(std::filesystem::exists(file("config/core/settings.list")));
}

} // namespace
} // namespace core::test
