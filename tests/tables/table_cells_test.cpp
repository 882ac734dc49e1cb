// SPDX-License-Identifier: Apache-2.0
// Concerns: copies; cells held to the types of their columns, in every form that a column takes; what
// adjusting gives is stored, copied, saved and read back as it is.
#include "tests/tables/table_fixture.h"

#include <random>

namespace {

using namespace script;

class TableCells : public TableTest {};

TEST_F(TableCells, AreCopiedByRowsAndColumns) {
    const GenericValue table = table_of(u"A,B", {{1, u"x"}, {2, u"y"}, {1, u"z"}});
    property(property(table, u"Columns"), u"A").query<IContext_>()->setPropVal(3, 12);
    EXPECT_EQ(content(call(table, u"Copy")), content(table));
    EXPECT_EQ(content(call(table, u"Copy", {make(u"Structure", {u"A", 1}), u"B"})), u"x;z;");
    const GenericValue array = make(u"Array");
    for (const int row : {2, 0, 2})
        call(array, u"Add", {call(table, u"Get", {row})});
    const GenericValue copy = call(table, u"Copy", {array, u"B,A"});
    EXPECT_EQ(content(copy), u"z,1;x,1;z,1;");
    EXPECT_TRUE(property(property(property(copy, u"Columns"), u"a"), u"Width").equals(12));
    call(call(copy, u"Get", {0}), u"Set", {u"A", u"changed"});
    EXPECT_EQ(content(table), u"1,x;2,y;1,z;");
    EXPECT_EQ(content(call(table, u"CopyColumns", {u"B"})), u"");
    EXPECT_TRUE(call(property(call(table, u"CopyColumns"), u"Columns"), u"Count").equals(2));
}

TEST_F(TableCells, HoldCellsToTheTypesOfTheirColumns) {
    const GenericValue table = table_of(u"Any", {{u"12"}, {u"x"}, {5}});
    const GenericValue columns = property(table, u"Columns");
    call(columns, u"Add", {u"N", description(u"Number"), u"A number", 8});
    EXPECT_EQ(content(table), u"12,0;x,0;5,0;") << "a new column has the default of its type";
    call(call(table, u"Get", {1}), u"Set", {u"N", u" 7 "});
    call(table, u"FillValues", {u"3", u"Any"});
    const GenericValue any = property(columns, u"Any");
    EXPECT_EQ(property(any, u"Title").presentation(), u"Any") << "without a title the name";
    call(call(table, u"Get", {0}), u"Set", {u"Any", u"many"});
    EXPECT_THROW(assign(any, u"ТипЗначения", description(u"Number")), ConversionException);
    EXPECT_EQ(content(table), u"many,0;3,7;3,0;") << "nothing has changed";
    const GenericValue lost = call(any, u"Convert", {description(u"Number")});
    EXPECT_EQ(property(call(lost, u"Get", {0}), u"Text").presentation(), u"many");
    EXPECT_TRUE(property(table, u"LossCount").equals(1));
    EXPECT_TRUE(call(table, u"Total", {u"Any"}).equals(6))
        << "the cells became numbers, and the text without a number became 0";
    EXPECT_TRUE(call(table, u"Total", {u"N"}).equals(7));
    call(table, u"LoadColumn", {call(table, u"UnloadColumn", {u"Any"}), u"N"});
    EXPECT_EQ(content(table), u"0,0;3,3;3,3;");
    EXPECT_TRUE(property(any, u"ValueType").equals(description(u"Number")));
    EXPECT_TRUE(property(call(table, u"Add"), u"Any").equals(0));
}

TEST_F(TableCells, KeepCellsOfEveryFormThroughEveryChange) {
    // Values that need a wider form than the column has, each written between plain ones and read back.
    const GenericValue changes[] = {0.5,
                                    Numeric::fromScaled(1, 18),
                                    std::int64_t{1} << 58,
                                    -(std::int64_t{1} << 58),
                                    std::numeric_limits<std::int64_t>::max(),
                                    std::numeric_limits<std::int64_t>::min(),
                                    Numeric(10).pow(40),
                                    u"text",
                                    Date(2020, 1, 1),
                                    Date(~std::uint64_t{0}),
                                    Date(std::uint64_t{1} << 63),
                                    Value::null(),
                                    true,
                                    Type(Type::number),
                                    GenericValue(),
                                    make(u"Array")};
    for (const GenericValue& first : changes) {
        for (const GenericValue& second : changes) {
            const GenericValue table = table_of(u"A", {});
            const auto rows = table.query<IValueTable>();
            call(property(table, u"Indexes"), u"Add", {u"A"});
            std::vector<Value> expected;
            for (int i = 0; i < 60; ++i) {
                expected.push_back(i < 20 ? Value(first) : i % 7 == 0 ? Value(second) : Value(first));
                rows->appendRow(std::span(&expected.back(), 1));
                if (i == 30)
                    static_cast<void>(
                        rows->IValueTableBaseRO_findRows({})); // and keep the index through the rest
                const VTFindParam wanted[] = {{0, expected.back()}};
                const auto found = rows->IValueTableBaseRO_findRows(wanted);
                ASSERT_EQ(found.size(), static_cast<std::size_t>(
                                            std::count(expected.begin(), expected.end(), expected.back())));
            }
            for (std::size_t i = 0; i < expected.size(); ++i)
                ASSERT_TRUE(rows->get(i, 0).equals(expected[i]));
        }
    }
    // Many texts that are all different: a dictionary of them saves nothing.
    const GenericValue table = table_of(u"A", {});
    const auto rows = table.query<IValueTable>();
    for (int i = 0; i < 12'000; ++i) {
        const Value text(u"text " + string_intto(i * 7919 % 12'000));
        rows->appendRow(std::span(&text, 1));
    }
    call(table, u"Sort", {u"A Desc"});
    for (std::size_t i = 1; i < rows->rowCount(); ++i)
        ASSERT_GT(compare_values(rows->get(i - 1, 0), rows->get(i, 0)), 0);
    rows->clear();
    EXPECT_EQ(rows->rowCount(), 0U);
}

} // namespace
