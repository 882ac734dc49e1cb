// SPDX-License-Identifier: Apache-2.0
// Concerns: long work on large tables looks often whether it is to end, in loops over rows of every kind and
// in what takes no token, and leaves the tables as they were.
#include "tests/tables/table_fixture.h"

#include <core/exchange/json.h>
#include <core/exchange/table_view.h>
#include <core/runtime/threads/stop_scope.h>

#include <functional>
#include <sstream>

namespace {

using namespace script;

class Stopping : public TableTest {
  protected:
    static constexpr int kRows = 20'000;
    static constexpr std::uint64_t kLook = kRows / 1024; // how often a loop over the rows looks at least

    /// Rows of a tree of fours, with cells of every form.
    static InterfacePtr<IValueTable> rows() {
        auto table = create_value_table();
        for (const wchar* const name : {u"Id", u"Parent", u"Level", u"Path", u"Name", u"Price", u"Any"})
            table->addColumn(name);
        for (int i = 0; i < kRows; ++i) {
            const Value text(u"n" + string_intto(i));
            const Value cells[] = {i + 1,
                                   i == 0 ? Value() : Value((i - 1) / 4 + 1),
                                   i == 0 ? 0 : 1,
                                   text,
                                   Value(u"name " + string_intto(i % 8)),
                                   i % 100,
                                   i % 2 == 0 ? text : Value(i)};
            table->appendRow(cells);
        }
        return table;
    }
    static Value value_of(IUnknown& object) { return Value(InterfacePtr<IValue>(&object)); }

    const InterfacePtr<IValueTable> table_ = rows();
    const InterfacePtr<IValueTree> tree_ = tree_by_parent(*table_, u"Id", u"Parent");
};

TEST_F(Stopping, IsLookedForInEachLoopOverManyRows) {
    IValueTable& table = *table_;
    IValueTree& tree = *tree_;
    const auto numbers = table.copy();
    numbers->fill(1, std::span<const std::int32_t>());
    const std::vector<wstring> turned = {u"Parent", u"Level", u"Path", u"Name", u"Price", u"Any"};
    const struct {
        const char* name;
        std::uint64_t looks; // at least
        std::function<void(const TableWork&)> run;
    } calls[] = {
        {"unite", kLook, [&](auto& work) { return unite(table, *numbers, EqualRows::once, work); }},
        {"pivot", kLook,
         [&](auto& work) { return pivot(table, {u"Id"}, u"Name", {sum(u"Price")}, 9, work); }},
        {"unpivot", 6 * kLook,
         [&](auto& work) { return unpivot(table, turned, u"N", u"V", EmptyCells::keep, work); }},
        {"tree by parent", kLook, [&](auto& work) { return tree_by_parent(table, u"Id", u"Parent", work); }},
        {"tree by path", kLook, [&](auto& work) { return tree_by_path(table, u"Path", u"/", work); }},
        {"tree by level", kLook, [&](auto& work) { return tree_by_level(table, u"Level", work); }},
        {"table by parent", 3 * kLook,
         [&](auto& work) { return table_by_parent(tree, u"Key", u"Above", work); }},
        {"table by path", 3 * kLook, [&](auto& work) { return table_by_path(tree, u"Path", u"/", work); }},
        {"table by level", kLook, [&](auto& work) { return table_by_level(tree, u"Depth", work); }},
        {"groups of a tree", kLook, [&](auto& work) { group_tree(tree, {u"Level"}, {u"Price"}, work); }},
    };
    const wstring tableBefore = text(value_of(table));
    const wstring treeBefore = text(value_of(tree));
    for (const auto& call : calls) {
        std::uint64_t looks = 0;
        const auto stopped_at = [&](std::uint64_t last) {
            looks = 0;
            StopSource source;
            const TableWork work{.stop = source.token(), .progress = [&](std::uint64_t, std::uint64_t) {
                                     if (++looks == last)
                                         source.request();
                                 }};
            call.run(work);
        };
        for (const std::uint64_t last : {std::uint64_t{1}, call.looks / 2, call.looks - 1}) {
            EXPECT_THROW(stopped_at(last), ThreadDeath) << call.name << " after look " << last;
        }
        EXPECT_TRUE(text(value_of(table)) == tableBefore) << call.name;
        EXPECT_TRUE(text(value_of(tree)) == treeBefore) << call.name;
    }
}

TEST_F(Stopping, EndsWhatAScriptCalls) {
    IValueTable& table = *table_;
    const GenericValue value = value_of(table);
    const GenericValue tree = value_of(*tree_);
    const wstring tableBefore = text(value);
    const wstring treeBefore = text(tree);
    const std::vector<Value> cells(kRows, Value(u"5"));
    wstring out;
    const auto write = [](const Value& rows, TableForm form) {
        std::ostringstream stream;
        write_table(stream, rows, form, 80);
    };
    const std::pair<const char*, std::function<void()>> calls[] = {
        {"copy", [&] { static_cast<void>(table.copy()); }},
        {"load", [&] { table.loadColumn(5, cells); }},
        {"type", [&] { table.setColumnType(5, TypeDomain(kStringType)); }},
        {"rows of a table", [&] { script::call(value, u"AddRows", {value}); }},
        {"total", [&] { static_cast<void>(table.total(6)); }},
        {"sort", [&] { script::call(value, u"Sort", {u"Path"}); }},
        {"rows below",
         [&] {
             script::call(property(tree, u"Rows"), u"Find", {-1, u"Id", true});
         }},
        {"text", [&] { value.toString(out); }},
        {"text of a tree", [&] { tree.toString(out); }},
        {"value of a text", [&] { static_cast<void>(GenericValue::fromString(tableBefore)); }},
        {"tree of a text", [&] { static_cast<void>(GenericValue::fromString(treeBefore)); }},
        {"bytes", [&] { static_cast<void>(value.toBytes()); }},
        {"json", [&] { static_cast<void>(to_json(value)); }},
        {"lines of json", [&] { static_cast<void>(to_json_lines(value)); }},
        {"table", [&] { write(value, TableForm::table); }},
        {"table of a tree", [&] { write(tree, TableForm::table); }},
        {"csv", [&] { write(value, TableForm::csv); }},
        {"markdown", [&] { write(value, TableForm::markdown); }},
        {"html", [&] { write(value, TableForm::html); }},
        {"fixed", [&] { write(value, TableForm::fixed); }},
    };
    StopSource source;
    source.request();
    for (const auto& [name, call] : calls) {
        const auto stopped = [&run = call, &source] {
            const StopScope scope(source.token());
            run();
        };
        EXPECT_THROW(stopped(), ThreadDeath) << name;
    }
    EXPECT_TRUE(text(value) == tableBefore);
    EXPECT_TRUE(text(tree) == treeBefore);
}

} // namespace
