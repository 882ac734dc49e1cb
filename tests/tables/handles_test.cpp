// SPDX-License-Identifier: Apache-2.0
// Concerns: tables, trees and lists in the hand of a program: what docs show, cells that read and write,
// names in both encodings, handles that outlive what they came from, and what is refused.
#include "tests/tables/table_fixture.h"

#include <map>
#include <sstream>
#include <unordered_map>

namespace {

using namespace script;

class Handles : public TableTest {
  protected:
    static Numeric number(std::string_view text) { return Numeric::parse(text).value(); }
    static Table fruit() {
        Table table{u"Name", {"Цена", kNumberType}};
        table.add({"apple", number("1.20")});
        table.add({u"груша", 2});
        table.add({std::string("plum")});
        return table;
    }
    template <class Range>
    static std::string shown(const Range& range) {
        std::ostringstream out;
        for (const auto& element : range)
            out << element << ';';
        return out.str();
    }
};

TEST_F(Handles, OfTablesReadAndWrite) {
    const Table table = fruit();
    std::ostringstream out;
    for (const Row& row : table)
        out << row["Name"] << '=' << row[u"цена"] << ';';
    EXPECT_EQ(out.str(), "apple=1.2;груша=2;plum=0;");
    EXPECT_EQ(shown(table[0]), "apple;1.2;");

    const Column price = table.columns()["Цена"];
    table[1][price] = number("2.35");
    table[2][1] = table[0][price];
    table[2]["Name"] = "cherry";
    EXPECT_EQ(table[1][price], number("2.35"));
    EXPECT_TRUE(table[2]["Name"] == u"cherry" && table[2][price] == table[0][1] && 2 < table[1][price]);
    EXPECT_EQ(table[2]["Name"].as<std::string>(), "cherry");
    EXPECT_EQ(table[0][price].as<Numeric>() + table[1][price].as<Numeric>(), number("3.55"));
    EXPECT_EQ(failure([&] { static_cast<void>(table[0]["Name"].as<int>()); }), type_mismatch(0));
    EXPECT_EQ(table.total("Цена"), Value(number("4.75")));
    EXPECT_EQ(shown(table.values("Name")), "apple;груша;cherry;");
}

TEST_F(Handles, OfTablesDoWhatTheInterfaceDoes) {
    const Table table = fruit();
    EXPECT_EQ(table.find("груша")->position(), 1U);
    EXPECT_FALSE(table.find("груша", {"Цена"}));
    EXPECT_EQ(table.findRows({{"Name", "plum"}, {1, 0}}).size(), 1U);
    EXPECT_TRUE(table.findRows({{"Name", "plum"}, {1, 7}}).empty());
    table.sort("Цена убыв, name");
    EXPECT_EQ(shown(table.values(0)), "груша;apple;plum;");
    EXPECT_EQ(failure([&] { table.sort("Name upwards"); }),
              message_text("IDS_VT_SORT_ITEM", {u"Name upwards"}));
    table.move(table[2], 0);
    table.remove(table[1]);
    EXPECT_EQ(table.insert(1, {"fig"}).position(), 1U);
    EXPECT_EQ(shown(table.values(0)), "plum;fig;apple;");
    table.fill("x", {"Name"});
    table.addIndex({"Name"});
    table.groupBy({"Name"}, {"Цена"});
    EXPECT_EQ(content(table), u"x,1.2;");
    EXPECT_EQ(table.copy({"Цена"}).columns().size(), 1U);
    const std::vector<Row> none;
    EXPECT_TRUE(table.copy(none).empty());
    table.clear();
    EXPECT_TRUE(table.empty());
    EXPECT_EQ(table->losses().count(), 0U);
}

TEST_F(Handles, OfTablesCombine) {
    const Table table = fruit();
    Table codes{"Code", "Group"};
    codes.add({"apple", 1});
    codes.add({"plum", 2});
    EXPECT_EQ(content(table.join(codes, "Name = Code")), u"apple,1.2,1;plum,0,2;");
    EXPECT_EQ(content(table.join(codes, "Name = Code", "Group As G", JoinKind::left)),
              u"apple,1.2,1;груша,2,;plum,0,2;");
    EXPECT_EQ(table.join(codes, "Name = Code", JoinKind::anti).size(), 1U);
    EXPECT_EQ(table.unite(table).size(), 3U);
    EXPECT_EQ(table.unite(table, EqualRows::all).size(), 6U);
    EXPECT_TRUE(table.except(table.copy()).empty());
    EXPECT_EQ(table.intersect(table.copy()).size(), 3U);
    table.fill(1, {"Цена"});
    EXPECT_EQ(table.distinct({1}).size(), 1U);
    EXPECT_EQ(table.distinct().size(), 3U);
}

TEST_F(Handles, OfTablesFilter) {
    const Table table = fruit();
    EXPECT_EQ(table.findRows("Цена >= 2").front().position(), 1U);
    EXPECT_EQ(content(table.copy(u"Цена < 2 And Name <> \"plum\"")), u"apple,1.2;");
    EXPECT_EQ(table.addColumn("Twice", "Цена * 2").position(), 2U);
    EXPECT_EQ(table[1]["Twice"], 4);
    table.sort("Цена * 2 Desc");
    EXPECT_EQ(shown(table.values(0)), "груша;apple;plum;");
    EXPECT_EQ(table.filter("Цена > 0"), 1U);
    EXPECT_EQ(table.remove("Name = \"apple\""), 1U);
    EXPECT_EQ(table.size(), 1U);
}

TEST_F(Handles, OfTablesSumUp) {
    Table sales{"Product", "Region", {"Price", kNumberType}};
    sales.add({"tea", "N", 2});
    sales.add({"tea", "S", 5});
    sales.add({"cocoa", "N", 4});
    EXPECT_EQ(content(sales.group({"Product"}, {count("Sales"), sum("Price"), max(u"Region", u"Last")})),
              u"tea,2,7,S;cocoa,1,4,N;");
    EXPECT_EQ(content(sales.group({0}, {sum("Price")}, "Level")), u"0,,11;1,tea,7;1,cocoa,4;");
    EXPECT_EQ(sales.total(max("Price")), 5);
    const Table wide = sales.pivot({"Product"}, "Region", {sum("Price")});
    EXPECT_EQ(content(wide), u"tea,2,5;cocoa,4,;");
    EXPECT_EQ(content(wide.unpivot({"N", "S"}, "Region", "Price")), u"tea,N,2;tea,S,5;cocoa,N,4;");
    sales.addWindows({running_total("Price", "Sum")}, {"Product"}, "Price");
    EXPECT_EQ(shown(sales.values("Sum")), "2;7;4;");
}

TEST_F(Handles, OfColumnsStayTheirColumns) {
    const Table table = fruit();
    const Column name = table.columns()[0];
    Column added = table.columns().add("Day", TypeDomain(kDateType), u"Tag", 10);
    added.move(0);
    name.rename("Title");
    added.setTitle(u"Datum");
    added.setWidth(12);
    std::vector<wstring> names;
    for (const Column& column : table.columns())
        names.push_back(column.name());
    EXPECT_EQ(names, (std::vector<wstring>{u"Day", u"Title", u"Цена"}));
    EXPECT_EQ(added.title(), u"Datum");
    EXPECT_EQ(added.width(), 12);
    EXPECT_EQ(added.type(), TypeDomain(kDateType));
    EXPECT_EQ(name.position(), 1U);
    Losses losses;
    name.setType(TypeDomain(kNumberType), &losses);
    EXPECT_EQ(losses.count(), 3U);
    EXPECT_TRUE(table.columns().contains("title"));
    table.columns().remove("Title");
    EXPECT_EQ(failure([&] { static_cast<void>(name.name()); }), unknown_column(u"0"));
    const Table other = fruit();
    EXPECT_EQ(failure([&] { static_cast<void>(other[0][added]); }), unknown_column(u"Day"));
    EXPECT_EQ(failure([&] { static_cast<void>(other[0]["Nam"]); }),
              unknown_column(u"Nam") + u" Did you mean “Name”?");
    EXPECT_EQ(failure([&] { static_cast<void>(other[0][2]); }), bad_index());
    EXPECT_EQ(failure([&] { static_cast<void>(other[3][0].value()); }), bad_index());
    EXPECT_THROW(static_cast<void>(other[0]["\xFF"]), ConverterException);
}

TEST_F(Handles, KeepWhatTheyCameFrom) {
    const Row row = fruit()[1];
    EXPECT_EQ(row[0], "груша");
    const Column column = fruit().columns()[0];
    EXPECT_EQ(column.name(), u"Name");
    const Value value = fruit();
    const Table again(value);
    EXPECT_EQ(Value(again), value);
    EXPECT_EQ(again.size(), 3U);
    EXPECT_EQ(failure([] { static_cast<void>(Table(Value(5))); }), type_mismatch(0));
    EXPECT_EQ(from_value<Table>(to_value(again)).size(), 3U);
    const GenericValue object = row.object();
    EXPECT_EQ(object.query<IValueRow>()->position(), 1U);
}

TEST_F(Handles, OfTreesWalkTheirRows) {
    const Tree tree{"Name", {"Price", kNumberType}};
    const TreeRow wheel = tree.rows().add({"wheel"});
    wheel.rows().add({"spoke", 2});
    wheel.rows().insert(0, {"rim", 5});
    tree.rows().insert(0, {"bell", 1});
    std::string text;
    for (const TreeRow& row : tree.rows()) {
        for (const TreeRow& below : row.rows())
            text += row["Name"].as<std::string>() + '/' + below["Name"].as<std::string>() + ' ';
    }
    EXPECT_EQ(text, "wheel/rim wheel/spoke ");
    EXPECT_EQ(tree.rows().total("Price", RowDepth::all), 8);
    EXPECT_EQ(tree.rows().total("Price"), 1);
    const TreeRow spoke = tree.rows().find("spoke", {"Name"}, RowDepth::all).value();
    EXPECT_FALSE(tree.rows().find("spoke"));
    EXPECT_EQ(spoke.parent()->operator[]("Name"), "wheel");
    EXPECT_FALSE(wheel.parent());
    EXPECT_EQ(tree.rows().findRows({{"Price", 5}}, RowDepth::all).size(), 1U);
    tree.rows().sort("Name Desc", RowDepth::all);
    EXPECT_EQ(shown(wheel.rows().values("Name")), "spoke;rim;");
    EXPECT_EQ(wheel.position(), 0U);
    wheel.rows().move(spoke, 1);
    wheel.rows().remove(wheel.rows()[0]);
    EXPECT_EQ(shown(wheel.rows()[0]), "spoke;2;");
    EXPECT_EQ(failure([&] { tree.rows().remove(spoke); }), unknown_row());
    tree.rows().remove(wheel);
    EXPECT_EQ(failure([&] { static_cast<void>(spoke["Name"].value()); }), unknown_row());
    EXPECT_EQ(failure([&] { static_cast<void>(wheel.rows()); }), unknown_row());
    EXPECT_EQ(from_value<Tree>(tree).columns().size(), 2U);
}

TEST_F(Handles, OfListsShowTheirItems) {
    const List list{3, "one"};
    list.add(2, u"two", true).setPicture(5);
    std::string text;
    for (const ListItem& item : list)
        text += to_utf8(item.presentation()) + (item.isChecked() ? "! " : " ");
    EXPECT_EQ(text, "3 one two! ");
    list.find(3)->setValue(1);
    list[1].setPresentation(u"eins");
    list[1].check();
    EXPECT_EQ(list[1].presentation(), u"eins");
    EXPECT_TRUE(list[1].isChecked());
    EXPECT_EQ(list[2].picture(), 5);
    list.sort(SortDirection::descending);
    EXPECT_EQ(shown(list.values()), "one;2;1;");
    list.remove(list[0]);
    EXPECT_EQ(list.size(), 2U);
    EXPECT_EQ(failure([&] { static_cast<void>(list[2].value()); }), bad_index());
    EXPECT_EQ(from_value<List>(list).size(), 2U);
}

} // namespace
