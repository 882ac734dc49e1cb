// SPDX-License-Identifier: Apache-2.0
// A container as an object: what is put in comes out again with its type, several changes are one commit, and
// what cannot be read or written says where and changes nothing.
#include "tests/support/file_helpers.h"

#include <core/collections.h>
#include <core/containers.h>
#include <core/tables.h>
#include <host/host_process.h>

#include <array>
#include <map>

namespace core {
namespace {

class Containers : public testing::TestWithParam<const StorageLayout*> {
  protected:
    [[nodiscard]] Container open(OpenMode mode = Container::change) const {
        return Container(folder_ / "data.st", mode, *GetParam());
    }
    /// The message of the exception of class `E` that `call` throws.
    template <class E, class Call>
    static wstring refusal(Call call) {
        try {
            call();
        } catch (const E& e) {
            return e.description();
        }
        return u"no exception of this class";
    }

    const host::HostProcess process_;
    const test::TempFolder folder_;
};
INSTANTIATE_TEST_SUITE_P(Layouts, Containers, testing::Values(&kStorageLayout32, &kStorageLayout64),
                         [](const auto& info) { return std::to_string(8 * info.param->width); });

/// A URL says the layout, whatever the caller does.
TEST_P(Containers, AreOpenedByUrl) {
    open(Container::create).put(u"a", 1);
    const StorageLayout& other = GetParam() == &kStorageLayout32 ? kStorageLayout64 : kStorageLayout32;
    const std::string path = folder_ / "data.st";
    const std::string url = to_utf8(GetParam()->scheme) + "://" + path;
    for (const char* const option : {"", "?NoSortedCheck"})
        EXPECT_EQ(Container(url + option, Container::read, other).get<int>(u"a"), 1);
    EXPECT_THROW(static_cast<void>(Container(path, Container::read, other)), StorageException);
}

TEST_P(Containers, GiveBackWhatWasPutIn) {
    const auto table = create_value_table();
    table->addColumn(u"Product");
    table->appendRow(std::array<Value, 1>{u"вишня"});
    const std::map<wstring, int> map{{u"a", 1}, {u"b", 2}};
    const auto bytes = test::bytes_of(std::string_view("\0\xFF", 2));
    {
        Container files = open(Container::create);
        files.put(u"table", table);
        files.put(u"number", Numeric::fromString("0.1"));
        files.put(u"half", u"\xD83D");
        files.put(u"map", map);
        files.putText(u"text", u"ж😀\r\n");
        files.putBytes(u"bytes", bytes);
        files.putBytes(u"marked", test::bytes_of("\xEF\xBB\xBF"
                                                 "x"));
    }
    const Container files = open(Container::read);
    const auto again = files.get<IValueTable>(u"table");
    EXPECT_EQ(again->get(0, again->findColumn(u"Product")), GenericValue(u"вишня"));
    EXPECT_EQ(files.get<Numeric>(u"number"), Numeric::fromString("0.1"));
    EXPECT_EQ(files.get<double>(u"number"), 0.1);
    EXPECT_EQ(files.get<wstring>(u"half"), u"\xD83D");
    EXPECT_EQ((files.get<std::map<wstring, int>>(u"map")), map);
    EXPECT_EQ(files.getText(u"text"), u"ж😀\r\n");
    EXPECT_EQ(files.getText(u"marked"), u"x");
    EXPECT_TRUE(std::ranges::equal(files.getBytes(u"bytes"), bytes));
    EXPECT_EQ(files.names(u"*m*"), (std::vector<wstring>{u"map", u"marked", u"number"}));
    std::uint64_t size = 0;
    for (const StorageFound& file : files.files(u"bytes"))
        size += file.size;
    EXPECT_EQ(size, 2U);
}

TEST_P(Containers, SeveralChangesAreOneCommit) {
    Container files = open(Container::createNew);
    files.put(u"a", 1);
    const std::uint64_t before = files.storage().changeCounter();
    const int answer = files.transaction([&] {
        files.put(u"b", 2);
        files.rename(u"a", u"c");
        return 7;
    });
    EXPECT_EQ(answer, 7);
    EXPECT_EQ(files.storage().changeCounter(), before + 1);
    EXPECT_THROW(files.transaction([&] {
        files.remove(u"b");
        files.put(u"c", 3);
        files.transaction([] {}); // one is open
    }),
                 StorageException);
    EXPECT_EQ(files.names(), (std::vector<wstring>{u"b", u"c"}));
    EXPECT_EQ(files.get<int>(u"c"), 1);
    EXPECT_EQ(open().get<int>(u"b"), 2) << "for others, too";
}

TEST_P(Containers, FailuresSayWhereAndChangeNothing) {
    Container files = open(Container::create);
    files.put(u"number", 300);
    files.putText(u"text", u"exact");
    const wstring url = from_utf8(folder_ / "data.st") + u"/";
    EXPECT_NE(refusal<StorageException>([&] { (void)files.get(u"none"); }).find(url + u"none"),
              wstring::npos);
    EXPECT_NE(refusal<ContextException>([&] { (void)files.get(u"text"); }).find(url + u"text"),
              wstring::npos);
    const wstring other = refusal<ContextException>([&] { (void)files.get<wstring>(u"number"); });
    EXPECT_NE(other.find(url + u"number"), wstring::npos) << to_utf8(other);
    EXPECT_EQ(refusal<ContextException>([&] { (void)files.get<std::int8_t>(u"number"); }), other);
    EXPECT_EQ(refusal<ContextException>([&] { (void)files.get<IValueTable>(u"number"); }), other);
    EXPECT_THROW(files.putText(u"text", u"\xD83D"), ConverterException);
    EXPECT_EQ(files.getText(u"text"), u"exact");
    files.putBytes(u"bytes", test::bytes_of("\xFF"));
    EXPECT_NE(refusal<ConverterException>([&] { (void)files.getText(u"bytes"); }).find(url + u"bytes"),
              wstring::npos);
    EXPECT_THROW((void)open(Container::createNew), FileException);
    EXPECT_THROW(open(Container::read).put(u"a", 1), StorageException);
}

TEST(Container, NeedsNoFile) {
    const host::HostProcess process;
    Container files;
    const Container same = files;
    files.put(u"a", u"text");
    EXPECT_EQ(same.get<wstring>(u"a"), u"text");
    EXPECT_TRUE(Container().names().empty()) << "another one";
}

} // namespace
} // namespace core
