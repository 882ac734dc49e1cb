// SPDX-License-Identifier: Apache-2.0
// Concerns: whatever scripts can do with tables, trees and lists, C++ can, typed. A member that is new to
// scripts fails here until a function of the interfaces stands beside it.
#include "tests/tables/table_fixture.h"

namespace {

using namespace script;

/// That a function is there is for the compiler to say.
template <auto... functions>
constexpr bool typed = sizeof...(functions) > 0;

struct Member {
    const wchar* name;
    bool isTyped;
};

void expect_typed(const Value& object, std::span<const Member> members) {
    const auto context = object.query<IContext_>();
    std::vector<wstring> scripts;
    for (int i = 0; i < context->getNMethods(); ++i)
        scripts.emplace_back(context->getMethodName(i, kEnglish));
    for (int i = 0; i < context->getNProps(); ++i)
        scripts.emplace_back(context->getPropName(i, kEnglish));
    for (const wstring& name : scripts) {
        EXPECT_TRUE(std::any_of(members.begin(), members.end(),
                                [&](const Member& member) { return name == member.name && member.isTyped; }))
            << "C++ has no " << to_utf8(object.presentation() + u"." + name);
    }
    for (const Member& member : members)
        EXPECT_NE(std::find(scripts.begin(), scripts.end(), member.name), scripts.end())
            << "scripts have no " << to_utf8(object.presentation() + u"." + member.name);
}

class TypedMembers : public TableTest {};

TEST_F(TypedMembers, OfTables) {
    using T = IValueTable;
    static constexpr Member kTable[] = {
        {u"Columns", typed<&T::columns>},
        {u"Indexes", typed<&T::indexCount, &T::index>},
        {u"Losses", typed<&T::losses>},
        {u"LossCount", typed<&T::losses>},
        {u"Count", typed<&T::rowCount>},
        {u"IndexOf", typed<&T::indexOf>},
        {u"Add", typed<&T::appendRow>},
        {u"Insert", typed<&T::insertRow>},
        {u"Delete", typed<&T::removeRow>},
        {u"Clear", typed<&T::clear>},
        {u"Move", typed<&T::moveRow>},
        {u"Find", typed<&T::find>},
        {u"FindRows", typed<&T::IValueTableBaseRO_findRows>},
        {u"Total", typed<&T::total>},
        {u"Sort", typed<&T::sort>},
        {u"LoadColumn", typed<&T::loadColumn>},
        {u"UnloadColumn", typed<&T::unloadColumn>},
        {u"Get", typed<&T::row>},
        {u"Copy", typed<&T::copy, &T::copyRows>},
        {u"CopyColumns", typed<&T::copyRows>},
        {u"GroupBy", typed<&T::groupBy>},
        {u"FillValues", typed<&T::fill>},
        {u"ChooseRow", typed<&T::chooseRow>},
        {u"Group", typed<&group>},
        {u"Pivot", typed<&pivot>},
        {u"Unpivot", typed<&unpivot>},
        {u"AddWindow", typed<&add_windows>},
        {u"Filter", typed<&keep_rows>},
        {u"AddColumn", typed<&add_column>},
        {u"Join", typed<&join>},
        {u"Union", typed<&unite>},
        {u"Except", typed<&except>},
        {u"Intersect", typed<&intersect>},
        {u"Distinct", typed<&distinct>},
        {u"AddRow", typed<&T::appendRow>},
        {u"AddRows", typed<&add_rows>},
        {u"UnloadRows", typed<&structures_of>},
        {u"TreeByParent", typed<&tree_by_parent>},
        {u"TreeByPath", typed<&tree_by_path>},
        {u"TreeByLevel", typed<&tree_by_level>},
    };
    expect_typed(make(u"ValueTable"), kTable);
}

TEST_F(TypedMembers, OfIndexesAndRows) {
    using T = IValueTable;
    const GenericValue table = make(u"ValueTable");
    static constexpr Member kIndexes[] = {
        {u"Add", typed<&T::addIndex>},       {u"Delete", typed<&T::removeIndex>},
        {u"Clear", typed<&T::clearIndexes>}, {u"Count", typed<&T::indexCount>},
        {u"Get", typed<&T::index>},
    };
    expect_typed(property(table, u"Indexes"), kIndexes);

    static constexpr Member kRow[] = {
        {u"Get", typed<&IValueRow::get>},
        {u"Set", typed<&IValueRow::set>},
        {u"Owner", typed<&IValueRow::owner>},
    };
    expect_typed(call(table, u"Add"), kRow);
}

TEST_F(TypedMembers, OfColumns) {
    using C = IValueColumns;
    static constexpr Member kColumns[] = {
        {u"Add", typed<&C::insert>},  {u"Insert", typed<&C::insert>}, {u"IndexOf", typed<&C::positionOf>},
        {u"Count", typed<&C::count>}, {u"Find", typed<&C::find>},     {u"Delete", typed<&C::remove>},
        {u"Get", typed<&C::get>},     {u"Move", typed<&C::move>},     {u"Clear", typed<&C::clear>},
    };
    const GenericValue columns = property(make(u"ValueTable"), u"Columns");
    expect_typed(columns, kColumns);
    static constexpr Member kColumn[] = {
        {u"Name", typed<&ValueColumn::name, &C::rename>},
        {u"ValueType", typed<&ValueColumn::domain, &C::setType>},
        {u"Title", typed<&ValueColumn::title, &C::setTitle>},
        {u"Width", typed<&ValueColumn::width, &C::setWidth>},
        {u"Convert", typed<&C::setType>},
    };
    expect_typed(call(columns, u"Add", {u"A"}), kColumn);
}

TEST_F(TypedMembers, OfTrees) {
    using R = IValueTreeRows;
    static constexpr Member kTree[] = {
        {u"Columns", typed<&IValueTree::columns>},
        {u"Rows", typed<&IValueTree::rows>},
        {u"Copy", typed<&copy_tree>},
        {u"GroupBy", typed<&group_tree>},
        {u"TableByParent", typed<&table_by_parent>},
        {u"TableByPath", typed<&table_by_path>},
        {u"TableByLevel", typed<&table_by_level>},
    };
    const GenericValue tree = make(u"ValueTree");
    expect_typed(tree, kTree);
    static constexpr Member kRows[] = {
        {u"Count", typed<&R::count>},
        {u"IndexOf", typed<&R::indexOf>},
        {u"Add", typed<&R::add>},
        {u"AddRow", typed<&R::add>},
        {u"Insert", typed<&R::insert>},
        {u"Delete", typed<&R::remove>},
        {u"Clear", typed<&R::clear>},
        {u"Move", typed<&R::move>},
        {u"Find", typed<&R::find>},
        {u"FindRows", typed<&R::findRows>},
        {u"Total", typed<&R::total>},
        {u"Sort", typed<&R::sort>},
        {u"LoadColumn", typed<&R::loadColumn>},
        {u"UnloadColumn", typed<&R::unloadColumn>},
        {u"Get", typed<&R::row>},
    };
    const GenericValue rows = property(tree, u"Rows");
    expect_typed(rows, kRows);
    static constexpr Member kRow[] = {
        {u"Get", typed<&IValueRow::get>},           {u"Set", typed<&IValueRow::set>},
        {u"Owner", typed<&IValueRow::owner>},       {u"Rows", typed<&IValueTreeRow::rows>},
        {u"Parent", typed<&IValueTreeRow::parent>},
    };
    expect_typed(call(rows, u"Add"), kRow);
}

TEST_F(TypedMembers, OfLists) {
    using L = IValueList;
    static constexpr Member kList[] = {
        {u"ValueType", typed<&L::valueType, &L::setValueType>},
        {u"FindByValue", typed<&L::find>},
        {u"SortByValue", typed<&L::sortByValue>},
        {u"SortByPresentation", typed<&L::sortByPresentation>},
        {u"ChooseItem", typed<&L::choose>},
        {u"CheckItems", typed<&L::chooseChecks>},
        {u"UnloadValues", typed<&L::values>},
        {u"LoadValues", typed<&L::load>},
        {u"Copy", typed<&L::copy>},
        {u"Count", typed<&L::count>},
        {u"Add", typed<&L::add>},
        {u"Insert", typed<&L::insert>},
        {u"Delete", typed<&L::remove>},
        {u"Clear", typed<&L::clear>},
        {u"Move", typed<&L::move>},
        {u"IndexOf", typed<&L::indexOf>},
        {u"Get", typed<&L::item>},
        {u"FillChecks", typed<&L::fillChecks>},
    };
    const GenericValue list = make(u"ValueList");
    expect_typed(list, kList);
    static constexpr Member kItem[] = {
        {u"Value", typed<&L::Item::value, &L::set>},
        {u"Presentation", typed<&L::Item::presentation, &L::set>},
        {u"Check", typed<&L::Item::check, &L::setCheck>},
        {u"Picture", typed<&L::Item::picture, &L::set>},
    };
    expect_typed(call(list, u"Add", {1}), kItem);
}

} // namespace
