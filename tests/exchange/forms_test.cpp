// SPDX-License-Identifier: Apache-2.0
// Tables as JSON and back, and as the text of pages.
#include "tests/exchange/exchange_fixture.h"

#include <core/exchange/table_view.h>

#include <sstream>

std::string to_lines(const std::string& csv, core::Losses& losses); // of docs/exchange.md

namespace core {
namespace {

class FormsTest : public ExchangeTest {
  protected:
    static std::string from(const std::string& text, const JsonTableOptions& options = {}) {
        return told([&] { return json(read_json_table(text, u"x.json", options)); });
    }
    static std::string written(const Value& table, TableForm form) {
        std::ostringstream out;
        write_table(out, table, form, 100);
        return out.str();
    }
};

TEST_F(FormsTest, ArraysOfObjectsAreTables) {
    const std::string same =
        R"([{"A":1.5,"B":"x","C":true,"D":null},{"A":123456789012345678901234567890.5,"B":"","C":false,"D":[1,{"E":2}]}])";
    EXPECT_EQ(from(same), same);
    EXPECT_EQ(from("\xEF\xBB\xBF"
                   "{\"A\":1}\r\n\n  {\"B\":\"y\"}\n"),
              R"([{"A":1,"B":null},{"A":null,"B":"y"}])");
    EXPECT_EQ(from("[]"), "[]");
    EXPECT_EQ(from(R"([{"a b":1,"A_B":2,"":3}])"), R"([{"a_b":1,"A_B_2":2,"Column":3}])");
    EXPECT_EQ(from(R"([{"A":1,"A":2}])"), R"([{"A":2}])");
    EXPECT_EQ(
        from(R"([{"Day":"2024-02-29","N":"x"},{"Day":"2024-01-01T10:00:00"}])", {.columns = u"N, Day Date"}),
        R"([{"N":"x","Day":"2024-02-29T00:00:00"},{"N":null,"Day":"2024-01-01T10:00:00"}])");
    for (const char* const no : {"5", "[1]", "[[{}]]", "[{},\"x\"]", "{\"A\":1} 2"})
        EXPECT_TRUE(from(no).starts_with("! ")) << from(no);
    EXPECT_TRUE(from("{\"A\":1}\n{\"A\":}\n").starts_with("! x.json, line 2, column 6: malformed JSON: "));
    EXPECT_EQ(told([] { return json(read_json_table("[{},\n{\"A\":1", u"x.json")); }),
              "! x.json, line 2, column 7: malformed JSON: the text ends before the value is whole");
    EXPECT_EQ(told([] { return json(read_json_table("[{},5]", u"x.json")); }),
              "! x.json, line 1, column 6: The JSON text is not a table: its element 2 is not an object.");
    const auto table = read_json_table(R"([{"A":1,"B":"x"},{"A":null,"B":1}])");
    EXPECT_EQ(types(table, 0), "UN");
    EXPECT_EQ(types(table, 1), "*");
    EXPECT_EQ(to_json_lines(Value(table.query<IValue>())), "{\"A\":1,\"B\":\"x\"}\n{\"A\":null,\"B\":1}\n");
    EXPECT_EQ(to_json(from_json_lines("1\n\n[2]\n")), "[1,[2]]");
    EXPECT_EQ(to_json_lines(Value(5)), "5\n");
}

TEST_F(FormsTest, ThePageShowsWhatHappens) {
    Losses losses;
    EXPECT_EQ(to_lines("Price\n1.25\nabc\n", losses), "{\"Price\":1.25}\n{\"Price\":null}\n");
    EXPECT_EQ(losses.count(), 1U);
}

TEST_F(FormsTest, DatesThatAreAllWholeDaysHaveNoTimes) {
    const auto in_all = [](const std::string& day, const std::string& csv, const TypeDomain& domain) {
        const auto table = read(csv);
        table->columns().setType(table->columns().find(u"D"), domain);
        const Value value(table.query<IValue>());
        for (const TableForm form :
             {TableForm::table, TableForm::fixed, TableForm::markdown, TableForm::html}) {
            const std::string text = written(value, form);
            const std::size_t at = text.find("2024-02-29");
            ASSERT_NE(at, std::string::npos) << text;
            EXPECT_EQ(text.substr(at, day.size()), day);
            EXPECT_TRUE(text[at + day.size()] == ' ' || text[at + day.size()] == '<') << text;
        }
    };
    const std::string days = "D,N\n2024-02-29,1\n,2\n2024-03-01,3\n";
    const std::string times = "D,N\n2024-02-29,1\n2024-03-01T13:05:07,3\n";
    const TypeDomain any(kDateType);
    in_all("2024-02-29", days, any);
    in_all("2024-02-29 00:00:00", times, any);
    TypeDomain day = any, time = any;
    day.setDateQualifiers(DateQualifiers(DateFractions::date));
    in_all("2024-02-29", days, day);
    time.setDateQualifiers(DateQualifiers(DateFractions::time));
    EXPECT_EQ(time.presentation(Value(Date(1, 1, 1, 13, 5, 7))), u"13:05:07");
    EXPECT_EQ(day.presentation(Value(Date(2024, 2, 29, 13, 5, 7))), u"2024-02-29");
}

TEST_F(FormsTest, NumbersHaveTheDigitsOfTheirColumn) {
    const auto table = read("Name,Price\nx,1.5\nyy,12\n", {.columns = u"Price Number(10,2)"});
    const Value value(table.query<IValue>());
    EXPECT_EQ(written(value, TableForm::markdown),
              "| Name | Price |\n| --- | ---: |\n| x | 1.50 |\n| yy | 12.00 |\n");
    EXPECT_NE(written(value, TableForm::html).find("<td align=\"right\">12.00</td>"), std::string::npos);
    EXPECT_EQ(written(value, TableForm::fixed), "Name  Price\nx      1.50\nyy    12.00\n");
    EXPECT_EQ(written(value, TableForm::csv), "Name,Price\r\nx,1.5\r\nyy,12\r\n") << "for programs";
}

TEST_F(FormsTest, PagesAndLists) {
    const auto table = read("Name,Price\n\"a|b <i>\n*\",1.5\nжж,12\n");
    const Value value(table.query<IValue>());
    EXPECT_EQ(written(value, TableForm::markdown),
              "| Name | Price |\n| --- | ---: |\n| a\\|b &lt;i><br>\\* | 1.5 |\n| жж | 12 |\n");
    EXPECT_EQ(written(value, TableForm::html),
              "<table>\n<tr><th>Name</th><th>Price</th></tr>\n"
              "<tr><td>a|b &lt;i&gt;<br>*</td><td align=\"right\">1.5</td></tr>\n"
              "<tr><td>жж</td><td align=\"right\">12</td></tr>\n</table>\n");
    EXPECT_EQ(written(value, TableForm::fixed), "Name       Price\na|b <i>↵*    1.5\nжж            12\n");
    EXPECT_EQ(written(value, TableForm::csv), "Name,Price\r\n\"a|b <i>\n*\",1.5\r\nжж,12\r\n");
    EXPECT_EQ(written(value, TableForm::jsonl),
              "{\"Name\":\"a|b <i>\\n*\",\"Price\":1.5}\n{\"Name\":\"жж\",\"Price\":12}\n");
    const GenericValue again = GenericValue::fromString(from_utf8(written(value, TableForm::list)));
    EXPECT_EQ(to_json(again), to_json(value));
    EXPECT_THROW(written(Value(1), TableForm::html), ContextException);
    for (const char* const name : {"table", "csv", "json", "jsonl", "markdown", "html", "list", "fixed"})
        EXPECT_TRUE(table_form(name)) << name;
    EXPECT_FALSE(table_form("xml"));
}

} // namespace
} // namespace core
