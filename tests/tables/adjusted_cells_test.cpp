// SPDX-License-Identifier: Apache-2.0
// Concerns: what adjusting makes of a value is stored, copied, saved and read back as it is, in tables, trees
// and lists, also where rounding carries a number past its description.
#include "tests/tables/table_fixture.h"

#include <random>

namespace {

using namespace script;

class AdjustedCells : public TableTest {
  protected:
    std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(random_()) % bound; }

    TypeDomain anyDomain() {
        TypeDomain domain;
        for (const GUID& type : {kNumberType, kStringType, kDateType}) {
            if (below(2) == 0)
                domain.addType(type);
        }
        domain.setNumericQualifiers(NumericQualifiers(below(6), below(6), below(3) == 0));
        domain.setStringQualifiers(StringQualifiers(below(6), below(2) == 0));
        domain.setDateQualifiers(DateQualifiers(static_cast<DateFractions>(1 + below(3))));
        return domain;
    }
    /// Every other one is a number of nines, which rounding carries over.
    GenericValue anyValue() {
        const Numeric sign = below(2) == 0 ? 1 : -1;
        switch (below(8)) {
        case 0:
            return wstring(below(9), u'x');
        case 1:
            return Date(Date(2000, 1, 1).ticks() + std::uint64_t{below(100'000'000)} * 10'000);
        case 2:
            return GenericValue();
        case 3:
            return sign * Numeric(below(1'000'000)) / 1000;
        default:
            return sign * (Numeric(10).pow(below(4)) -
                           Numeric(static_cast<int>(below(6))) / Numeric(10).pow(1 + below(6)));
        }
    }
    /// The texts of an object and of what is read from it are the same.
    static GenericValue read_back(const GenericValue& object) {
        const wstring written = text(object);
        GenericValue read = GenericValue::fromString(written);
        EXPECT_EQ(text(read), written);
        return read;
    }

    std::mt19937 random_{41};
};

TEST_F(AdjustedCells, AreStoredCopiedSavedAndReadBackAsTheyAre) {
    for (int round = 0; round < 400 && !HasFailure(); ++round) {
        const TypeDomain domain = anyDomain();
        const GenericValue value = anyValue();
        const GenericValue expected = domain.adjust(value);
        SCOPED_TRACE(to_utf8(value.presentation() + u" as " + expected.presentation()));
        EXPECT_TRUE(domain.canHold(expected));

        const auto table = create_value_table();
        const std::int32_t column = table->addColumn(u"A", domain);
        const Value cells[] = {value};
        table->appendRow(cells);
        table->appendRow({});
        table->set(1, column, value);
        const GenericValue tableValue(table.query<IValue>());
        const GenericValue same = create_type_description(domain);
        assign(property(property(tableValue, u"Columns"), u"A"), u"ValueType", same);
        for (const GenericValue& copy : {tableValue, call(tableValue, u"Copy"), read_back(tableValue)}) {
            EXPECT_EQ(copy.query<IValueTable>()->get(0, 0), expected);
            EXPECT_EQ(copy.query<IValueTable>()->get(1, 0), expected);
        }

        const GenericValue tree(create_value_tree().query<IValue>());
        call(property(tree, u"Columns"), u"Add", {u"A", create_type_description(domain)});
        const GenericValue row = call(property(tree, u"Rows"), u"Add");
        call(call(property(row, u"Rows"), u"Add"), u"Set", {0, value});
        const GenericValue below = property(call(property(read_back(tree), u"Rows"), u"Get", {0}), u"Rows");
        EXPECT_EQ(property(call(below, u"Get", {0}), u"A"), expected);

        const GenericValue list = make(u"ValueList");
        assign(list, u"ValueType", create_type_description(domain));
        call(list, u"Add", {value});
        assign(list, u"ValueType", same);
        for (const GenericValue& copy : {list, call(list, u"Copy"), read_back(list)})
            EXPECT_EQ(property(call(copy, u"Get", {0}), u"Value"), expected);
    }
}

TEST_F(AdjustedCells, MayBeCarriedPastTheirDescription) {
    const struct {
        NumericQualifiers qualifiers;
        double value;
        int carried;
    } cases[] = {{{4, 2}, 99.996, 100}, {{2, 2}, 0.998, 1}, {{4, 2}, -99.999, -100}, {{3, 0}, 999.5, 1000}};
    for (const auto& c : cases) {
        TypeDomain domain(kNumberType);
        domain.setNumericQualifiers(c.qualifiers);
        const auto table = create_value_table();
        EXPECT_EQ(table->findColumn(u"a"), -1);
        const std::int32_t column = table->addColumn(u"A", domain);
        EXPECT_EQ(table->findColumn(u"a"), column);
        const Value cells[] = {c.value};
        table->appendRow(cells);
        const GenericValue read = read_back(GenericValue(table.query<IValue>()));
        EXPECT_EQ(read.query<IValueTable>()->get(0, 0), GenericValue(c.carried));
    }
}

} // namespace
