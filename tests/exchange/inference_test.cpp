// SPDX-License-Identifier: Apache-2.0
// The types of columns: each column gets the narrowest that all its cells have, and where a cell that comes
// late has another one, the texts before it are what they were.
#include "tests/exchange/exchange_fixture.h"

#include <algorithm>

namespace core {
namespace {

class InferenceTest : public ExchangeTest {
  protected:
    static std::string one_column(const std::vector<std::string>& cells) {
        std::string text = "A,B\n"; // with a second column no row is blank
        for (const std::string& cell : cells)
            text += '"' + cell + "\",\n";
        return text;
    }
};

TEST_F(InferenceTest, FindsTheNarrowestTypeOfAllCells) {
    const struct {
        std::vector<std::string> cells;
        std::string types;
        std::string last; ///< the presentation of the last cell
        const char* locale = nullptr;
    } cases[] = {
        {{"1", "-2.50", "1e3", "+7", ".5"}, "N", "0.5"},
        {{"1", "", "3"}, "UN", "3"},
        {{"9223372036854775807", "0.000000000000000001", "123456789012345678901234567890"},
         "N",
         "123456789012345678901234567890"},
        {{"1", "007"}, "S", "007"},
        {{"1", "1,5"}, "S", "1,5"},
        {{"1", "abc"}, "S", "abc"},
        {{"1", "--1"}, "S", "--1"},
        {{"1", "1e"}, "S", "1e"},
        {{"1", "1e99999"}, "S", "1e99999"},
        {{"1.5", "1.234,50", "12"}, "S", "12", "de"},
        {{"1.234,50", "-12"}, "N", "-12", "de"},
        {{"1\u00A0250,00", "1 250,00", "0,5"}, "N", "0.5", "ru"},
        {{"1.234,50", "1.23"}, "S", "1.23", "de"},
        {{"1.5", "12.25"}, "N", "12.25", "de"},
        {{"2024-02-29", "2024-02-29T13:05:07", "2024-02-29 13:05"}, "D", "2024-02-29 13:05:00"},
        {{"2024-02-29", "2024-02-30"}, "S", "2024-02-30"},
        {{"20240229130507", "00010101000000"}, "D", "0001-01-01 00:00:00"},
        {{"20240229130507", "20240230000000"}, "N", "20240230000000"},
        {{"29.02.2024", "1.3.2024"}, "D", "2024-03-01 00:00:00", "de"},
        {{"2/29/2024", "12/31/2024 13:05"}, "D", "2024-12-31 13:05:00", "en_US"},
        {{"2/29/24", "Feb 29, 2024", "1/2/2024, 1:05:07\u202FPM"}, "D", "2024-01-02 13:05:07", "en_US"},
        {{"29 февраля 2024 г.", "1.3.2024 1:05"}, "D", "2024-03-01 01:05:00", "ru"},
        {{"29.02.2024", "13:05"}, "S", "13:05", "ru"},
        {{"29.02.2024", "2024-02-29"}, "S", "2024-02-29", "ru"},
        {{"12,34,567.5", "-1,00,000"}, "N", "-100000", "hi"},
        {{"12,34,567.5", "100,000"}, "S", "100,000", "hi"},
        {{"١٬٢٣٤٫٥", "7"}, "N", "7", "ar_EG"},
        {{"1,5", "007"}, "S", "007", "de"},
        {{"1,5", "٠٠٧"}, "S", "٠٠٧", "ar_EG"},
        {{"True", "false"}, "B", "No"},
        {{"Истина", "", "ложь"}, "UB", "No"},
        {{"True", "1"}, "S", "1"},
        {{"", ""}, "*", ""},
        {{}, "*", ""},
    };
    for (const auto& c : cases) {
        CsvReadOptions options;
        if (c.locale != nullptr)
            options.locale = Locale(c.locale);
        const auto table = read(one_column(c.cells), options);
        SCOPED_TRACE(c.cells.empty() ? "" : c.cells.back());
        EXPECT_EQ(types(table), c.types);
        if (!c.cells.empty()) {
            EXPECT_EQ(to_utf8(cell(table, c.cells.size() - 1).presentation()), c.last);
        }
    }
}

TEST_F(InferenceTest, AMomentIsSpelledToTheLastSign) {
    for (const char* const cell :
         {"2024-02-29x13:05", "2024-02-29 13-05", "2024-02-29x13:05:07", "2024-02-29T13:05-07",
          "2024-02-29 24:00", "2024-02-29 13:60", "2024-02-29 13:05:60", "2024-02-29T13:05:07,5"}) {
        const auto table = read(one_column({"2024-02-29", cell}));
        EXPECT_EQ(types(table), "S") << cell;
        EXPECT_TRUE(this->cell(table, 1).equals(from_utf8(cell))) << cell;
    }
}

TEST_F(InferenceTest, ATextThatComesLateLeavesAllTextsAsTheyWere) {
    // Spellings of one kind that all have one meaning each, and none of which is what a writer would write.
    const std::vector<std::vector<std::string>> kinds = {
        {"0", "-0", "12.50", "12.5", "-3", "+4", "1e2", "5.", ".25", " 6", "7 ", "123456789012345678901234",
         "0.00"},
        {"2024-02-29", "0001-01-01", "2024-02-29T13:05:07", "2024-02-29 13:05:07", "2024-02-29 13:05",
         "1999-12-31T23:59", "2024-01-01T00:00:00.1200", " 2024-01-01"},
        {"20240229130507", "00010101000000"},
        {"True", "FALSE", "true", "Истина"},
        {"1.234,50", "0,5", "12", "-1.000.000", "1234,5"},
        {"29.02.2024", "1.3.2024", "01.03.2024 13:05", "1.3.2024 1:05:07", "1.3.24", "2. Mai 2024"},
        {"12,34,567.5", "1,000", "-5.250", "+5", "1,00,00,000.00"},
        {"1\u00A0250,50", "1 250,5", "0,500", "1250", "−3"},
        {"2/29/2024", "02/29/2024", "2/9/24", "Feb 29, 2024", "2/29/2024 13:05:07"},
        {"١٬٢٣٤٫٥", "١٫٥٠", "-1.5"},
    };
    const char* const locales[] = {"de", "hi", "ru", "en_US", "ar_EG"};
    std::mt19937 random(11);
    const auto below = [&](std::size_t bound) { return random() % bound; };
    for (int round = 0; round < 400 && !HasFailure(); ++round) {
        const auto& kind = kinds[below(kinds.size())];
        std::vector<std::string> cells(below(30));
        for (std::string& cell : cells)
            cell = below(4) == 0 ? std::string(below(3), ' ') : kind[below(kind.size())];
        const std::string odd = below(2) == 0 ? "x" : "1-1";
        cells.insert(cells.begin() + static_cast<std::ptrdiff_t>(below(cells.size() + 1)), odd);
        CsvReadOptions options{.delimiter = ','};
        if (below(4) != 0)
            options.locale = Locale(locales[below(std::size(locales))]);
        const auto table = read(one_column(cells), options);
        ASSERT_EQ(types(table), "S") << odd;
        for (std::size_t row = 0; row < cells.size(); ++row)
            ASSERT_EQ(to_utf8(cell(table, row).presentation()), cells[row]) << row;
    }
}

TEST_F(InferenceTest, ManyTextsAreTheSameWithAndWithoutADictionary) {
    // Of the first column all are different, of the second few, of the third as many as of customers.
    constexpr std::size_t kRows = 150'000;
    std::string text = "A,B,C\n";
    const auto field = [](std::size_t row, std::size_t column) {
        return "имя " + std::to_string(column == 0 ? row : row * 7919 % (column == 1 ? 8 : 60'000));
    };
    for (std::size_t row = 0; row < kRows; ++row)
        text += field(row, 0) + ',' + field(row, 1) + ',' + field(row, 2) + '\n';
    const auto table = read(text, {.length = text.size()});
    ASSERT_EQ(table->rowCount(), kRows);
    for (std::size_t row = 0; row < kRows; row += 97) {
        for (std::size_t i = 0; i < 3; ++i)
            ASSERT_EQ(to_utf8(cell(table, row, i).presentation()), field(row, i)) << row;
    }
    const VTFindParam wanted[] = {{table->column(2).id, Value(from_utf8(field(3, 2)))}};
    std::size_t found = 0;
    for (std::size_t row = 0; row < kRows; ++row)
        found += field(row, 2) == field(3, 2) ? 1U : 0U;
    EXPECT_EQ(table->IValueTableBaseRO_findRows(wanted).size(), found);
}

} // namespace
} // namespace core
