// SPDX-License-Identifier: Apache-2.0
// Nothing is lost in silence: for each way in, one bad cell among many is an error that names it, or is
// reported where the caller wants to go on.
#include "tests/exchange/exchange_fixture.h"
#include "tests/support/rounds.h"

#include <core/tables/errors.h>

namespace core {
namespace {

class LossesTest : public ExchangeTest {
  protected:
    /// A bad cell among so many.
    static std::size_t many() { return support::rounds<std::size_t>(20'000, 1'000'000); }

    static void expect(const Losses& losses, std::size_t row, std::uint64_t line, const wchar* text,
                       LossReason reason) {
        ASSERT_EQ(losses.count(), 1U);
        const Loss& loss = losses.first().front();
        EXPECT_EQ(loss.row, row);
        EXPECT_EQ(loss.line, line);
        EXPECT_EQ(loss.column, u"Price");
        EXPECT_EQ(loss.text, text);
        EXPECT_EQ(loss.reason, reason);
    }
    static std::string csv(std::size_t bad, const std::string& cell) {
        std::string text = "Day,Price\n";
        for (std::size_t row = 0; row < many(); ++row)
            text += "2024-02-29," + (row == bad ? cell : std::to_string(row % 1000) + ".25") + "\n";
        return text;
    }
};

TEST_F(LossesTest, OfCsvWithTypes) {
    const struct {
        const char* cell;
        const wchar* text;
        LossReason reason;
        const char* why;
        const wchar* kept;
    } cases[] = {
        {"abc", u"abc", LossReason::notNumber, "“abc” is not a number", u""},
        {"\"1 250,00\"", u"1 250,00", LossReason::notNumber, "“1 250,00” is not a number", u""},
        {"12.345", u"12.345", LossReason::rounded, "“12.345” has more digits behind the point than the type",
         u"12.35"},
        {"100000", u"100000", LossReason::tooLarge, "“100000” has more digits than the type", u"9999.99"},
    };
    for (const auto& c : cases) {
        const std::size_t bad = many() - 3;
        const std::string text = csv(bad, c.cell);
        CsvReadOptions options{.columns = u"Price Number(6,2)"};
        EXPECT_EQ(outcome(text, options),
                  "! x.csv, line " + std::to_string(bad + 2) + ", column Price: " + c.why + ".");
        Losses losses;
        options.losses = &losses;
        const auto table = read(text, options);
        expect(losses, bad, bad + 2, c.text, c.reason);
        expect(table->losses(), bad, bad + 2, c.text, c.reason);
        EXPECT_EQ(cell(table, bad, 1).presentation(), c.kept);
        EXPECT_EQ(cell(table, bad - 1, 1).kind(), ValueKind::number);
    }
}

TEST_F(LossesTest, OfCsvInTheFormsOfALocale) {
    const std::size_t bad = many() / 2;
    std::string text = "Day;Price\n";
    for (std::size_t row = 0; row < many(); ++row)
        text += row == bad ? "1.3.2024;1.250,50\n" : "29.02.2024;1 250,50\n";
    EXPECT_EQ(outcome(text, {.columns = u"Price Number", .locale = Locale("ru")}),
              "! x.csv, line " + std::to_string(bad + 2) + ", column Price: “1.250,50” is not a number.");
    const auto found = read(text, {.locale = Locale("ru")});
    EXPECT_EQ(types(found, 0), "D");
    EXPECT_EQ(types(found, 1), "S") << "nothing is lost";
    EXPECT_EQ(to_utf8(cell(found, bad - 1, 1).presentation()), "1 250,50");
}

TEST_F(LossesTest, OfBytesThatAreNoText) {
    const std::size_t bad = many() / 2;
    const std::string line = "line " + std::to_string(bad + 2);
    for (const wchar* const columns : {u"", u"Price Number", u"Price String"}) {
        const std::string told = outcome(csv(bad, "1\xFF"), {.encoding = Encoding(), .columns = columns});
        EXPECT_TRUE(told.starts_with("! x.csv, " + line)) << told;
    }
}

TEST_F(LossesTest, OfCsvWithoutTypesAreNone) {
    const std::size_t bad = many() / 2;
    const auto table = read(csv(bad, "abc"));
    EXPECT_EQ(types(table, 1), "S"); // nothing is lost, and who totals it is told
    EXPECT_EQ(cell(table, bad, 1).presentation(), u"abc");
    EXPECT_EQ(cell(table, 1, 1).presentation(), u"1.25");
}

TEST_F(LossesTest, OfARowOfAnotherWidth) {
    Losses losses;
    const auto table = read("A,B\n1,2\n3\n4,5,6\n", {.delimiter = ',', .losses = &losses});
    ASSERT_EQ(losses.count(), 2U);
    EXPECT_EQ(losses.first()[0].reason, LossReason::missingCells);
    EXPECT_EQ(losses.first()[0].column, u"B");
    EXPECT_EQ(losses.first()[1].reason, LossReason::noColumn);
    EXPECT_EQ(losses.first()[1].text, u"6");
    EXPECT_EQ(losses.first()[1].line, 4U);
    EXPECT_EQ(json(table), R"([{"A":1,"B":2},{"A":3,"B":null},{"A":4,"B":5}])");
}

TEST_F(LossesTest, OfJson) {
    const std::size_t bad = many() / 3;
    const JsonTableOptions typed{.columns = u"Price Number"};
    for (const bool lines : {false, true}) {
        std::string text = lines ? "" : "[";
        for (std::size_t row = 0; row < many(); ++row)
            text += (row == 0 || lines ? "" : ",\n") + std::string(R"({"[\"{":[{}],"Price":)") +
                    (row == bad ? "\"abc\"" : "1.25") + "}" + (lines ? "\n" : "");
        text += lines ? "" : "]";
        const std::string where = std::to_string(bad + 1) + ", column Price: “abc” is not a number.";
        EXPECT_EQ(told([&] { return json(read_json_table(text, u"x.json", typed)); }),
                  "! x.json, line " + where);
        EXPECT_EQ(told([&] { return json(read_json_table(text, {}, typed)); }), "! Line " + where);
        Losses losses;
        static_cast<void>(read_json_table(text, u"x.json", {.columns = u"Price Number", .losses = &losses}));
        expect(losses, bad, bad + 1, u"abc", LossReason::notNumber);
    }
}

TEST_F(LossesTest, MessagesAreMadeFromTheirParameters) {
    const auto parameters = [](const Loss& loss, wstring_view source) {
        Losses losses;
        losses.add(loss);
        try {
            losses.check(source);
        } catch (const ConversionException& e) {
            std::string text = e.messageId();
            for (const wstring& one : e.parameters())
                text += '|' + to_utf8(one);
            return text;
        }
        return std::string();
    };
    EXPECT_EQ(parameters({.row = 6, .column = u"A", .text = u"x"}, u"f"),
              "IDS_VT_CELL_LOST|7|A|“x” has no reading in the type");
    EXPECT_EQ(parameters({.row = 6, .text = u"x"}, {}), "IDS_VL_ITEM_LOST|7|“x” has no reading in the type");
    EXPECT_EQ(parameters({.row = 6, .line = 9, .column = u"A", .text = u"x"}, {}),
              "IDS_VT_CELL_OF_LINE_LOST|9|A|“x” has no reading in the type");
    EXPECT_EQ(parameters({.row = 6, .line = 9, .column = u"A", .text = u"x"}, u"f"),
              "IDS_VT_CELL_OF_FILE_LOST|f|9|A|“x” has no reading in the type");
}

TEST_F(LossesTest, OfAColumnThatGetsAType) {
    const auto table = create_value_table();
    const std::int32_t price = table->addColumn(u"Price");
    const std::size_t bad = many() - 1;
    for (std::size_t row = 0; row < many(); ++row) {
        const Value cells[] = {row == bad ? Value(u"abc") : row % 2 == 0 ? Value(u"1.5") : Value(u"")};
        table->appendRow(cells);
    }
    EXPECT_EQ(told([&] {
                  table->setColumnType(price, TypeDomain(kNumberType));
                  return std::string();
              }),
              "! Row " + std::to_string(bad + 1) + ", column Price: “abc” is not a number.");
    EXPECT_EQ(table->get(0, price), Value(u"1.5")) << "nothing has changed";
    Losses losses;
    table->setColumnType(price, TypeDomain(kNumberType), &losses);
    expect(losses, bad, 0, u"abc", LossReason::notNumber);
    EXPECT_EQ(table->get(0, price), Value(Numeric::fromString("1.5")));
    EXPECT_EQ(table->get(bad, price), Value(0));
}

TEST_F(LossesTest, AreCountedBeyondThoseThatAreKept) {
    constexpr std::size_t kKept = Losses::kKept;
    Losses losses;
    for (std::size_t row = 0; row < kKept + 5; ++row)
        losses.add({.row = row, .line = row + 2, .column = u"A", .text = u"x\ny", .reason = LossReason::cut});
    EXPECT_EQ(losses.count(), kKept + 5);
    EXPECT_EQ(losses.first().size(), kKept);
    try {
        losses.check(u"f.csv");
        FAIL();
    } catch (const ConversionException& e) {
        EXPECT_EQ(e.line(), 2U);
        EXPECT_EQ(e.text(), u"x\ny");
        EXPECT_EQ(e.count(), kKept + 5);
        EXPECT_TRUE(std::string(e.what()).starts_with(
            "f.csv, line 2, column A: “x↵y” is longer than the type.\nf.csv, line 3,"))
            << e.what();
        EXPECT_TRUE(std::string(e.what()).ends_with("\n… and 1000 more cells.")) << e.what();
    }
}

} // namespace
} // namespace core
