// SPDX-License-Identifier: Apache-2.0
#include <core/files.h>
#include <core/runtime/utf8.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace core {
namespace {

TEST(FileURL, CarriesPathsThereAndBack) {
    EXPECT_EQ(file_url("/a b/ж%.txt"), u"file:///a%20b/%D0%B6%25.txt");
    EXPECT_EQ(file_path(u"/a b/ж%20"), "/a b/ж%20") << "a plain path is taken as it is";
    EXPECT_EQ(file_path(u"file:///100%"), "/100%");
    EXPECT_EQ(file_path(u"File:///a%20b"), "/a b") << "schemes have no case";
    URL url = split_url(u"lumstg:///a?x;NoSortedCheck;;y");
    split_options(url);
    EXPECT_EQ(url.scheme, u"lumstg");
    EXPECT_EQ(url.path, u"/a");
    EXPECT_EQ(url.options, (std::vector<wstring>{u"x", u"NoSortedCheck", u"y"}));
    EXPECT_TRUE(url.hasOption(u"NOSORTEDCHECK"));
    EXPECT_FALSE(url.hasOption(u"NoSorted"));
    for (const wchar* const path :
         {u"not a://scheme", u"://a", u"-://a", u"a{://b", u"a:/b", u"@://b", u"[://b", u"`://b", u"/://b"})
        EXPECT_EQ(split_url(path).path, path) << "a path on disk";
    for (const wchar* const scheme : {u"a", u"z", u"A", u"Z", u"0", u"9", u"x32Z"}) {
        EXPECT_EQ(split_url(wstring(scheme) + u"://p://q").scheme, scheme);
        EXPECT_EQ(split_url(wstring(scheme) + u"://p://q").path, u"p://q");
    }
    EXPECT_EQ(file_path(u"file://%4"), "%4");
    EXPECT_EQ(file_path(u"file://%4g%g4%41"), "%4g%g4A");
    EXPECT_EQ(file_url("%41"), u"file://%2541");
}

TEST(ResolveURL, DoesWhatTheStandardShows) {
    const wstring_view base = u"http://a/b/c/d;p?q";
    const std::pair<const wchar*, const wchar*> shown[] = {
        {u"g:h", u"g:h"},
        {u"g", u"http://a/b/c/g"},
        {u"./g", u"http://a/b/c/g"},
        {u"g/", u"http://a/b/c/g/"},
        {u"/g", u"http://a/g"},
        {u"//g", u"http://g"},
        {u"?y", u"http://a/b/c/d;p?y"},
        {u"g?y", u"http://a/b/c/g?y"},
        {u"#s", u"http://a/b/c/d;p?q#s"},
        {u"g?y#s", u"http://a/b/c/g?y#s"},
        {u";x", u"http://a/b/c/;x"},
        {u"g;x?y#s", u"http://a/b/c/g;x?y#s"},
        {u"", u"http://a/b/c/d;p?q"},
        {u".", u"http://a/b/c/"},
        {u"..", u"http://a/b/"},
        {u"../g", u"http://a/b/g"},
        {u"../..", u"http://a/"},
        {u"../../../../g", u"http://a/g"},
        {u"/../g", u"http://a/g"},
        {u"g.", u"http://a/b/c/g."},
        {u"..g", u"http://a/b/c/..g"},
        {u"./g/.", u"http://a/b/c/g/"},
        {u"g;x=1/../y", u"http://a/b/c/y"},
        {u"g?y/../x", u"http://a/b/c/g?y/../x"},
        {u"g#s/../x", u"http://a/b/c/g#s/../x"},
        {u"http:g", u"http:g"},
    };
    for (const auto& [reference, result] : shown)
        EXPECT_EQ(resolve_url(base, reference), result);
    EXPECT_EQ(resolve_url(u"http://a", u"b"), u"http://a/b");
}

/// The algorithm of the standard, step by step.
wstring without_dots(wstring in) {
    wstring out;
    while (!in.empty()) {
        if (in.starts_with(u"/./")) {
            in.erase(0, 2);
        } else if (in == u"/.") {
            in = u"/";
        } else if (in.starts_with(u"/../") || in == u"/..") {
            in = in == u"/.." ? u"/" : in.substr(3);
            out.resize(out.rfind(u'/') == wstring::npos ? 0 : out.rfind(u'/'));
        } else {
            const auto end = std::min(in.find(u'/', 1), in.size());
            out += in.substr(0, end);
            in.erase(0, end);
        }
    }
    return out;
}

TEST(ResolveURL, RemovesDotsAsTheAlgorithmOfTheStandardDoes) {
    std::mt19937 random(5);
    for (int round = 0; round < 20000; ++round) {
        wstring path = u"/";
        for (auto i = random() % 12; i > 0; --i)
            path.push_back(u"/.a/."[random() % 5]);
        if (!path.starts_with(u"//")) { // which is an authority
            ASSERT_EQ(resolve_url(u"http://h", path), u"http://h" + without_dots(path));
            ASSERT_EQ(resolve_url(u"file:///x", path), u"file://" + without_dots(path));
        }
    }
}

TEST(ResolveURL, KnowsTheURLsOfThisLibrary) {
    const std::pair<std::pair<const wchar*, const wchar*>, const wchar*> cases[] = {
        {{u"/data/a b/отчёт.script", u"data/x.csv"}, u"file:///data/a%20b/data/x.csv"},
        {{u"file:///data/a%20b/c", u"../%D0%B6?"}, u"file:///data/%D0%B6?"},
        {{u"file://sub/a", u"b"}, u"file://sub/b"},
        {{u"file://sub/a", u"../../b"}, u"file://../b"},
        {{u"file://a", u"."}, u"file://./"},
        {{u"file://a/b", u"..//c"}, u"file://.//c"},
        {{u"mem://a/b", u"../c"}, u"mem://c"},
        {{u"shm://", u"c"}, u"shm://c"},
        {{u"lumstg://c:/3/dir/a", u"../b"}, u"lumstg://c:/3/b"},
        {{u"lumstg://c:/3/a", u"file:///x"}, u"file:///x"},
    };
    for (const auto& [parts, result] : cases)
        EXPECT_EQ(resolve_url(parts.first, parts.second), result);
}

TEST(JoinURL, TakesANameAsItIs) {
    EXPECT_EQ(join_url(u"/a b", u"ж*.txt"), u"/a b/ж*.txt");
    EXPECT_EQ(join_url(u"/", u"x"), u"/x");
    EXPECT_EQ(join_url(u"", u"mem://x"), u"./mem://x") << "a name, not a URL";
    EXPECT_EQ(join_url(u"mem://", u"a/ж"), u"mem://a/ж");
    EXPECT_EQ(join_url(u"file:///a%20b/", u"50%*"), u"file:///a%20b/50%25%2A");
}

TEST(ShownURL, IsWhatPeopleWrite) {
    EXPECT_EQ(shown_url(file_url("нет.script")), u"нет.script");
    EXPECT_EQ(shown_url(file_url("/a b/50%\n\xFFж\xD0")), u"/a b/50%\\x0A\\xFFж\\xD0");
    EXPECT_EQ(shown_url(u"mem://%41"), u"mem://%41");
    EXPECT_EQ(shown_url(u"-"), u"-");
    EXPECT_EQ(shown_url(u"file://"), u"file://");
    try {
        (void)open_disk_file("нет такого", OpenMode::read);
    } catch (const FileException& e) {
        EXPECT_EQ(e.description().find(u'%'), wstring::npos) << e.what();
        EXPECT_EQ(e.parameters()[0], u"нет такого");
        EXPECT_EQ(file_path(e.url()), "нет такого");
    }
}

/// The plain rule, without any cleverness.
bool matches_plainly(wstring_view name, wstring_view pattern) {
    if (pattern.empty())
        return name.empty();
    if (pattern[0] == u'*')
        return matches_plainly(name, pattern.substr(1)) ||
               (!name.empty() && matches_plainly(name.substr(1), pattern));
    return !name.empty() && (pattern[0] == u'?' || pattern[0] == name[0]) &&
           matches_plainly(name.substr(1), pattern.substr(1));
}

TEST(Wildcard, MatchesAsThePlainRuleDoes) {
    std::mt19937 random(11);
    const auto text = [&random](wstring_view letters, std::size_t length) {
        wstring result;
        for (; length > 0; --length)
            result.push_back(letters[random() % letters.size()]);
        return result;
    };
    int matches = 0;
    for (int round = 0; round < 20000; ++round) {
        const wstring name = text(u"ab", random() % 8);
        const wstring pattern = text(u"ab*?", random() % 6);
        ASSERT_EQ(matches_wildcard(name, pattern), matches_plainly(name, pattern));
        matches += matches_wildcard(name, pattern) ? 1 : 0;
    }
    EXPECT_GT(matches, 1000);
    EXPECT_TRUE(matches_wildcard(u"a😀b", u"a?b")) << "one character, two units";
    EXPECT_FALSE(matches_wildcard(wstring(10000, u'a'), wstring(u"*a*a*a*a*a*a*a*b"))) << "in bounded time";
}

} // namespace
} // namespace core
