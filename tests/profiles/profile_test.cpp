// SPDX-License-Identifier: Apache-2.0
// Settings as a program meets them: typed reading, layers and locks, groups, notices, and files that others
// can read.
#include "tests/profiles/profile_fixture.h"

#include <core/collections.h>
#include <core/lists.h>
#include <core/streams/memory_stream.h>

int count_start(core::IProfile& profile); // of docs/settings.md

namespace core::test {
namespace {

using Profiles = ProfileTest;

TEST_F(Profiles, GiveBackValuesOfAnyKindAfterTheyWereClosed) {
    const Model values{{u"text", u"a \"quoted\"\nline\r\n{,}\xD83D\xDE00\xD800 ж"},
                       {u"empty", u""},
                       {u"undefined", GenericValue()},
                       {u"null", Value::null()},
                       {u"truth", true},
                       {u"number", Numeric::fromString("-12345678901234567890.5")},
                       {u"date", Date(2024, 2, 29)},
                       {u"deep/er/and deeper/ж\xD83D\xDE00", 7}};
    {
        const auto profile = open();
        for (const auto& [path, value] : values)
            profile->set(path, value);
        profile->set(u"list", to_value(std::vector<wstring>{u"\n", u"b"}));
    }
    const auto again = open();
    EXPECT_EQ(again->get(u"list", std::vector<wstring>{}), (std::vector<wstring>{u"\n", u"b"}));
    again->remove(u"list");
    EXPECT_EQ(contents(*again), values);
    EXPECT_TRUE(again->takeReports().empty());
}

TEST_F(Profiles, GiveTheDefaultForWhatIsMissingAndForAnotherType) {
    const auto profile = open();
    EXPECT_EQ(profile->get(u"host/width", 80), 80);
    EXPECT_TRUE(profile->takeReports().empty());
    profile->set(u"host/width", u"wide");
    EXPECT_EQ(profile->get(u"host/width", 80), 80);
    const std::vector<wstring> reports = profile->takeReports();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_NE(reports[0].find(u"host/width"), wstring::npos);
    profile->set(u"host/width", GenericValue());
    EXPECT_EQ(profile->get(u"host/width", 80), 80);
    profile->set(u"host/width", 120);
    EXPECT_EQ(profile->get(u"host/width", 80), 120);
    EXPECT_TRUE(profile->takeReports().empty());
}

TEST_F(Profiles, HandOutObjectsThatNobodyElseHas) {
    const auto profile = open();
    profile->set(u"list", to_value(std::vector<int>{1}));
    const GenericValue mine = profile->find(u"list")->value;
    EXPECT_NE(mine.object(), profile->find(u"list")->value.object());
}

TEST_F(Profiles, LetALaterLayerCountUnlessAnEarlierOneLocksIt) {
    const auto profile = open();
    const auto at = [&] { return profile->find(u"a/b"); };
    constexpr ProfileLayer kLayers[] = {ProfileLayer::builtIn, ProfileLayer::system, ProfileLayer::user,
                                        ProfileLayer::run};
    for (const ProfileLayer layer : kLayers) {
        profile->set(u"a/b", static_cast<int>(layer), layer);
        ASSERT_TRUE(at());
        EXPECT_EQ(at()->layer, layer);
        EXPECT_EQ(at()->value, GenericValue(static_cast<int>(layer)));
    }
    profile->change(ProfileChanges().lock(u"a"), ProfileLayer::system);
    EXPECT_EQ(at()->layer, ProfileLayer::system);
    EXPECT_TRUE(profile->isLocked(u"a/b", ProfileLayer::user));
    EXPECT_FALSE(profile->isLocked(u"a/b", ProfileLayer::system));
    EXPECT_FALSE(profile->isLocked(u"ab", ProfileLayer::user));
    for (const wstring_view path : {u"a", u"a/b", u"a/c"})
        EXPECT_EQ(refusal<ProfileException>([&] { profile->set(path, 1); }), messages::kProfileLocked);
    EXPECT_EQ(contents(*open()).at(u"a/b"), GenericValue(1)) << "others see the lock, too";
    profile->change(ProfileChanges().unlock(u"a"), ProfileLayer::system);
    EXPECT_EQ(at()->layer, ProfileLayer::run);
    profile->remove(u"a", ProfileLayer::run);
    EXPECT_EQ(at()->layer, ProfileLayer::user);
    EXPECT_EQ(refusal<ProfileException>([&] { profile->change(ProfileChanges().lock(u"a")); }),
              messages::kProfileLockLayer);
}

TEST_F(Profiles, ListFoldersThatHoldSomething) {
    const auto profile = open();
    profile->set(u"a", 1);
    profile->set(u"a/x", 1);
    profile->set(u"a-b", 1);
    profile->set(u"b/c/d", 1, ProfileLayer::run);
    profile->change(ProfileChanges().lock(u"c"), ProfileLayer::builtIn);
    std::string names;
    for (const ProfileItem& item : profile->list({}))
        names += to_utf8(item.name) + (item.isValue ? "=" : "") + (item.isFolder ? "/" : "") + ' ';
    EXPECT_EQ(names, "a=/ a-b= b/ ");
    EXPECT_EQ(profile->list(u"b/c").size(), 1U);
    profile->remove(u"b", ProfileLayer::run);
    EXPECT_TRUE(profile->list(u"b").empty());
    EXPECT_EQ(profile->list({}).size(), 2U);
}

TEST_F(Profiles, RefuseWhatIsNoPathAndChangeNothing) {
    const auto profile = open();
    profile->set(u"a", 1);
    const std::string before = bytesOf(userFile());
    for (const wstring& path : {wstring(), wstring(u"/a"), wstring(u"a/"), wstring(u"a//b"), wstring(u"a!"),
                                wstring(u"a\"b"), wstring(u"a\nb"), wstring(kMaxProfilePath + 1, u'a')}) {
        EXPECT_EQ(
            refusal<ProfileException>([&] { profile->change(ProfileChanges().set(u"b", 2).set(path, 1)); }),
            messages::kProfilePath)
            << to_utf8(path);
        EXPECT_EQ(refusal<ProfileException>([&] { (void)profile->find(path); }), messages::kProfilePath);
    }
    EXPECT_EQ(bytesOf(userFile()), before);
    profile->set(wstring(kMaxProfilePath, u'a'), 1);
    EXPECT_TRUE(open()->find(wstring(kMaxProfilePath, u'a')));
}

TEST_F(Profiles, CopyAndMoveFoldersAlsoIntoThemselves) {
    const auto profile = open();
    profile->change(ProfileChanges().set(u"a", 0).set(u"a/x", 1).set(u"a/y/z", 2).set(u"ab", 3));
    profile->copy(u"a", u"a/y");
    EXPECT_EQ(
        contents(*profile),
        (Model{
            {u"a", 0}, {u"a/x", 1}, {u"a/y", 0}, {u"a/y/x", 1}, {u"a/y/y/z", 2}, {u"a/y/z", 2}, {u"ab", 3}}));
    profile->move(u"a/y", u"a");
    EXPECT_EQ(contents(*profile), (Model{{u"a", 0}, {u"a/x", 1}, {u"a/y/z", 2}, {u"a/z", 2}, {u"ab", 3}}));
    profile->move(u"a", u"a/b");
    EXPECT_EQ(contents(*open()),
              (Model{{u"a/b", 0}, {u"a/b/x", 1}, {u"a/b/y/z", 2}, {u"a/b/z", 2}, {u"ab", 3}}));
}

TEST_F(Profiles, ExportAndImportAFolder) {
    const auto profile = open();
    profile->set(u"report/built-in", 0, ProfileLayer::builtIn);
    profile->change(ProfileChanges().set(u"report/x", u"line\nfeed").set(u"report/y/z", 2).set(u"other", 3));
    const wstring url = from_utf8(file("export.list"));
    profile->exportTo(url, u"report");
    profile->importFrom(url, u"copy/of");
    EXPECT_EQ(profile->get(u"copy/of/x", wstring()), u"line\nfeed");
    EXPECT_EQ(profile->get(u"copy/of/y/z", 0), 2);
    EXPECT_EQ(profile->entries(u"copy").size(), 2U);

    const std::string whole = bytesOf(file("export.list"));
    const Model before = contents(*profile);
    for (std::size_t size = 0; size < whole.size(); size += 7) {
        write(file("export.list"), std::string_view(whole).substr(0, size));
        EXPECT_EQ(refusal<ProfileException>([&] { profile->importFrom(url, u"never"); }),
                  messages::kProfileImport)
            << size;
    }
    EXPECT_EQ(contents(*profile), before);
}

TEST_F(Profiles, TellWhatHasChangedHereAndElsewhere) {
    const auto profile = open();
    const auto other = open();
    std::vector<wstring> all;
    std::vector<wstring> some;
    const Connection first = profile->watch({}, [&](const wstring& path) { all.push_back(path); });
    Connection second = profile->watch(u"a/b", [&](const wstring& path) { some.push_back(path); });
    profile->change(ProfileChanges().set(u"a/b/c", 1).set(u"a/bc", 1));
    EXPECT_EQ(all, (std::vector<wstring>{u"a/b/c", u"a/bc"}));
    EXPECT_EQ(some, (std::vector<wstring>{u"a/b/c"}));
    other->set(u"a/b", 2);
    EXPECT_EQ(profile->get(u"a/b", 0), 0) << "as of the last refresh";
    EXPECT_TRUE(profile->refresh());
    EXPECT_EQ(profile->get(u"a/b", 0), 2);
    EXPECT_EQ(some, (std::vector<wstring>{u"a/b/c", u"a/b"}));
    EXPECT_FALSE(profile->refresh());
    other->remove(u"a");
    profile->set(u"unrelated", 1);
    EXPECT_EQ(some.back(), u"a") << "a change tells what others did before";
    second.disconnect();
    const std::size_t told = some.size();
    profile->set(u"a/b", 1);
    EXPECT_EQ(some.size(), told);
}

TEST_F(Profiles, LetASinkReadAndChange) {
    const auto profile = open();
    const Connection connection =
        profile->watch(u"in", [&](const wstring&) { profile->set(u"out", profile->get(u"in", 0) * 2); });
    profile->set(u"in", 21);
    EXPECT_EQ(profile->get(u"out", 0), 42);
}

TEST_F(Profiles, KeepAFileThatIsOneBraceListAfterEveryChange) {
    const auto profile = open();
    for (int i = 0; i < 100; ++i) {
        profile->change(ProfileChanges().set(u"value", wstring(50, u'"') + u"\n").remove(u"folder"));
        const wstring text = from_utf8(bytesOf(userFile()));
        MemoryInStream in(text);
        ListScanner scanner(in);
        ListScanner::Token token = scanner.next();
        while (token != ListScanner::Token::endOfText && token != ListScanner::Token::error)
            token = scanner.next();
        ASSERT_EQ(token, ListScanner::Token::endOfText) << i;
    }
}

TEST_F(Profiles, CountTheStartsOfAProgramAsThePageShows) {
    EXPECT_EQ(count_start(*open()), 1);
    EXPECT_EQ(count_start(*open()), 2);
}

TEST_F(Profiles, RefuseALaterVersionAndLeaveItAlone) {
    std::filesystem::create_directories(file("user"));
    const std::string later = "{\"settings\",2,\nwhatever}\n";
    write(userFile(), later);
    const auto profile = open();
    EXPECT_FALSE(profile->find(u"a"));
    EXPECT_EQ(profile->takeReports().size(), 1U);
    EXPECT_EQ(refusal<ProfileException>([&] { profile->set(u"a", 1); }), messages::kProfileVersion);
    EXPECT_EQ(bytesOf(userFile()), later);
}

} // namespace
} // namespace core::test
