// SPDX-License-Identifier: Apache-2.0
#include "tests/support/storage_fixture.h"

#include <core/runtime/utf8.h>
#include <core/storage/errors.h>
#include <host/host_process.h>

#include <filesystem>
#include <string>

namespace core {
namespace {

using test::Bytes;

using test::kind_of;
using Kind = StorageException::Kind;

class Scheme : public test::InFormats {
  protected:
    [[nodiscard]] InterfacePtr<IStorageScheme> scheme() const {
        return system_->findScheme(wstring(layout_.scheme)).query<IStorageScheme>();
    }
    /// A new container; the root URL of it.
    wstring make(const std::shared_ptr<MemoryFileData>& data) {
        test::create_container(*open_memory_file(data), format_);
        return scheme()->openContainerIn(open_memory_file(data).get(), {});
    }
    void put(const wstring& url, std::size_t size) {
        const auto file = system_->openURL(url, OpenMode::replace);
        write_all(*file, Bytes(size));
        file->close();
    }
    std::string list(const wstring& pattern) {
        std::string names;
        for (const FileInfo& info : system_->findFile(pattern)) {
            EXPECT_TRUE(info.url.ends_with(info.name));
            names += to_utf8(info.name) + ":" + std::to_string(info.length) + " ";
        }
        return names;
    }

    InterfacePtr<IFileSystem> system_ = create_file_system();
};
INSTANTIATE_TEST_SUITE_P(Formats, Scheme, test::kEveryFormat, test::name_of_format);

TEST_P(Scheme, GivesEachContainerANumberedRoot) {
    ASSERT_TRUE(scheme());
    const wstring prefix = wstring(layout_.scheme) + u"://c:/";
    const wstring first = make(create_memory_data());
    ASSERT_TRUE(first.starts_with(prefix) && first.ends_with(u"/"));
    const int number = std::stoi(to_utf8(first.substr(prefix.size())));
    EXPECT_EQ(
        kind_of([&] { (void)scheme()->openContainerIn(open_memory_file(create_memory_data()).get(), {}); }),
        Kind::badFormat)
        << "what does not open takes no number";
    const wstring next = prefix + from_utf8(std::to_string(number + 1)) + u"/";
    EXPECT_EQ(make(create_memory_data()), next);
    EXPECT_EQ(scheme()->container(next).rootURL(), next);
    scheme()->closeContainer(next);
    EXPECT_EQ(kind_of([&] { scheme()->closeContainer(next); }), Kind::fileNotFound);
    EXPECT_EQ(kind_of([&] { (void)scheme()->container(next); }), Kind::fileNotFound);
    EXPECT_EQ(kind_of([&] { (void)system_->openURL(next + u"a", OpenMode::create); }), Kind::fileNotFound);
    EXPECT_EQ(kind_of([&] { (void)system_->findFile(prefix + u"nonsense"); }), Kind::fileNotFound);
}

TEST_P(Scheme, FindsCopiesMovesAndRemovesInnerFiles) {
    const wstring a = make(create_memory_data());
    const wstring b = make(create_memory_data());
    put(a + u"one?.txt", 1);
    put(a + u"dir/two", 2000);
    EXPECT_EQ(list(a + u"*"), "dir/two:2000 one?.txt:1 ");
    EXPECT_EQ(list(a + u"*.txt"), "one?.txt:1 ") << "below a root a question mark begins no options";
    system_->copyFile(a + u"dir/two", a + u"copy");
    system_->copyFile(a + u"dir/two", b + u"two");
    system_->moveFile(a + u"one?.txt", b + u"one");
    system_->moveFile(a + u"copy", a + u"renamed");
    EXPECT_EQ(list(a + u"*"), "dir/two:2000 renamed:2000 ");
    EXPECT_EQ(list(b + u"*"), "one:1 two:2000 ");
    EXPECT_EQ(kind_of([&] { system_->copyFile(b + u"one", b + u"one"); }), Kind::isDestination);
    EXPECT_EQ(kind_of([&] { system_->moveFile(b + u"one", b + u"one"); }), Kind::isDestination);
    EXPECT_EQ(kind_of([&] { system_->remove(b + u"none"); }), Kind::fileNotFound);
    EXPECT_EQ(kind_of([&] { (void)system_->openURL(b + u"none", OpenMode::read); }), Kind::fileNotFound);
    EXPECT_EQ(system_->remove(b + u"none*"), 0U);
    EXPECT_EQ(system_->remove(b + u"t*"), 1U);
    system_->copyFile(b + u"one", u"mem://out");
    system_->moveFile(u"mem://out", a + u"in");
    EXPECT_EQ(list(a + u"in"), "in:1 ");
    EXPECT_EQ(system_->remove(a + u"in"), 1U);
    EXPECT_EQ(list(a + u"in"), "");
}

TEST_P(Scheme, MovesAreNeverLosses) {
    const auto data = create_memory_data();
    const wstring a = make(data);
    const wstring again = scheme()->openContainerIn(open_memory_file(data).get(), {});
    const wstring b = make(create_memory_data());
    put(a + u"one", 100);
    EXPECT_EQ(kind_of([&] { system_->moveFile(a + u"one", again + u"one"); }), Kind::isDestination)
        << "one container, two roots";
    EXPECT_EQ(kind_of([&] { system_->copyFile(a + u"one", again + u"one"); }), Kind::isDestination);
    system_->moveFile(a + u"one", again + u"two");
    EXPECT_EQ(list(again + u"*"), "two:100 ");

    scheme()->container(a).setTimes(u"two", Date(2001, 2, 3), Date(2004, 5, 6));
    system_->moveFile(a + u"two", b + u"two");
    const StorageFound moved = scheme()->container(b).describe(u"two");
    EXPECT_EQ(moved.created, Date(2001, 2, 3));
    EXPECT_EQ(moved.modified, Date(2004, 5, 6));

    const auto held = system_->openURL(b + u"two", OpenMode::readWrite);
    EXPECT_EQ(kind_of([&] { system_->moveFile(b + u"two", a + u"two"); }), Kind::none);
    EXPECT_EQ(list(a + u"*"), "") << "what cannot leave does not arrive";
    held->close();

    put(b + u"t*", 1);
    EXPECT_THROW(system_->moveFile(b + u"t*", u"mem://out"), FileException) << "the name reads as a pattern";
    EXPECT_EQ(list(b + u"*"), "t*:1 two:100 ");

    const auto itself = open_memory_file(data);
    EXPECT_EQ(kind_of([&] { system_->findScheme(wstring(layout_.scheme))->saveFile(*itself, a + u"me"); }),
              Kind::isDestination)
        << "it would grow as it is read";
    EXPECT_EQ(list(a + u"*"), "");
}

TEST_P(Scheme, ACopyThatFailsLeavesTheOldFile) {
    const auto data = create_memory_data();
    const wstring root = make(data);
    put(root + u"damaged", 5000);
    const auto file = open_memory_file(data);
    Bytes bytes = read_whole(*file);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    // The last block of the content is cut off from the others.
    const std::size_t third = text.find("\r\n", text.find("1388 ") + 2 * layout_.blockLength(512) - 16);
    ASSERT_NE(third, std::string_view::npos);
    write_all_at(*file, third, Bytes(2));
    const auto temp = create_temp_file_service();
    const std::string folder = file_path(temp->createNamed());
    std::filesystem::remove(folder);
    std::filesystem::create_directory(folder);
    const wstring onDisk = file_url(folder) + u"/old";
    const Bytes old(10, std::byte{1});
    for (const wstring& target : {onDisk, wstring(u"mem://old"), make(create_memory_data()) + u"old"}) {
        const auto out = system_->openURL(target, OpenMode::create);
        write_all(*out, old);
        out->close();
        EXPECT_EQ(kind_of([&] { system_->copyFile(root + u"damaged", target); }), Kind::badFormat);
        EXPECT_EQ(read_whole(*system_->openURL(target, OpenMode::read)), old);
    }
    EXPECT_EQ(system_->findFile(file_url(folder) + u"/*").size(), 1U) << "and nothing beside it";
    std::filesystem::remove_all(folder);
}

TEST_P(Scheme, OpensContainersInFilesOfAnySchemeOfTheProcess) {
    const host::HostProcess process;
    const wstring url = wstring(layout_.scheme) + u"://mem://box";
    put(scheme()->openContainer(url, OpenMode::create) + u"a", 3);
    EXPECT_EQ(list(scheme()->openContainer(url, OpenMode::read) + u"*"), "a:3 ");
    EXPECT_EQ(get_service<IFileSystem>()->findFile(u"mem://box").size(), 1U);
}

TEST_P(Scheme, OpensContainersByURLWithOptions) {
    const wstring name(layout_.scheme);
    const auto temp = create_temp_file_service();
    const std::string path = file_path(temp->createNamed());
    const wstring url = name + u"://" + from_utf8(path);
    // In the first table layout: a tree that is not in order does not have its checksums.
    test::create_container(*open_disk_file(path, OpenMode::readWrite), {&layout_, 1});
    const wstring root = scheme()->openContainer(url, OpenMode::create);
    put(root + u"b", 1);
    put(root + u"a", 1);
    const URL parsed = system_->parseURL(url + u"?x;nosortedcheck");
    EXPECT_EQ(parsed.path, from_utf8(path));
    EXPECT_TRUE(parsed.hasOption(u"NoSortedCheck"));
    EXPECT_EQ(list(scheme()->openContainer(url, OpenMode::read) + u"*"), "a:1 b:1 ");

    // The files change places in the table, the last thing that the library would write there: the names, and
    // in the rows before them the addresses.
    const auto file = open_disk_file(path, OpenMode::readWrite);
    Bytes bytes = read_whole(*file);
    const std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const auto names = text.rfind(std::string("a\0b\0", 4));
    ASSERT_NE(names, std::string::npos);
    std::swap(bytes[names], bytes[names + 2]);
    const auto rows = bytes.begin() + static_cast<std::ptrdiff_t>(names - 6 * layout_.width);
    const auto width = static_cast<std::ptrdiff_t>(layout_.width);
    std::swap_ranges(rows, rows + 2 * width, rows + 3 * width);
    write_all(*file, bytes);
    EXPECT_EQ(kind_of([&] { (void)scheme()->openContainer(url, OpenMode::read); }), Kind::badFormat);
    const wstring unsorted = scheme()->openContainer(url + u"?NoSortedCheck", OpenMode::readWrite);
    put(unsorted + u"b", 2);
    EXPECT_EQ(list(unsorted + u"*"), "a:1 b:2 ");
    EXPECT_EQ(list(scheme()->openContainer(url, OpenMode::read) + u"*"), "a:1 b:2 ") << "in order again";
    EXPECT_EQ(list(scheme()->openContainer(name + u"://FILE://" + from_utf8(path), OpenMode::replace) + u"*"),
              "");

    const wstring other = layout_.width == 4 ? u"lumstg64" : u"lumstg";
    const auto otherScheme = system_->findScheme(other).query<IStorageScheme>();
    try {
        (void)otherScheme->openContainer(other + u"://" + from_utf8(path), OpenMode::read);
        ADD_FAILURE() << "a container of the other layout";
    } catch (const StorageException& e) {
        EXPECT_EQ(e.kind(), Kind::badFormat);
        EXPECT_NE(e.description().find(name + u"://"), wstring::npos) << "says which scheme opens it";
    }
    EXPECT_THROW((void)scheme()->openContainer(name + u":///no/such/file", OpenMode::read), FileException);
    try {
        (void)scheme()->openContainer(name + u"://mem://box", OpenMode::create);
        ADD_FAILURE() << "no process has a file system that knows the scheme";
    } catch (const FileException& e) {
        EXPECT_EQ(e.systemError(), ENOTSUP);
    }
    EXPECT_EQ(system_->remove(file_url(path)), 1U);
}

} // namespace
} // namespace core
