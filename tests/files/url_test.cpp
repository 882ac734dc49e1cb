// SPDX-License-Identifier: Apache-2.0
#include <core/files.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace core {
namespace {

TEST(FileURL, CarriesAnyPathThereAndBack) {
    std::mt19937 random(3);
    for (int round = 0; round < 500; ++round) {
        std::string path;
        for (auto i = random() % 20; i > 0; --i)
            path.push_back(static_cast<char>(1 + random() % 255));
        EXPECT_EQ(file_path(file_url(path)), path);
    }
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
