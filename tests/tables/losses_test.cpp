// SPDX-License-Identifier: Apache-2.0
// Concerns: of many values that go into a column or a list at once, one that would not be kept whole is
// named, and nothing has changed.
#include "tests/support/rounds.h"
#include "tests/tables/table_fixture.h"

#include <core/tables/errors.h>

namespace {

using namespace script;

class TableLosses : public TableTest {
  protected:
    /// One bad value among so many.
    static std::size_t many() { return support::rounds<std::size_t>(5'000, 1'000'000); }
    static GenericValue values(std::size_t bad) {
        const GenericValue array = make(u"Array");
        for (std::size_t i = 0; i < many(); ++i)
            call(array, u"Add", {i == bad ? GenericValue(u"abc") : i % 2 == 0 ? GenericValue(u" 1.5 ") : 2});
        return array;
    }
    static wstring at(const char* id, std::size_t position, const wchar* column = nullptr) {
        const wstring reason = message_text("IDS_LOSS_NOT_NUMBER", {u"abc"});
        const wstring number = string_intto(position + 1);
        return column != nullptr ? message_text(id, {number, column, reason})
                                 : message_text(id, {number, reason});
    }
};

TEST_F(TableLosses, OfAColumnThatIsLoaded) {
    const GenericValue table = table_of(u"Any", {});
    call(property(table, u"Columns"), u"Add", {u"Price", description(u"Number")});
    for (std::size_t i = 0; i < many(); ++i)
        call(table, u"Add");
    const std::size_t bad = many() - 2;
    EXPECT_EQ(failure<ConversionException>([&] {
                  call(table, u"LoadColumn", {values(bad), u"Price"});
              }),
              at(messages::kCellLost, bad, u"Price"));
    EXPECT_TRUE(call(table, u"Total", {u"Price"}).equals(0)) << "nothing has changed";
    call(table, u"LoadColumn", {values(many()), u"Price"});
    EXPECT_TRUE(call(table, u"Total", {u"Price"}).equals(Numeric(7) * many() / 4))
        << "texts with a number in them";
    call(table, u"LoadColumn", {values(bad), u"Any"}); // which takes all
    EXPECT_EQ(failure([&] { call(table, u"Total", {u"Any"}); }),
              message_text(messages::kTotalOfMixed, {u"Any", u"abc", string_intto(bad + 1)}));
}

TEST_F(TableLosses, AreGivenToProgramsThatGoOn) {
    const auto table = create_value_table();
    const std::int32_t price = table->addColumn(u"Price", TypeDomain(kNumberType));
    for (int i = 0; i < 3; ++i)
        table->appendRow({});
    const Value given[] = {Value(u"1.5"), Value(u"abc"), Value(2), Value(u"behind the end")};
    Losses losses;
    table->loadColumn(price, given, &losses);
    ASSERT_EQ(losses.count(), 1U);
    EXPECT_EQ(losses.first()[0].row, 1U);
    EXPECT_EQ(losses.first()[0].text, u"abc");
    EXPECT_TRUE(table->total(price).equals(Numeric::fromScaled(35, 1))) << "the others are loaded";
    table->loadColumn(price, {}, &losses);
    EXPECT_TRUE(losses.empty()) << "those of this call";
    table->fill(Value(u"x"), {}, &losses);
    EXPECT_EQ(losses.count(), 3U);
    EXPECT_EQ(table->total(price), Value(0));
}

TEST_F(TableLosses, OfColumnsThatAreFilled) {
    const GenericValue table = table_of(u"Any", {{1}, {2}, {3}});
    call(property(table, u"Columns"), u"Add", {u"Price", description(u"Number")});
    call(table, u"Delete", {1});
    EXPECT_EQ(failure<ConversionException>([&] { call(table, u"FillValues", {u"abc"}); }),
              at(messages::kCellLost, 0, u"Price") + u"\n" + at(messages::kCellLost, 1, u"Price"));
    EXPECT_EQ(content(table), u"1,0;3,0;") << "the other column, too";
    call(table, u"FillValues", {u"7"});
    EXPECT_EQ(content(table), u"7,7;7,7;");
    call(table, u"Clear");
    call(table, u"FillValues", {u"abc"}); // no cell is there to lose it
}

TEST_F(TableLosses, OfAColumnThatGetsAType) {
    const auto table = create_value_table();
    const std::int32_t column = table->addColumn(u"A");
    for (const wchar* const text : {u"1", u"2", u"x", u"3"})
        table->appendRow(std::vector<Value>{Value(text)});
    table->removeRow(1); // a cell that is nobody's stands before the others
    Losses losses;
    table->setColumnType(column, TypeDomain(kNumberType), &losses);
    ASSERT_EQ(losses.count(), 1U);
    EXPECT_EQ(losses.first()[0].row, 1U);
    EXPECT_TRUE(table->get(0, column).equals(1) && table->get(2, column).equals(3));
    EXPECT_EQ(table->total(column), Value(4));
}

TEST_F(TableLosses, OfAListThatIsLoadedOrGetsAType) {
    const GenericValue list = make(u"ValueList");
    const std::size_t bad = many() / 3;
    call(list, u"LoadValues", {values(bad)});
    const auto give_type = [&] { assign(list, u"ValueType", description(u"Number")); };
    EXPECT_EQ(failure<ConversionException>(give_type), at(messages::kItemLost, bad));
    EXPECT_TRUE(property(call(list, u"Get", {0}), u"Value").equals(u" 1.5 ")) << "nothing has changed";
    call(list, u"Delete", {bad});
    give_type();
    EXPECT_TRUE(property(call(list, u"Get", {0}), u"Value").equals(1.5));
    EXPECT_EQ(failure<ConversionException>([&] { call(list, u"LoadValues", {values(bad)}); }),
              at(messages::kItemLost, bad));
    EXPECT_TRUE(call(list, u"Count").equals(many() - 1));
}

} // namespace
