// SPDX-License-Identifier: Apache-2.0
// Texts that were written once and are kept for ever: every version reads them.
#include "tests/tables/table_fixture.h"

#include <fstream>
#include <sstream>

namespace {

using namespace script;

class GoldenTables : public TableTest {};

TEST_F(GoldenTables, HoldWhatTheyHeld) {
    std::ifstream file(CORE_SOURCE_DIR "/tests/tables/golden/tables-1.txt", std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    const wstring written = from_utf8(bytes.str());
    const auto objects = walk(GenericValue::fromString(written));
    ASSERT_EQ(objects.size(), 3U);
    EXPECT_EQ(text(GenericValue::fromString(written)), written) << "the form has not changed";

    const auto table = objects[0].query<IValueTable>();
    ASSERT_EQ(table->columnCount(), 8U);
    EXPECT_EQ(table->column(0).title, u"The \"any\", {title}");
    EXPECT_EQ(table->column(1).domain.numericQualifiers(), NumericQualifiers(10, 2));
    EXPECT_EQ(table->column(2).domain.stringQualifiers(), StringQualifiers(5, false));
    EXPECT_EQ(table->column(3).name, u"Имя");
    EXPECT_EQ(table->column(4).domain.dateQualifiers().fractions(), DateFractions::date);
    EXPECT_TRUE(call(property(objects[0], u"Indexes"), u"Count").equals(2));
    const VTFindParam third[] = {{3, u"2004-03-01"}, {1, 0.25}};
    EXPECT_EQ(table->IValueTableBaseRO_findRows(third), std::vector<std::size_t>{2});
    EXPECT_EQ(table->get(7, 0), GenericValue(-Numeric(10).pow(30) / 8));
    EXPECT_EQ(table->get(7, 5), GenericValue(Date(1, 1, 1, 13, 5, 7)));
    EXPECT_TRUE(property(table->get(8, 0), u"B").query<IValueTable>());

    EXPECT_TRUE(call(property(objects[1], u"Rows"), u"Total", {u"N", true}).equals(2.39));
    EXPECT_TRUE(property(call(objects[2], u"Get", {0}), u"Value").query<IValueList>()->get(0).check);
}

} // namespace
