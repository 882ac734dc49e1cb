// SPDX-License-Identifier: Apache-2.0
// Concerns: which texts of cells are numbers, what numbers they are, and what a column of limited numbers
// keeps of them, beside a model that works on the digits.
#include "tests/exchange/exchange_fixture.h"

#include <core/tables/errors.h>

#include <array>
#include <cstdlib>
#include <optional>
#include <regex>

namespace core {
namespace {

/// A number as its digits: whole ones, then `fraction` ones behind the point.
struct Digits {
    bool negative = false;
    std::string all;
    std::size_t fraction = 0;

    [[nodiscard]] std::string text() const {
        const std::string filled =
            all.size() > fraction ? all : std::string(fraction + 1 - all.size(), '0') + all;
        std::string whole = filled.substr(0, filled.size() - fraction);
        std::string behind = filled.substr(filled.size() - fraction);
        whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size() - 1));
        behind.erase(behind.find_last_not_of('0') + 1);
        if (whole == "0" && behind.empty())
            return "0";
        return (negative ? "-" : "") + whole + (behind.empty() ? "" : '.' + behind);
    }
};

/// What a text is as a number; nothing when it is none.
std::optional<Digits> number_of(const std::string& text) {
    static const std::regex kForm(R"(([+-]?)(\d*)(?:\.(\d*))?(?:[eE]([+-]?\d{1,4}))?)");
    std::smatch parts;
    if (!std::regex_match(text, parts, kForm) || parts.length(2) + parts.length(3) == 0)
        return std::nullopt;
    const int exponent = parts[4].matched ? std::stoi(parts[4]) : 0;
    if (exponent > 1000 || exponent < -1000) // nobody means such a number
        return std::nullopt;
    Digits digits{parts[1] == "-", parts[2].str() + parts[3].str(),
                  static_cast<std::size_t>(parts.length(3))};
    if (exponent < 0)
        digits.fraction += static_cast<std::size_t>(-exponent);
    const auto missing = std::max<std::ptrdiff_t>(exponent - parts.length(3), 0);
    digits.all.append(exponent > 0 ? static_cast<std::size_t>(missing) : 0, '0');
    if (exponent > 0)
        digits.fraction -= std::min(digits.fraction, static_cast<std::size_t>(exponent));
    return digits;
}

class NumberCells : public ExchangeTest {
  protected:
    std::size_t below(std::size_t count) { return random_() % count; }
    std::string digits(std::size_t most) {
        std::string text;
        for (std::size_t i = below(most + 1); i > 0; --i)
            text += static_cast<char>('0' + below(10));
        return text;
    }
    /// Most of the texts are numbers, some in several ways nearly so.
    std::string text() {
        static constexpr const char* kSigns[] = {"", "", "-", "+", "+-", "--", "++"};
        const std::size_t size = below(5) == 0 ? 24 : 4;
        std::string text = kSigns[below(std::size(kSigns))] + digits(size);
        if (below(2) == 0)
            text += '.' + digits(size);
        if (below(3) == 0)
            text += std::string(below(2) == 0 ? "e" : "E") + kSigns[below(5)] + digits(below(5) == 0 ? 4 : 2);
        if (below(20) == 0)
            text.insert(below(text.size() + 1), 1, "xe.+- ,"[below(7)]);
        return text;
    }
    std::mt19937_64 random_{11};
};

TEST_F(NumberCells, AreReadAsTheirDigits) {
    for (int i = 0; i < 10'000; ++i) {
        const std::string given = text();
        const auto bare = given.find_first_not_of(' ') == std::string::npos
                              ? std::string()
                              : given.substr(given.find_first_not_of(' '),
                                             given.find_last_not_of(' ') + 1 - given.find_first_not_of(' '));
        Losses losses;
        const auto table = read("P,Q\n\"" + given + "\",1\n", {.columns = u"P Number", .losses = &losses});
        const auto expected = number_of(bare);
        ASSERT_EQ(losses.count(), expected || bare.empty() ? 0U : 1U) << '"' << given << '"';
        const GenericValue found = cell(table, 0);
        if (expected) {
            ASSERT_EQ(to_utf8(found.asNumeric()->toString()), expected->text()) << '"' << given << '"';
        } else {
            ASSERT_TRUE(found.isUndefined()) << '"' << given << '"';
        }
    }
}

TEST_F(NumberCells, AreKeptAsFarAsTheColumnGoes) {
    for (int i = 0; i < 4'000; ++i) {
        const std::int64_t word = static_cast<std::int64_t>(below(below(2) == 0 ? 100'000'000 : 2'000'000)) *
                                  (below(3) == 0 ? -1 : 1);
        const std::size_t places = below(5);
        const std::int64_t unit = std::array<std::int64_t, 5>{1, 10, 100, 1000, 10'000}[places];
        // Number(6,2): at most 9999.99, with half a cent and more away from zero
        std::int64_t cents = (word < 0 ? -1 : 1) * ((std::abs(word) * 1000 / unit + 5) / 10);
        const bool isRounded = cents * unit != word * 100;
        const bool isTooLarge = std::abs(cents) > 999'999;
        const std::string given =
            to_utf8(Numeric::fromScaled(word, static_cast<std::uint32_t>(places)).toString());
        Losses losses;
        const auto table = read("P,Q\n" + given + ",1\n", {.columns = u"P Number(6,2)", .losses = &losses});
        ASSERT_EQ(losses.empty(), !isRounded && !isTooLarge) << given;
        if (isTooLarge)
            cents = cents < 0 ? -999'999 : 999'999;
        ASSERT_TRUE(cell(table, 0).equals(Numeric::fromScaled(cents, 2))) << given << ' ' << cents;
        if (!losses.empty()) {
            ASSERT_EQ(losses.first().front().reason, isTooLarge ? LossReason::tooLarge : LossReason::rounded)
                << given;
        }
    }
}

} // namespace
} // namespace core
