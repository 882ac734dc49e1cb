// SPDX-License-Identifier: Apache-2.0
// Folders of the disk, as on every system: made, removed, copied and moved whole or not at all.
#include "tests/support/disk_folders.h"

#include <cerrno>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <string>

namespace core {
namespace {

namespace fs = std::filesystem;

using test::reason_of;
using test::TempFolder;

/// Everything below a folder, by path: the content of files.
using Snapshot = std::map<std::u16string, std::string>;

Snapshot snapshot(const std::string& folder) {
    Snapshot all;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        std::string& shown = all[fs::relative(entry.path(), folder).generic_u16string()];
        shown = entry.is_directory() ? "folder" : "file ";
        if (!entry.is_directory()) {
            std::ifstream file(entry.path(), std::ios::binary);
            shown.append(std::istreambuf_iterator<char>(file), {});
        }
    }
    return all;
}

class Folders : public test::DiskFolders {
  protected:
    /// A folder "from" with files and folders, one of them empty.
    void fill() const {
        fs::create_directories(path("from/b c/50%"));
        fs::create_directories(fs::path(path("from")) / u"\u0436");
        fs::create_directories(path("other"));
        write("from/b c/50%/deep", 70'000);
        write("from/empty", 0);
        write("outside", 10);
    }
};

TEST_F(Folders, AreMadeWithThoseAboveOrNotAtAll) {
    system_->makeFolder(url("a/b/c/"));
    system_->makeFolder(url("a/b/c"));
    EXPECT_TRUE(system_->describe(url("a/b/c"))->isFolder);
    write("file", 1);
    const Snapshot before = snapshot(path(""));
    EXPECT_EQ(reason_of([&] { system_->makeFolder(url("file")); }), EEXIST);
    EXPECT_NE(reason_of([&] { system_->makeFolder(url("file/a/b")); }), 0);
    EXPECT_EQ(reason_of([&] { system_->makeFolder(url("new/b/" + std::string(300, 'n') + "/c")); }),
              ENAMETOOLONG);
    EXPECT_EQ(reason_of([&] { system_->makeFolder(u""); }), ENOENT);
    EXPECT_TRUE(snapshot(path("")) == before);
}

TEST_F(Folders, AreCopiedMovedAndRemovedWithAllThatIsInThem) {
    fill();
    const Snapshot from = snapshot(path("from"));
    ASSERT_EQ(from.size(), 5U);
    system_->copyFolder(url("from/"), url("to/"));
    EXPECT_EQ(snapshot(path("to")), from);
    EXPECT_EQ(snapshot(path("from")), from);
    system_->moveFolder(url("to"), url("other/moved"));
    EXPECT_EQ(snapshot(path("other/moved")), from);
    EXPECT_FALSE(fs::exists(path("to")));
    system_->removeFolder(url("from/"));
    EXPECT_FALSE(fs::exists(path("from")));
    EXPECT_EQ(snapshot(path("other/moved")), from);
    EXPECT_EQ(reason_of([&] { system_->removeFolder(url("outside")); }), ENOTDIR);
    EXPECT_EQ(reason_of([&] { system_->removeFolder(url("from")); }), ENOENT);
}

TEST_F(Folders, AreNotCopiedToWhereSomethingIsNorIntoThemselves) {
    fill();
    const Snapshot before = snapshot(path(""));
    const auto refused = [&](const std::string& from, const std::string& to) {
        const int reason = reason_of([&] { system_->copyFolder(url(from), url(to)); });
        EXPECT_EQ(reason_of([&] { system_->moveFolder(url(from), url(to)); }), reason) << from << " " << to;
        return reason;
    };
    EXPECT_EQ(refused("from", "from"), EEXIST);
    EXPECT_EQ(refused("from", "other"), EEXIST) << "an empty folder, too, is there";
    EXPECT_EQ(refused("from", "outside"), EEXIST);
    EXPECT_EQ(refused("from", "from/new"), EINVAL);
    EXPECT_EQ(refused("from", "from/b c/new"), EINVAL);
    EXPECT_EQ(refused("from", "none/new"), ENOENT);
    EXPECT_EQ(refused("none", "new"), ENOENT);
    EXPECT_EQ(refused("outside", "new"), ENOTDIR);
    EXPECT_EQ(snapshot(path("")), before);
}

TEST_F(Folders, ASchemeThatHasNoneSaysSo) {
    const FileCapabilities memory = system_->capabilities(u"mem://");
    EXPECT_TRUE(memory.keeps);
    EXPECT_FALSE(memory.folders || memory.times || memory.permissions || memory.space);
    const FileCapabilities disk = system_->capabilities(u"a path");
    EXPECT_TRUE(disk.keeps && disk.folders && disk.times && disk.permissions && disk.space);
    const std::function<void()> calls[] = {
        [&] { system_->makeFolder(u"mem://a"); },
        [&] { system_->removeFolder(u"mem://a"); },
        [&] { system_->copyFolder(u"mem://a", u"mem://b"); },
        [&] { system_->moveFolder(u"mem://a", u"mem://b"); },
        [&] { system_->setAttributes(u"mem://a", {.permissions = 0600}); },
        [&] { (void)system_->space(u"mem://a"); },
    };
    for (const auto& call : calls)
        EXPECT_EQ(reason_of(call), ENOTSUP);
}

} // namespace
} // namespace core
