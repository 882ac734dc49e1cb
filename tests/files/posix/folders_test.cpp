// SPDX-License-Identifier: Apache-2.0
// Folders of the disk with links, rights and times: removed, copied and moved whole or not at all, whatever
// lies in them. What each test finds on disk it reads by itself.
#include "tests/support/disk_folders.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <random>
#include <string>

namespace core {
namespace {

namespace fs = std::filesystem;

using test::reason_of;
using test::TempFolder;

/// Everything below a folder, by path: its kind, permissions, time and content.
using Snapshot = std::map<std::string, std::string>;

Snapshot snapshot(const std::string& folder) {
    Snapshot all;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const std::string path = entry.path().string();
        struct stat status {};
        ::lstat(path.c_str(), &status);
        std::string shown = std::to_string(status.st_mode);
        if (S_ISLNK(status.st_mode)) {
            shown += " " + fs::read_symlink(path).string();
        } else {
            shown +=
                " " + std::to_string(status.st_mtim.tv_sec) + "." + std::to_string(status.st_mtim.tv_nsec);
        }
        if (S_ISREG(status.st_mode)) {
            std::ifstream file(path, std::ios::binary);
            shown += " " + std::string(std::istreambuf_iterator<char>(file), {});
        }
        all[path.substr(folder.size())] = shown;
    }
    return all;
}

class FoldersWithLinks : public test::DiskFolders {
  protected:
    /// A folder "from" with all that can lie in one, and others beside it.
    void fill() const {
        fs::create_directories(path("from/b\nc/*?/ж"));
        fs::create_directories(path("from/a\xFF"));
        fs::create_directories(path("outside/kept"));
        write("from/b\nc/*?/ж/deep", 70'000);
        write("from/a\xFF/50%", 3);
        write("from/empty", 0);
        write("outside/kept/file", 10);
        fs::create_symlink("..", path("from/b\nc/circle"));
        fs::create_symlink("itself", path("from/itself"));
        fs::create_symlink(path("outside"), path("from/out"));
        fs::create_hard_link(path("outside/kept/file"), path("from/linked"));
        fs::permissions(path("from/a\xFF/50%"), fs::perms(0640));
        fs::permissions(path("from/a\xFF"), fs::perms(0555));
        const struct timespec times[2] = {{5'000'000'000, 5}, {-3, 999'999'999}};
        ::utimensat(AT_FDCWD, path("from/empty").c_str(), times, 0);
        ::utimensat(AT_FDCWD, path("from/a\xFF").c_str(), times, 0);
    }
    /// Whether `work` returns true in a process of its own.
    static bool holdsInChild(const std::function<bool()>& work) {
        const ::pid_t child = ::fork();
        if (child == 0) {
            bool held = false;
            try {
                held = work();
            } catch (const std::exception& e) {
                std::fprintf(stderr, "%s\n", e.what());
            }
            const struct rlimit none = {RLIM_INFINITY,
                                        RLIM_INFINITY}; // for the counts of a build with counters
            ::setrlimit(RLIMIT_FSIZE, &none);
            ::_exit(held ? 0 : 1);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
};

TEST_F(FoldersWithLinks, AreCopiedAndMovedWithAllThatIsInThem) {
    fill();
    const Snapshot from = snapshot(path("from"));
    ASSERT_EQ(from.size(), 11U);
    system_->copyFolder(url("from/"), url("to/"));
    EXPECT_TRUE(snapshot(path("to")) == from);
    EXPECT_TRUE(snapshot(path("from")) == from);
    fs::create_directory_symlink("from", path("link"));
    system_->copyFolder(url("link"), url("a name\n"));
    EXPECT_TRUE(snapshot(path("a name\n")) == from) << "a link to a folder leads to one";
    system_->moveFolder(url("to"), url("a name\n/moved"));
    EXPECT_TRUE(snapshot(path("a name\n/moved")) == from);
    EXPECT_EQ(reason_of([&] { system_->moveFolder(url("link"), url("new")); }), ENOTDIR);
    EXPECT_FALSE(fs::exists(path("to")));
}

TEST_F(FoldersWithLinks, AreRemovedWithoutWhatLinksLeadTo) {
    fill();
    const Snapshot outside = snapshot(path("outside"));
    fs::create_directory_symlink(path("from"), path("link"));
    EXPECT_EQ(reason_of([&] { system_->removeFolder(url("link")); }), ENOTDIR);
    EXPECT_EQ(reason_of([&] { system_->removeFolder(url("from/empty")); }), ENOTDIR);
    EXPECT_EQ(reason_of([&] { system_->removeFolder(url("none")); }), ENOENT);
    EXPECT_EQ(reason_of([&] { system_->removeFolder(u""); }), ENOENT);
    EXPECT_TRUE(fs::exists(path("from/linked")));
    system_->removeFolder(url("from/"));
    EXPECT_FALSE(fs::exists(path("from")));
    EXPECT_TRUE(snapshot(path("outside")) == outside);
}

TEST_F(FoldersWithLinks, AreNotCopiedToWhereSomethingIsNorIntoThemselves) {
    fill();
    fs::create_directory(path("other"));
    fs::create_directory_symlink(path("from/b\nc"), path("alias"));
    const Snapshot before = snapshot(path(""));
    const auto refused = [&](const std::string& from, const std::string& to) {
        const int reason = reason_of([&] { system_->copyFolder(url(from), url(to)); });
        EXPECT_EQ(reason_of([&] { system_->moveFolder(url(from), url(to)); }), reason) << from << " " << to;
        return reason;
    };
    EXPECT_EQ(refused("from", "from"), EEXIST);
    EXPECT_EQ(refused("from", "other"), EEXIST) << "an empty folder, too, is there";
    EXPECT_EQ(refused("from", "from/linked"), EEXIST);
    EXPECT_EQ(refused("from", "from/itself"), EEXIST) << "a link that leads nowhere";
    EXPECT_EQ(refused("from", "from/new"), EINVAL);
    EXPECT_EQ(refused("from", "from/b\nc/new"), EINVAL);
    EXPECT_EQ(refused("from", "alias/new"), EINVAL) << "by another path";
    EXPECT_EQ(refused("from", "none/new"), ENOENT);
    EXPECT_EQ(refused("none", "new"), ENOENT);
    EXPECT_EQ(refused("from/linked", "new"), ENOTDIR);
    EXPECT_EQ(reason_of([&] { system_->copyFolder(url("from"), u"mem://to"); }), EXDEV);
    EXPECT_TRUE(snapshot(path("")) == before);
}

TEST_F(FoldersWithLinks, ACopyThatFailsLeavesNothing) {
    for (const char* const name : {"from/a", "from/b", "from/c/d", "from/c/e"})
        fs::create_directories(path(name));
    for (std::size_t i = 1; i <= 6; ++i)
        write(std::string("from/") + "acbcac"[i - 1] + "/" + std::to_string(i), i * 1000);
    fs::permissions(path("from/b"), fs::perms(0555));
    const Snapshot before = snapshot(path(""));
    const auto fails = [&](const std::function<void()>& limit, int reason) {
        const bool right = holdsInChild([&] {
            limit();
            return reason_of([&] { system_->copyFolder(url("from"), url("to")); }) == reason;
        });
        return right && snapshot(path("")) == before;
    };
    for (::rlim_t most = 0; most < 6000; most += 500) {
        const struct rlimit limit = {most, RLIM_INFINITY};
        EXPECT_TRUE(fails([&] { ::setrlimit(RLIMIT_FSIZE, &limit); }, EFBIG)) << most;
    }
    for (::rlim_t more = 0; more < 4; ++more) { // which of the files that are open at a time cannot be
        constexpr int kUsed = 100;
        struct rlimit limit {};
        ::getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = kUsed + more;
        const auto run_out = [&] {
            while (::dup(0) < kUsed - 1) {
            }
            ::setrlimit(RLIMIT_NOFILE, &limit);
        };
        EXPECT_TRUE(fails(run_out, EMFILE)) << more;
    }
    ::mkfifo(path("from/c/pipe").c_str(), 0600);
    EXPECT_EQ(reason_of([&] { system_->copyFolder(url("from"), url("to")); }), ENOTSUP);
    EXPECT_FALSE(fs::exists(path("to")));
    fs::remove(path("from/c/pipe"));
    system_->copyFolder(url("from"), url("to"));
    EXPECT_EQ(snapshot(path("to")).size(), 11U);
}

TEST_F(FoldersWithLinks, MissingRightsAreErrorsThatLeaveNothing) {
    fs::permissions(path(""), fs::perms(0755));
    fs::create_directories(path("from/closed"));
    fs::create_directories(path("open"));
    fs::permissions(path("open"), fs::perms(0777));
    fs::permissions(path("from/closed"), fs::perms(0));
    EXPECT_TRUE(holdsInChild([&] {
        if (::geteuid() == 0 && ::setuid(65534) != 0)
            return false;
        bool right = reason_of([&] { system_->copyFolder(url("from"), url("open/to")); }) == EACCES;
        right = right && reason_of([&] { system_->copyFolder(url("open"), url("to")); }) == EACCES;
        right = right && reason_of([&] { system_->makeFolder(url("new/folder")); }) == EACCES;
        right = right && reason_of([&] { (void)system_->describe(url("from/closed/x")); }) == EACCES;
        return right && reason_of([&] { (void)find_below(*system_, url("from/") + u"*"); }) == EACCES;
    }));
    EXPECT_TRUE(fs::is_empty(path("open")));
    fs::permissions(path("from/closed"), fs::perms(0700));
}

TEST_F(FoldersWithLinks, MoveToAnotherDisk) {
    fill();
    const std::string other = "/dev/shm/core-folder-" + std::to_string(::getpid());
    struct stat here {};
    struct stat there {};
    if (::stat(path("").c_str(), &here) != 0 || ::stat("/dev/shm", &there) != 0 ||
        here.st_dev == there.st_dev)
        GTEST_SKIP() << "one disk";
    const Snapshot from = snapshot(path("from"));
    system_->moveFolder(url("from"), file_url(other));
    EXPECT_TRUE(snapshot(other) == from);
    EXPECT_FALSE(fs::exists(path("from")));
    system_->removeFolder(file_url(other));
}

TEST_F(FoldersWithLinks, AFileIsDescribedByItsVeryName) {
    fill();
    const auto info = system_->describe(url("from/b\nc/*?"));
    ASSERT_TRUE(info && info->isFolder);
    EXPECT_EQ(info->name, u"*?");
    EXPECT_FALSE(system_->describe(url("from/b\nc/*")));
    EXPECT_FALSE(system_->describe(url("from/empty/x"))) << "below a file";
    EXPECT_TRUE(system_->describe(url("from/itself"))->isLink) << "a link in a circle is there";
    const auto out = system_->describe(url("from/out"));
    EXPECT_TRUE(out->isLink && out->isFolder);
    EXPECT_EQ(system_->describe(url("from/"))->name, u"from");
    EXPECT_EQ(system_->describe(url("from/a\xFF/50%"))->permissions, 0640U);
    (void)system_->openURL(u"mem://a*", OpenMode::create);
    (void)system_->openURL(u"mem://ab", OpenMode::create);
    EXPECT_EQ(system_->describe(u"MEM://a*")->name, u"a*");
    EXPECT_FALSE(system_->describe(u"mem://a?"));
}

TEST_F(FoldersWithLinks, TimesAndPermissionsAreSetExactly) {
    write("file", 1);
    fs::create_symlink("file", path("link"));
    for (const Date time : {kUnixEpoch, kUnixEpoch + DateSpan(-3), kUnixEpoch + DateSpan(-20'001),
                            Date(1905, 2, 3, 4, 5, 6), Date(2024, 2, 29, 23, 59, 59) + DateSpan(9999)}) {
        system_->setAttributes(url("link"), {.modified = time});
        EXPECT_EQ(system_->describe(url("file"))->modified, time);
    }
    system_->setAttributes(url("file"), {.permissions = 0400});
    EXPECT_EQ(fs::status(path("file")).permissions(), fs::perms(0400));
    EXPECT_EQ(system_->describe(url("file"))->modified.getYear(), 2024);
    EXPECT_EQ(reason_of([&] { system_->setAttributes(url("none"), {.permissions = 0400}); }), ENOENT);
    const FileSpace space = system_->space(url(""));
    EXPECT_TRUE(space.available > 0 && space.available <= space.total);
    EXPECT_EQ(reason_of([&] { (void)system_->space(url("none")); }), ENOENT);
}

TEST_F(FoldersWithLinks, ASearchBelowGoesThroughEveryFolderOnce) {
    fill();
    const auto names = [&](const wstring& pattern) {
        std::string all;
        for (const FileInfo& file : find_below(*system_, pattern))
            all += file_path(file.url).substr(path("").size()) + " ";
        return all;
    };
    EXPECT_EQ(names(url("from/") + u"*e*p*"), "from/empty from/b\nc/*?/ж/deep ");
    EXPECT_EQ(names(url("from/") + u"50%25"), "from/a\xFF/50% ");
    EXPECT_EQ(names(from_utf8(path("50%*"))), "from/a\xFF/50% ") << "a path, which is not escaped";
    EXPECT_EQ(names(url("from/") + u"file"), "") << "links are not followed";
    write("outside/50%ж ", 1);
    EXPECT_EQ(names(from_utf8(path("*%ж *"))), "outside/50%ж  ");
    (void)system_->openURL(u"mem://x/y", OpenMode::create);
    EXPECT_EQ(find_below(*system_, u"mem://x*").size(), 1U);
}

} // namespace
} // namespace core
