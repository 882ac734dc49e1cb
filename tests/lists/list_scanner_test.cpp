// SPDX-License-Identifier: Apache-2.0
// The scanner against a model of the grammar that goes over the whole text by recursion, on random texts;
// places, pieces and depth.
#include "tests/lists/streams.h"

#include <core/lists/list_scanner.h>
#include <core/runtime/guid.h>
#include <core/strings/char_class.h>

#include <random>
#include <vector>

namespace core {
namespace {

using Token = ListScanner::Token;
using Expected = ListScanner::Expected;

/// The grammar as it is told, without any care for speed.
class Model {
  public:
    explicit Model(wstring_view text) : text_(text) {}
    bool document() { return element() && (gap(), at_ == text_.size()); }

  private:
    [[nodiscard]] bool at(wchar unit) const { return at_ < text_.size() && text_[at_] == unit; }
    bool take(wchar unit) { return at(unit) && (++at_, true); }
    void gap() {
        while (at_ < text_.size() && is_space(text_[at_]))
            ++at_;
    }
    bool element() {
        gap();
        return at(u'{') ? list() : at(u'"') ? string() : bare();
    }
    bool list() {
        take(u'{');
        gap();
        if (take(u'}'))
            return true;
        do {
            if (!element())
                return false;
            gap();
        } while (take(u','));
        return take(u'}');
    }
    bool string() {
        take(u'"');
        while (at_ < text_.size()) {
            if (text_[at_++] != u'"' || take(u'"'))
                continue;
            if (!take(u'\\'))
                return true;
            for (int i = 0; i < 4; ++i, ++at_) {
                if (at_ == text_.size() ||
                    wstring_view(u"0123456789abcdefABCDEF").find(text_[at_]) == text_.npos)
                    return false;
            }
        }
        return false;
    }
    bool bare() {
        const std::size_t begin = at_;
        while (at_ < text_.size() && !is_space(text_[at_]) &&
               wstring_view(u",{}\"").find(text_[at_]) == text_.npos)
            ++at_;
        const wstring_view token = text_.substr(begin, at_ - begin);
        GUID id;
        return isNumber(token, u"-+", false) || (isNumber(token, u"-", true) && token.size() <= 31) ||
               from_string(token, id);
    }
    /// A decimal number, or with `floating` one of the forms of a floating-point token.
    static bool isNumber(wstring_view token, wstring_view signs, bool floating) {
        const auto take = [&](wstring_view units) {
            const bool found = !token.empty() && units.find(token.front()) != units.npos;
            token.remove_prefix(found ? 1 : 0);
            return found;
        };
        const auto digits = [&] {
            const std::size_t before = token.size();
            while (take(u"0123456789")) {
            }
            return before - token.size();
        };
        take(signs);
        std::size_t found = digits();
        if (take(u"."))
            found += digits() + (floating ? 1 : 0);
        if (floating && take(u"eE")) {
            take(u"-");
            found = digits() == 0 ? 0 : found;
        }
        return found > 0 && token.empty();
    }

    wstring_view text_;
    std::size_t at_ = 0;
};

/// Scans to the end and writes down what came; fails the test when the promises of the interface are broken.
wstring scanned(ListScanner& scanner) {
    wstring seen;
    bool inside = false;
    for (std::uint32_t depth = 0;; depth = scanner.depth()) {
        switch (scanner.next()) {
        case Token::beginOfList:
            EXPECT_EQ(scanner.depth(), depth + 1);
            seen += u'{';
            break;
        case Token::endOfList:
            EXPECT_EQ(scanner.depth(), depth - 1);
            seen += u'}';
            break;
        case Token::string:
        case Token::bare:
            if (!inside)
                seen += scanner.token() == Token::string ? u's' : u'b';
            inside = !scanner.isWhole();
            seen += scanner.text();
            seen += inside ? u"" : u";";
            break;
        case Token::endOfText:
        case Token::error:
            EXPECT_EQ(scanner.next(), scanner.token());
            EXPECT_EQ(scanner.text(), u"");
            return scanner.token() == Token::error ? u"error" : seen;
        }
    }
}

wstring scanned(const wstring& text) {
    wstring first;
    test::on_every_stream(text, [&](wistream& stream) {
        ListScanner scanner(stream);
        const wstring seen = scanned(scanner);
        if (first.empty())
            first = seen;
        EXPECT_EQ(seen, first) << ::testing::PrintToString(text);
    });
    return first;
}

TEST(ListScanner, TakesTextApart) {
    EXPECT_EQ(scanned(u" { 1 ,\"a\"\"\"\\0041\" , {} ,{-2.5e-3\n}} "), u"{b1;sa\"A;{}{b-2.5e-3;}}");
    EXPECT_EQ(scanned(u"\"\""), u"s;");
    EXPECT_EQ(scanned(u"E88A796D-7758-48a7-9ba7-781e269e9aa4"), u"bE88A796D-7758-48a7-9ba7-781e269e9aa4;");
    EXPECT_EQ(scanned(u"\x0661\x0662"), u"b\x0661\x0662;"); // digits of another script
    EXPECT_EQ(scanned(u"\"" + wstring(10'000, u'x') + u"\""), u"s" + wstring(10'000, u'x') + u";");
    EXPECT_EQ(scanned(wstring(9'000, u'7')), u"b" + wstring(9'000, u'7') + u";");
    EXPECT_EQ(scanned(wstring(31, u'7') + u"e1"), u"error"); // a floating-point token has an end
}

TEST(ListScanner, AcceptsExactlyTheGrammar) {
    // Texts from pieces that often fit, then with units changed, so that both answers are common.
    const wstring pieces[] = {u"{",  u"}",   u",",    u"\"",       u"\"a\"",
                              u"1",  u"-",   u"+5",   u"1.5",      u".",
                              u"e5", u"e-5", u"\"\"", u"\"\\00e9", u" ",
                              u"\n", u"x",   u"\\",   u"{1,2}",    u"e88a796d-7758-48a7-9ba7-781e269e9aa4"};
    std::mt19937 random(17);
    int accepted = 0;
    for (int i = 0; i < 60'000; ++i) {
        wstring text;
        if (i % 2 == 0) {
            for (auto count = random() % 9; count > 0; --count)
                text += pieces[random() % std::size(pieces)];
        } else {
            // A list that fits, and one change.
            text = u"{";
            for (auto count = random() % 6; count > 0; --count)
                text += (text.size() == 1 ? u"" : u",") + pieces[3 + random() % 15];
            text += u"}";
            if (random() % 2 == 0)
                text[random() % text.size()] = pieces[random() % 18][0];
        }
        const bool fits = Model(text).document();
        accepted += fits ? 1 : 0;
        ASSERT_EQ(scanned(text) != u"error", fits) << ::testing::PrintToString(text);
    }
    EXPECT_GT(accepted, 2'000);
}

TEST(ListScanner, TellsThePlaceAndWhatWasExpected) {
    const struct {
        wstring text;
        Expected expected;
        std::uint64_t offset, line, column;
    } cases[] = {{u"", Expected::element, 0, 1, 1},
                 {u"{1,\n }", Expected::element, 5, 2, 2},
                 {u"{1 2}", Expected::separator, 3, 1, 4},
                 {u"{1", Expected::separator, 2, 1, 3},
                 {u"{}\n\n}", Expected::endOfText, 4, 3, 1},
                 {u"{\"a\nb\"\"", Expected::quote, 7, 2, 4},
                 {u"{\"\"\\12\n}", Expected::hexDigit, 6, 1, 7},
                 {u"{1,12x}", Expected::bareToken, 5, 1, 6},
                 {u"{12-}", Expected::bareToken, 3, 1, 4},
                 {u"{- ,1}", Expected::bareToken, 2, 1, 3},
                 {u"{\"a\"1}", Expected::separator, 4, 1, 5},
                 {u"{\"\xFFFF\"}", Expected::quote, 2, 1, 3}, // the end of the text
                 {u"{1}\n\xFFFF{2}", Expected::endOfText, 4, 2, 1},
                 {u"{1}\xFFFF", Expected::endOfText, 3, 1, 4},
                 {u"\xFFFF{1}", Expected::element, 0, 1, 1},
                 {wstring(ListScanner::kMaxDepth + 1, u'{'), Expected::lessDepth, ListScanner::kMaxDepth, 1,
                  ListScanner::kMaxDepth + 1}};
    for (const auto& [text, expected, offset, line, column] : cases) {
        test::on_every_stream(text, [&, e = expected, o = offset, l = line, c = column](wistream& stream) {
            ListScanner scanner(stream);
            EXPECT_EQ(scanned(scanner), u"error");
            EXPECT_EQ(scanner.expected(), e);
            EXPECT_EQ(scanner.place().offset, o);
            EXPECT_EQ(scanner.place().line, l);
            EXPECT_EQ(scanner.place().column, c);
            EXPECT_NE(scanner.message(), u"");
        });
    }
    MemoryInStream stream(u"{1,\n  \"x\ny\"}");
    ListScanner scanner(stream);
    while (scanner.next() != Token::string) {
    }
    EXPECT_EQ(scanner.place().line, 2U); // where the token begins
    EXPECT_EQ(scanner.place().column, 3U);
}

} // namespace
} // namespace core
