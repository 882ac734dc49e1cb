// SPDX-License-Identifier: Apache-2.0
// Concerns: tables made trees and back, by parent, path and level, beside trees of plain nodes; copies and
// groups of trees; what is refused.
#include "tests/tables/table_fixture.h"

#include <map>
#include <random>

namespace {

using namespace script;

/// A tree of plain nodes.
struct NodeOfTree {
    wstring name;
    int number = 0;
    std::vector<NodeOfTree> below;
};

class TreesOfTables : public TableTest {
  protected:
    /// Names with their numbers, rows below a row in parentheses.
    static wstring shown(const std::vector<NodeOfTree>& nodes) {
        wstring text;
        for (const NodeOfTree& node : nodes) {
            text += node.name + u":" + string_intto(node.number);
            if (!node.below.empty())
                text += u"(" + shown(node.below) + u")";
            text += u" ";
        }
        return text;
    }
    /// The same of a tree of ours.
    static wstring shown_tree(const Value& tree, const wchar* name = u"Name") {
        wstring text;
        for (const GenericValue& row : walk(property(tree, u"Rows"))) {
            text += property(row, name).presentation() + u":" + property(row, u"Number").presentation();
            if (const wstring below = shown_tree(row, name); !below.empty())
                text += u"(" + below + u")";
            text += u" ";
        }
        return text;
    }
    std::vector<NodeOfTree> makeNodes(std::size_t most, int depth) {
        std::vector<NodeOfTree> nodes(random_() % (most + 1));
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            nodes[i].name = u"n" + string_intto(i) + (random_() % 4 == 0 ? u"" : u"x");
            nodes[i].number = ++number_;
            if (depth > 0)
                nodes[i].below = makeNodes(most, depth - 1);
        }
        return nodes;
    }
    /// The rows of nodes, each before those below it: name, number, number above, path, level.
    static void flatten(const std::vector<NodeOfTree>& nodes, int above, const wstring& path, int level,
                        std::vector<Arguments>& rows) {
        for (const NodeOfTree& node : nodes) {
            const wstring own = path + node.name;
            rows.push_back(
                {node.name, node.number, above != 0 ? GenericValue(above) : GenericValue(), own, level});
            flatten(node.below, node.number, own + u"->", level + 1, rows);
        }
    }
    static GenericValue columns(const Value& table, const wchar* names) {
        return call(table, u"Copy", {GenericValue(), names});
    }

    std::mt19937 random_{5};
    int number_ = 0;
};

TEST_F(TreesOfTables, AreThoseOfPlainNodes) {
    for (int round = 0; round < 60; ++round) {
        number_ = 0;
        const std::vector<NodeOfTree> nodes = makeNodes(4, round % 5);
        std::vector<Arguments> rows;
        flatten(nodes, 0, {}, 0, rows);
        const GenericValue table = table_of(u"Name,Number,Above,Path,Level", rows);

        const GenericValue byLevel = call(table, u"TreeByLevel");
        EXPECT_EQ(shown_tree(byLevel), shown(nodes));
        EXPECT_EQ(content(columns(call(byLevel, u"TableByLevel"), u"Name,Number,Level")),
                  content(columns(table, u"Name,Number,Level")));

        const GenericValue byPath = call(columns(table, u"Path,Number"), u"ДеревоПоПути", {u"path", u"->"});
        EXPECT_EQ(shown_tree(byPath, u"Path"), shown(nodes));
        EXPECT_EQ(content(call(byPath, u"ТаблицаПоПути", {u"Path", u"->"})),
                  content(columns(table, u"Path,Number")));

        // By parent in any order of the rows: those below one row stay in theirs.
        std::vector<Arguments> shuffled = rows;
        for (Arguments& row : shuffled)
            row.resize(3);
        if (round % 2 == 1)
            std::stable_partition(shuffled.begin(), shuffled.end(),
                                  [](const Arguments& row) { return !row[2].isUndefined(); });
        const GenericValue byParent =
            call(table_of(u"Name,Number,Above", shuffled), u"TreeByParent", {u"Number", u"Above"});
        EXPECT_EQ(shown_tree(byParent), shown(nodes));
        EXPECT_EQ(content(call(byParent, u"TableByParent", {u"Number", u"Above"})),
                  content(columns(table, u"Name,Number,Above")));
        // Without a column of keys the rows are numbered, here as they were.
        const GenericValue unnumbered = call(columns(table, u"Level,Name"), u"TreeByLevel");
        EXPECT_EQ(content(call(unnumbered, u"TableByParent", {u"Number", u"Above"})),
                  content(columns(table, u"Number,Above,Name")));

        const GenericValue copy = call(byLevel, u"Copy");
        call(property(byLevel, u"Rows"), u"Clear");
        EXPECT_EQ(shown_tree(copy), shown(nodes));
    }
}

TEST_F(TreesOfTables, PathsMakeTheRowsAboveThem) {
    const GenericValue table = table_of(
        u"Path,Size",
        {{u"usr/lib/a", 1}, {u"usr/lib", 2}, {u"etc", 3}, {u"usr/lib/b/c/d", 4}, {u"", 5}, {u"/x", 6}});
    const GenericValue tree = call(table, u"TreeByPath", {u"Path"});
    EXPECT_EQ(content(call(tree, u"TableByPath", {u"Path"})),
              u"usr,;usr/lib,;usr/lib/a,1;usr/lib/b,;usr/lib/b/c,;usr/lib/b/c/d,4;usr/lib,2;etc,3;,5;/x,6;");
    EXPECT_EQ(failure([&] { call(table, u"TreeByPath", {u"Size"}); }),
              message_text("IDS_VT_TREE_NO_PATH", {u"1", u"Size"}));
    EXPECT_EQ(failure([&] { call(table, u"TreeByPath", {u"Path", u""}); }), value_mismatch(1));
    EXPECT_EQ(failure([&] {
                  call(tree, u"TableByPath", {u"Path", u"s"});
              }),
              message_text("IDS_VT_TREE_SEPARATOR", {u"1", u"usr", u"Path", u"s"}));
}

TEST_F(TreesOfTables, BecomeNoTablesWithoutKeysAndNames) {
    const auto failed = [](std::vector<Arguments> rows, const wchar* method, Arguments arguments) {
        const GenericValue tree = call(table_of(u"Key,Name,Level", std::move(rows)), u"TreeByLevel");
        return failure([&] { call(tree, method, std::move(arguments)); });
    };
    const std::vector<Arguments> rows = {{1, u"a", 0}, {Value(), 5, 1}, {1, Value::null(), 0}};
    EXPECT_EQ(failed(rows, u"TableByParent", {u"Key", u"Above"}),
              message_text("IDS_VT_TREE_NO_KEY", {u"2", u"Key"}));
    EXPECT_EQ(failed({rows[0], rows[2]}, u"TableByParent", {u"Key", u"Above"}),
              message_text("IDS_VT_TREE_KEY_TWICE", {u"2", u"1", u"Key"}));
    EXPECT_EQ(failed(rows, u"TableByPath", {u"Name"}), message_text("IDS_VT_TREE_NO_PATH", {u"2", u"Name"}));
    EXPECT_EQ(failed({rows[0], rows[2]}, u"TableByPath", {u"Name"}),
              message_text("IDS_VT_TREE_NO_PATH", {u"2", u"Name"}));
}

TEST_F(TreesOfTables, RefuseRowsThatAreNoTree) {
    const auto failed = [](std::vector<Arguments> rows) {
        const GenericValue table = table_of(u"Key,Above", std::move(rows));
        return failure([&] { call(table, u"TreeByParent", {u"Key", u"Above"}); });
    };
    EXPECT_EQ(failed({{1, GenericValue()}, {2, 1}, {2, 1}}),
              message_text("IDS_VT_TREE_KEY_TWICE", {u"3", u"2", u"Key"}));
    EXPECT_EQ(failed({{1, 1}}), message_text("IDS_VT_TREE_CIRCLE", {u"1", u"1"}));
    EXPECT_EQ(failed({{5, GenericValue()}, {1, 3}, {2, 1}, {3, 2}}),
              message_text("IDS_VT_TREE_CIRCLE", {u"2", u"1"}));
    EXPECT_EQ(failed({{1, u"1"}}), message_text("IDS_VT_TREE_NO_PARENT", {u"1", u"1", u"Key"}));
    EXPECT_EQ(failed({{1, GenericValue()}, {GenericValue(), 1}}),
              message_text("IDS_VT_TREE_NO_KEY", {u"2", u"Key"}));
    EXPECT_EQ(failed({{u"a", u""}, {u"b", u"a"}}), u"") << "an empty text is no parent";

    for (const auto& [level, most] :
         std::map<std::vector<int>, int>{{{1}, 0}, {{0, 2}, 1}, {{0, 1, 3}, 2}, {{0, -1}, 1}}) {
        std::vector<Arguments> rows;
        for (const int one : level)
            rows.push_back({one});
        const GenericValue table = table_of(u"Level", rows);
        EXPECT_EQ(failure([&] { call(table, u"TreeByLevel"); }),
                  message_text("IDS_VT_TREE_LEVEL", {string_intto(level.size()), string_intto(level.back()),
                                                     u"Level", string_intto(most)}));
    }
    const GenericValue tree = call(table_of(u"Level", {{0}}), u"TreeByLevel");
    EXPECT_EQ(failure([&] { call(tree, u"TableByLevel", {u"1"}); }),
              message_text("IDS_VT_COLUMNCODE_ERROR", {u"1"}));
    EXPECT_EQ(failure([&] { call(table_of(u"A", {}), u"TreeByLevel"); }), unknown_column(u"Level"));
}

TEST_F(TreesOfTables, AreGroupedBelowEachRow) {
    const GenericValue tree = call(table_of(u"Level,Name,Number,Note", {{0, u"a", 1, u"x"},
                                                                        {1, u"p", 10, u"x"},
                                                                        {1, u"q", 20, u"x"},
                                                                        {0, u"b", 2, u"x"},
                                                                        {1, u"p", 5, u"x"},
                                                                        {0, u"a", GenericValue(), u"x"},
                                                                        {1, u"q", 1.5, u"x"},
                                                                        {2, u"z", 7, u"x"}}),
                                   u"TreeByLevel");
    const GenericValue row = call(property(tree, u"Rows"), u"Get", {0});
    call(tree, u"GroupBy", {u"Name", u"Number"});
    EXPECT_EQ(shown_tree(tree), u"a:1(p:10 q:21.5(z:7 ) ) b:2(p:5 ) ");
    EXPECT_EQ(failure([&] { static_cast<void>(property(row, u"Name")); }), unknown_row());
    EXPECT_EQ(failure([&] {
                  call(tree, u"GroupBy", {u"Name", u"Name"});
              }),
              message_text("IDS_VT_GROUPBY_INTERSECT_ERROR", {u"Name"}));
    EXPECT_NE(failure([&] { call(tree, u"GroupBy", {u"Number", u"Name"}); }), u"") << "a total of texts";
    EXPECT_EQ(shown_tree(tree), u"a:1(p:10 q:21.5(z:7 ) ) b:2(p:5 ) ") << "unchanged";
}

} // namespace
