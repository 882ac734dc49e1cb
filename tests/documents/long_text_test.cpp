// SPDX-License-Identifier: Apache-2.0
// Lines of long texts, where they stand thick and where there are none, beside a row of their starts.
#include <core/documents/text_manager.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace core {
namespace {

/// A text whose parts have ends of one kind or of all, at each unit or never.
wstring make_text(std::mt19937& random) {
    static constexpr wstring_view kEnds[] = {u"\n", u"\r\n", u"\r", u"\n\r"};
    wstring text;
    while (text.size() < 1'300'000) { // longer than one store
        const wstring_view end = kEnds[random() % std::size(kEnds)];
        const std::size_t apart = std::size_t{1} << random() % 16;
        const std::size_t until = text.size() + random() % 60'000;
        while (text.size() < until) {
            text.append(random() % apart, u'x');
            text += random() % 8 == 0 ? kEnds[random() % std::size(kEnds)] : end;
        }
    }
    return text;
}

std::vector<std::uint64_t> starts_of(const wstring& text) {
    std::vector<std::uint64_t> starts{0};
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n' || (text[i] == u'\r' && (i + 1 == text.size() || text[i + 1] != u'\n')))
            starts.push_back(i + 1);
    }
    return starts;
}

void check_lines(const TextSnapshot& text, const wstring& units, std::mt19937& random) {
    const std::vector<std::uint64_t> starts = starts_of(units);
    ASSERT_EQ(text.lineCount(), starts.size());
    for (int i = 0; i < 20'000; ++i) {
        const std::size_t line = random() % starts.size();
        ASSERT_EQ(text.lineStart(line), starts[line]);
        const std::uint64_t offset = random() % (units.size() + 1);
        const auto behind = std::upper_bound(starts.begin(), starts.end(), offset);
        ASSERT_EQ(text.lineOf(offset), static_cast<std::uint64_t>(behind - starts.begin()) - 1);
    }
}

TEST(LongText, LinesAreFoundWhereverTheyStand) {
    std::mt19937 random(3);
    wstring units = make_text(random);
    TextManager document(units);
    check_lines(document.text(), units, random);
    for (int i = 0; i < 3000; ++i) { // and in pieces of the stores
        const std::uint64_t begin = random() % units.size();
        const std::uint64_t count = std::min<std::uint64_t>(random() % 40, units.size() - begin);
        const wstring_view text = random() % 2 == 0 ? u"\r\n" : u"word";
        document.replace({begin, begin + count}, text);
        units.replace(begin, count, text);
    }
    check_lines(document.text(), units, random);
    while (document.undo()) {
    }
    check_lines(document.text(), document.text().text(), random);
}

} // namespace
} // namespace core
