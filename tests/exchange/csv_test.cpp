// SPDX-License-Identifier: Apache-2.0
// Comma-separated values: what another program writes is read, what is written another program reads, however
// the text is cut into pieces, and a row that is wrong is found.
#include "tests/exchange/exchange_fixture.h"

#include <core/collections/value_array.h>
#include <core/exchange/whole_file.h>

#include <cstdlib>
#include <sstream>

namespace core {
namespace {

class CsvTest : public ExchangeTest {};

TEST_F(CsvTest, ReadsAndWritesWhatPythonDoes) {
    const std::string model = "python3 -B " CORE_SOURCE_DIR "/tests/exchange/csv_model.py ";
    if (std::system("python3 -c ''") != 0)
        GTEST_SKIP() << "no Python";
    ASSERT_EQ(std::system((model + "write " + path("")).c_str()), 0);
    const auto written = from_json(text_of(path("written.json"))).query<IValueArray>();
    for (std::size_t seed = 0; seed < written->count(); ++seed) {
        const char delimiter = ",;\t"[seed % 3];
        const std::string name = std::to_string(seed);
        const auto table = load_csv(path(name + ".csv"), {.delimiter = delimiter, .encoding = Encoding()});
        const auto rows = written->get(seed).query<IValueArray>();
        ASSERT_EQ(table->rowCount() + 1, rows->count());
        for (std::size_t row = 0; row < table->rowCount(); ++row) {
            const auto cells = rows->get(row + 1).query<IValueArray>();
            for (std::size_t i = 0; i < table->columnCount(); ++i)
                ASSERT_EQ(cell(table, row, i), cells->get(i)) << seed << ' ' << row << ' ' << i;
        }
        save_csv(path(name + ".csv"), Value(table.query<IValue>()), {.delimiter = delimiter});
    }
    ASSERT_EQ(std::system((model + "read " + path("")).c_str()), 0);
    EXPECT_EQ(to_json(from_json(text_of(path("read.json")))),
              to_json(from_json(text_of(path("written.json")))));
}

/// Rows as a slow reader sees them, one byte after the other; nothing for a text that is malformed.
std::optional<std::vector<std::vector<std::string>>> slow_rows(const std::string& text, bool strict) {
    std::vector<std::vector<std::string>> rows;
    std::vector<std::string> row;
    std::string field;
    enum { begin, plain, quoted, behind } state = begin;
    bool any = false; // something stands in the row
    const auto end_row = [&] {
        if (any) {
            row.push_back(field);
            rows.push_back(row);
        }
        row.clear();
        field.clear();
        state = begin;
        any = false;
    };
    for (const char c : text) {
        if (state == quoted) {
            if (c == '"')
                state = behind;
            else
                field += c;
        } else if (state == behind && c == '"') {
            field += '"';
            state = quoted;
        } else if (c == '\n' || c == '\r') {
            end_row();
        } else if (c == ',') {
            row.push_back(field);
            field.clear();
            state = begin;
            any = true;
        } else if (state == behind) {
            return std::nullopt;
        } else if (c == '"' && state == begin) {
            state = quoted;
            any = true;
        } else if (c == '"' && strict) {
            return std::nullopt;
        } else {
            field += c;
            state = plain;
            any = true;
        }
    }
    if (state == quoted)
        return std::nullopt;
    end_row();
    return rows;
}

TEST_F(CsvTest, IsTakenApartAsASlowReaderDoesHoweverItIsCut) {
    std::mt19937 random(5);
    const auto below = [&](std::size_t bound) { return random() % bound; };
    const std::string alphabet = "a,\"\n\r\"b,c";
    for (int round = 0; round < 3000 && !HasFailure(); ++round) {
        // Long enough for a block of 64 bytes to end anywhere.
        std::string text(below(200), ' ');
        for (char& c : text)
            c = alphabet[below(alphabet.size())];
        const bool strict = below(2) == 0;
        const auto rows = slow_rows(text, strict);
        Losses losses; // rows of different widths do not fail then
        const CsvReadOptions options{.delimiter = ',',
                                     .encoding = Encoding(),
                                     .columns = u"A String, B String, C String",
                                     .headers = false,
                                     .strict = strict,
                                     .losses = &losses};
        InterfacePtr<IValueTable> table;
        try {
            table = read_csv(pieces(text, 1 + below(70)), u"x", options);
        } catch (const ContextException&) {
            EXPECT_FALSE(rows) << text;
            continue;
        }
        ASSERT_TRUE(rows) << text;
        ASSERT_EQ(table->rowCount(), rows->size()) << text;
        std::size_t lost = 0;
        for (std::size_t row = 0; row < rows->size(); ++row) {
            const auto& fields = (*rows)[row];
            lost += fields.size() < 3 ? 1 : fields.size() - 3;
            for (std::size_t i = 0; i < 3; ++i)
                ASSERT_EQ(to_utf8(cell(table, row, i).presentation()), i < fields.size() ? fields[i] : "")
                    << text;
        }
        EXPECT_EQ(losses.count(), lost) << text;
    }
}

TEST_F(CsvTest, DelimiterEncodingAndTitlesAreFound) {
    for (const char delimiter : {',', ';', '\t', '|'}) {
        std::string text = "A,B C,\"x,y\"\n1,\"2;3\t4|5\",6\n";
        std::ranges::replace(text, ',', delimiter);
        EXPECT_EQ(read(text)->columnCount(), 3U) << delimiter;
    }
    EXPECT_EQ(outcome("A\nx;y\n"), R"([{"A":"x;y"}])"); // what only some rows have divides nothing
    EXPECT_TRUE(
        outcome("A;B\n1;2\n3\n").ends_with(", line 3: the row has 1 fields, the table has 2 columns."))
        << outcome("A;B\n1;2\n3\n");
    EXPECT_EQ(outcome("P\n1,5\n2,5\n", {.locale = Locale("de")}), R"([{"P":1.5},{"P":2.5}])");
    const std::string cyrillic = encode_text(
        u"Город;Страна\nМосква;Россия\nСанкт-Петербург;Россия\nКиев;Украина\n", Encoding(u"windows-1251"));
    EXPECT_EQ(cell(read(cyrillic), 0).presentation(), u"Москва");
    EXPECT_EQ(outcome("A,B\n1,2\n", {.headers = false}),
              R"([{"Column1":"A","Column2":"B"},{"Column1":"1","Column2":"2"}])");
    EXPECT_EQ(outcome("1;2\n", {.columns = u"А, Б"}), R"([{"А":1,"Б":2}])");
    EXPECT_EQ(outcome("Price,Day\n007,2024-02-29\n", {.columns = u"Day Date, price Число(5,2)"}),
              R"([{"Price":7,"Day":"2024-02-29T00:00:00"}])");
    for (const wchar* const list :
         {u"Price Money", u"Price Number(", u"Price Number(x)", u"Price Number(1,2,3)", u"Price Date(1)",
          u"No Number", u"1", u"A,", u"Price, price"})
        EXPECT_TRUE(outcome("Price,Day\n1,2\n", {.columns = list, .headers = true}).starts_with("! "))
            << to_utf8(list);
}

TEST_F(CsvTest, ABadRowIsFoundByTheLineWhereItBegins) {
    const std::string quotes =
        ": the row has a quote that is not closed, or one that something stands behind "
        "or in front of.";
    const struct {
        std::string text;
        std::string message;
        bool strict = false;
    } cases[] = {
        {"A,B\n1,2\n3\n", "line 3: the row has 1 fields, the table has 2 columns."},
        {"A,B\r\n\r\n\"x\r\ny\rz\n\",2\r\n\n1,2,3", "line 8: the row has 3 fields, the table has 2 columns."},
        {"A\r1,2\r", "line 2: the row has 2 fields, the table has 1 columns."},
        {"A,B\n1,2\n\"3,4\n5,6\n", "line 3" + quotes},
        {"A,B\n1,\"2\"x\n", "line 2" + quotes},
        {"A,B\n1,2\"\n", "line 2" + quotes, true},
        {"A\n1\n\xD0\n", "line 3: the row is not text in UTF-8."},
        {"A\n\"1\n2\"\n\xED\xA0\x80\n", "line 4: the row is not text in UTF-8."},
        {"A\xFF\n", "line 1: the row is not text in UTF-8."},
    };
    for (const auto& c : cases)
        EXPECT_EQ(outcome(c.text, {.delimiter = ',', .encoding = Encoding(), .strict = c.strict}),
                  "! x.csv, " + c.message)
            << c.text;
    EXPECT_EQ(outcome("Type,Size\nPipe,5\" steel\n"), R"([{"Type":"Pipe","Size":"5\" steel"}])");
    EXPECT_EQ(outcome(""), "! x.csv: the file is empty, it has no line with the names of the columns.");
    // far from the beginning, where blocks have been read one after the other
    std::string text = "A,B\n";
    for (int i = 0; i < 200'000; ++i)
        text += "\"1\n\",2\n";
    EXPECT_EQ(outcome(text + "3\n"), "! x.csv, line 400002: the row has 1 fields, the table has 2 columns.");
}

TEST_F(CsvTest, CanBeStoppedAndTellsHowFarItIs) {
    std::string text = "A\n";
    for (int i = 0; i < 100'000; ++i)
        text += std::to_string(i) + "\n";
    StopSource stop;
    std::vector<std::uint64_t> told;
    const CsvReadOptions options{
        .stop = stop.token(), .length = text.size(), .progress = [&](std::uint64_t bytes) {
            told.push_back(bytes);
            if (told.size() == 5)
                stop.request();
        }};
    EXPECT_THROW(read(text, options), ThreadDeath);
    EXPECT_EQ(told.size(), 5U);
    EXPECT_TRUE(std::ranges::is_sorted(told));
    StopSource written;
    written.request();
    std::ostringstream out;
    EXPECT_THROW(save_csv(out, read(text), {.stop = written.token()}), ThreadDeath);
}

TEST_F(CsvTest, WhatIsWrittenReadsBackEqual) {
    const auto table = create_value_table();
    for (const wchar* const name : {u"N", u"D", u"B", u"S", u"Any"})
        table->addColumn(name);
    const Value rows[][5] = {
        {Numeric::fromString("-1234567.125"), Date(2024, 2, 29, 13, 5, 7), true, u"a,\"b\"\r\n", u"x"},
        {0, Date(), false, u"", 1},
        {Numeric::fromString("0.05"), Date(Date(1999, 12, 31).ticks() + 1), true, u"жщ\U0001F600",
         Date(2024, 1, 2)},
        {Value(), Value(), Value(), u" ", Value()},
    };
    for (const auto& row : rows)
        table->appendRow(row);
    for (const char delimiter : {',', '.', '-', '1'}) {
        std::ostringstream out;
        save_csv(out, table, {.delimiter = delimiter});
        const auto again = read(out.str(), {.delimiter = delimiter});
        for (std::size_t row = 0; row < std::size(rows); ++row) {
            for (std::size_t i = 0; i < 4; ++i)
                EXPECT_EQ(cell(again, row, i), rows[row][i]) << delimiter << ' ' << row << ' ' << i;
        }
    }
    std::ostringstream out;
    save_csv(out, table);
    EXPECT_EQ(out.str(),
              "N,D,B,S,Any\r\n-1234567.125,2024-02-29T13:05:07,True,\"a,\"\"b\"\"\r\n\",x\r\n"
              "0,0001-01-01,False,,1\r\n0.05,1999-12-31T00:00:00.0001,True,жщ\U0001F600,2024-01-02\r\n"
              ",,, ,\r\n");
    table->set(0, table->findColumn(u"S"), Value(wstring(1, wchar(0xD800))));
    static_cast<void>(file("old.csv", "old"));
    EXPECT_THROW(save_csv(path("old.csv"), Value(table.query<IValue>())), ConverterException);
    EXPECT_EQ(text_of(path("old.csv")), "old");
}

} // namespace
} // namespace core
