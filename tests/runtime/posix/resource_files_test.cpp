// SPDX-License-Identifier: Apache-2.0
// Where the texts of the library are found, and bundles that the tools of this machine build.
#include "tests/support/new_folder.h"

#include <core/runtime.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace core {
namespace {

TEST(ResourceBundle, LiesBesideTheLibraryThatALinkLeadsTo) {
    Dl_info library{};
    ASSERT_NE(dladdr(reinterpret_cast<const void*>(&library_main), &library), 0);
    const std::filesystem::path file = library.dli_fname;
    const std::filesystem::path folder = support::new_folder("link");
    std::filesystem::create_symlink(std::filesystem::canonical(file), folder / file.filename());
    const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
    EXPECT_EQ(std::system(("LD_LIBRARY_PATH='" + folder.string() + "' '" + program +
                           "' --gtest_filter=ResourceBundle.Speaks* >/dev/null")
                              .c_str()),
              0);
    std::filesystem::remove_all(folder);
}

TEST(Resources, BytesOfTheMostSpecificBundle) {
    const std::filesystem::path folder = support::new_folder("bundle");
    std::filesystem::create_directories(folder / "messages");
    const auto make = [&](const char* locale, const char* bytes) {
        const std::string source = (folder / locale).string() + ".txt";
        std::ofstream(source) << locale << " { X:bin { " << bytes << " } }";
        std::string command = "genrb -q -d " + (folder / "messages").string() + " " + source;
        if constexpr (std::endian::native == std::endian::big) { // the tool may be that of another machine
            const std::string built = (folder / "messages" / locale).string() + ".res";
            command += " && icupkg -tb " + built + " " + source + " && mv " + source + " " + built;
        }
        return std::system(command.c_str());
    };
    ASSERT_EQ(make("root", "00ff10"), 0);
    ASSERT_EQ(make("ru", "07"), 0);
    SCOM_ResourceBundle bundle(folder.c_str());
    const auto bytes = [&](const char* locale) {
        const auto found = bundle.getBinary("X", Locale(locale));
        return std::vector<std::byte>(found.begin(), found.end());
    };
    EXPECT_EQ(bytes("de"), (std::vector{std::byte{0}, std::byte{0xFF}, std::byte{0x10}}));
    EXPECT_EQ(bytes("ru_RU"), std::vector{std::byte{7}});
    EXPECT_TRUE(bundle.getBinary("Y", Locale("ru")).empty());
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace core
