// SPDX-License-Identifier: Apache-2.0
// Files in memory that processes share: they are there as long as somebody has them open, and what goes wrong
// is an error.
#include "tests/support/file_helpers.h"

#include <cerrno>
#include <string>

namespace core {
namespace {

using test::bytes_of;
using test::reason_of;
using test::text_of;

class SharedMemory : public testing::Test {
  protected:
    InterfacePtr<IFile> open(OpenMode mode) { return system_->openURL(url_, mode); }
    [[nodiscard]] bool isThere() const { return system_->describe(url_).has_value(); }

    const wstring url_ = u"shm://Отчёт/1 %*?" + to_string(new_guid());
    InterfacePtr<IFileSystem> system_ = create_file_system();
};

TEST_F(SharedMemory, IsThereAsLongAsSomebodyHasItOpen) {
    EXPECT_EQ(reason_of([&] { (void)open(OpenMode::read); }), ENOENT);
    EXPECT_EQ(reason_of([&] { (void)open(OpenMode::readWrite); }), ENOENT);
    auto first = open(OpenMode::createNew);
    EXPECT_EQ(reason_of([&] { (void)open(OpenMode::createNew); }), EEXIST);
    write_all(*first, bytes_of("kept"));
    const auto found = system_->describe(url_);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->url, url_);
    EXPECT_EQ(found->length, 4U);
    EXPECT_EQ(system_->findFile(u"shm://Отчёт/*").size(), 1U);
    auto second = open(OpenMode::read);
    EXPECT_EQ(reason_of([&] { (void)second->writeAt(0, "x", 1); }), EBADF);
    EXPECT_TRUE(InterfacePtr<ISharedFile>(first)->isSameFile(*second));
    first->close();
    first.reset();
    EXPECT_EQ(text_of(*open(OpenMode::create)), "kept");
    EXPECT_EQ(open(OpenMode::replace)->length(), 0U);
    second.reset();
    EXPECT_FALSE(isThere());
    EXPECT_EQ(open(OpenMode::create)->length(), 0U) << "another one";
    EXPECT_FALSE(isThere());
}

TEST_F(SharedMemory, LackOfMemoryAndACutFileAreErrors) {
    const auto file = open(OpenMode::createNew);
    const auto other = open(OpenMode::readWrite);
    file->truncate(100'000);
    write_all(*file, bytes_of("held"));
    const FileSpace space = system_->space(url_);
    EXPECT_LE(space.available, space.total);
    EXPECT_EQ(reason_of([&] { file->truncate(space.total + 200'000); }), ENOSPC);
    EXPECT_EQ(reason_of([&] { file->truncate(kMaxFileLength + 1); }), EFBIG);
    EXPECT_EQ(file->length(), 100'000U);
    other->truncate(2);
    std::string bytes(100, 'x');
    EXPECT_EQ(file->readAt(0, bytes.data(), bytes.size()), 2U);
    EXPECT_EQ(file->readAt(50'000, bytes.data(), bytes.size()), 0U);
    EXPECT_EQ(text_of(*file), "he");
}

TEST_F(SharedMemory, KeepsNothingSoNothingIsStored) {
    const auto file = open(OpenMode::createNew);
    write_all(*file, bytes_of("x"));
    EXPECT_FALSE(system_->capabilities(url_).keeps);
    EXPECT_EQ(reason_of([&] { system_->writeFile(url_, [](IFile&) {}); }), ENOTSUP);
    EXPECT_EQ(reason_of([&] { system_->copyFile(u"shm://a", u"shm://b"); }), ENOTSUP);
    EXPECT_EQ(reason_of([&] { system_->moveFile(url_, u"shm://b"); }), ENOTSUP);
    system_->copyFile(url_, u"mem://kept");
    EXPECT_EQ(text_of(*system_->openURL(u"mem://kept", OpenMode::read)), "x");
    EXPECT_EQ(reason_of([&] { system_->copyFile(u"mem://kept", url_); }), ENOTSUP);
    for (const wstring& name : {wstring(), wstring(1, wchar{0xD800})})
        EXPECT_EQ(reason_of([&] { (void)system_->openURL(u"shm://" + name, OpenMode::create); }), EINVAL);
    EXPECT_EQ(reason_of([&] { (void)system_->openURL(u"shm://" + wstring(300, u'n'), OpenMode::create); }),
              ENAMETOOLONG);
}

} // namespace
} // namespace core
