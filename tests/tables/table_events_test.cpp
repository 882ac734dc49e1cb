// SPDX-License-Identifier: Apache-2.0
// Concerns: what tables, trees and lists tell of their changes is enough to follow them: a copy that is kept
// up to date by events alone stays equal under random changes. Sinks that change the table; a table that is
// not watched.
#include "tests/collections/script.h"

#include <core/context/events/event_service.h>
#include <core/tables.h>

#include <random>

namespace {

using namespace core;
using namespace script;
using Row = std::vector<GenericValue>;

std::size_t index_of(const GenericValue& value) {
    return static_cast<std::size_t>(*value.asSmallWhole());
}

IUnknown* object_of(const Value& value) {
    return value.object();
}

/// Connects a callable on the arguments of an event.
void listen(const Value& source, const wchar* event,
            std::function<void(std::span<const GenericValue>)> sink) {
    const auto held = make_event_sink(std::move(sink));
    get_service<IEventService>()->connect(object_of(source), event, held.get());
}

/// A table or a list copied row by row, as far as events tell that rows have changed.
class Copy {
  public:
    /// `kind` is "Row" or "Item", as the events are called.
    Copy(GenericValue source, const wstring& kind) : source_(std::move(source)) {
        listen(source_, (kind + u"Added").c_str(), [this](auto arguments) {
            const std::size_t at = index_of(arguments[0]);
            rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(at), read(at));
        });
        listen(source_, (kind + u"Changed").c_str(),
               [this](auto arguments) { rows_.at(index_of(arguments[0])) = read(index_of(arguments[0])); });
        listen(source_, (kind + u"Deleted").c_str(), [this](auto arguments) {
            rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(index_of(arguments[0])));
        });
        listen(source_, (kind + u"Moved").c_str(), [this](auto arguments) {
            const auto from = rows_.begin() + static_cast<std::ptrdiff_t>(index_of(arguments[0]));
            const auto to = rows_.begin() + static_cast<std::ptrdiff_t>(index_of(arguments[1]));
            from < to ? std::rotate(from, from + 1, to + 1) : std::rotate(to, from, from + 1);
        });
        listen(source_, u"Cleared", [this](auto) { rows_.clear(); });
        for (const wchar* const event : {u"Sorted", u"Reloaded"})
            listen(source_, event, [this](auto) { rows_ = all(); });
        if (kind == u"Row")
            listen(source_, u"ПРИИЗМЕНЕНИИКОЛОНОК", [this](auto) { rows_ = all(); });
    }

    [[nodiscard]] const std::vector<Row>& rows() const { return rows_; }
    [[nodiscard]] std::vector<Row> all() const {
        std::vector<Row> rows;
        for (std::size_t i = 0; i < index_of(call(source_, u"Count")); ++i)
            rows.push_back(read(i));
        return rows;
    }

  private:
    /// The properties of a row are its cells, those of an item its content.
    [[nodiscard]] Row read(std::size_t index) const {
        const auto row = call(source_, u"Get", {index}).query<IContext_>();
        Row cells(static_cast<std::size_t>(row->getNProps()));
        for (std::size_t i = 0; i < cells.size(); ++i)
            row->getPropVal(static_cast<int>(i), cells[i]);
        return cells;
    }

    GenericValue source_;
    std::vector<Row> rows_;
};

class TableEvents : public script::Test {
  protected:
    int roll(int below) { return static_cast<int>(dice_() % static_cast<unsigned>(below)); }
    std::mt19937 dice_{1};
};

TEST_F(TableEvents, ACopyFollowsATable) {
    const auto table = make(u"ValueTable");
    const auto columns = property(table, u"Columns");
    Copy copy(table, u"Row");
    int names = 0;
    for (int step = 0; step < 3000; ++step) {
        const int rows = static_cast<int>(index_of(call(table, u"Count")));
        const int width = static_cast<int>(index_of(call(columns, u"Count")));
        const int row = rows > 0 ? roll(rows) : 0;
        const int what = roll(24);
        if (what < 6) {
            call(table, u"Add");
        } else if (what == 6 && width < 5) {
            call(columns, u"Add", {Value(u"C" + string_intto(++names))});
        } else if (what == 7 && width > 1) {
            call(columns, u"Delete", {roll(width)});
        } else if (rows == 0 || width == 0) {
            call(table, u"Insert", {0});
        } else if (what < 12) {
            call(call(table, u"Get", {row}), u"Set", {roll(width), roll(10)});
        } else if (what < 15) {
            call(table, u"Delete", {row});
        } else if (what == 15) {
            call(table, u"Move", {row, roll(rows) - row});
        } else if (what == 16) {
            call(table, u"Insert", {row});
        } else if (what == 17) {
            call(table, u"Sort", {Value(property(call(columns, u"Get", {0}), u"Name"))});
        } else if (what == 18) {
            call(table, u"FillValues", {roll(10)});
        } else if (what == 19) {
            call(table, u"LoadColumn", {call(table, u"UnloadColumn", {0}), width - 1});
        } else if (what == 20) {
            const Value cell(roll(10));
            table.query<IValueTable>()->appendRow(std::span(&cell, 1));
        } else if (what == 21 && roll(10) == 0) {
            call(table, u"Clear");
        } else if (what == 22 && roll(4) == 0) {
            call(table, u"GroupBy", {property(call(columns, u"Get", {0}), u"Name")});
        } else {
            call(columns, u"Move", {width - 1, 1 - width});
        }
        ASSERT_EQ(copy.rows(), copy.all()) << "step " << step << ", change " << what;
    }
}

TEST_F(TableEvents, EachChangeOfAColumnIsToldOnce) {
    const auto table = make(u"ValueTable");
    const auto columns = property(table, u"Columns");
    int told = 0;
    listen(table, u"ColumnsChanged", [&](auto) { ++told; });
    const auto a = call(columns, u"Add", {u"A"});
    const auto context = a.query<IContext_>();
    EXPECT_EQ(told, 1);
    context->setPropVal(context->findProp(u"Name"), u"B");
    EXPECT_EQ(told, 2);
    context->setPropVal(context->findProp(u"ValueType"), make(u"TypeDescription", {u"Number"}));
    EXPECT_EQ(told, 3);
    context->setPropVal(context->findProp(u"ValueType"), make(u"TypeDescription", {u"Number"}));
    EXPECT_EQ(told, 3) << "nothing has changed";
    call(columns, u"Delete", {u"B"});
    EXPECT_EQ(told, 4);
}

TEST_F(TableEvents, ACopyFollowsAList) {
    const auto list = make(u"ValueList");
    Copy copy(list, u"Item");
    for (int step = 0; step < 2000; ++step) {
        const int items = static_cast<int>(index_of(call(list, u"Count")));
        const int item = items > 0 ? roll(items) : 0;
        const int what = roll(21);
        if (what < 6 || items == 0) {
            call(list, u"Insert", {item, roll(10)});
        } else if (what < 10) {
            const auto context = call(list, u"Get", {item}).query<IContext_>();
            context->setPropVal(context->findProp(u"Value"), roll(10));
            context->setPropVal(context->findProp(u"Presentation"), u"shown");
        } else if (what < 13) {
            call(list, u"Delete", {item});
        } else if (what == 13) {
            call(list, u"Move", {item, roll(items) - item});
        } else if (what == 14) {
            call(list, u"SortByValue");
        } else if (what == 15) {
            list.query<IValueList>()->setCheck(static_cast<std::size_t>(item), true);
        } else if (what == 16) {
            call(list, u"FillChecks", {false});
        } else if (what == 17) {
            call(list, u"LoadValues", {call(list, u"UnloadValues")});
        } else if (what == 18 && roll(10) == 0) {
            call(list, u"Clear");
        } else if (what == 19) {
            const auto context = list.query<IContext_>();
            const auto type = make(u"TypeDescription", {roll(2) == 0 ? u"String" : u"Number"});
            context->setPropVal(context->findProp(u"ValueType"), type);
        } else {
            list.query<IValueList>()->add({.value = Value(step), .presentation = {}, .picture = {}});
        }
        ASSERT_EQ(copy.rows(), copy.all()) << "step " << step << ", change " << what;
    }
}

TEST_F(TableEvents, ATreeSaysBelowWhichRow) {
    const auto tree = make(u"ValueTree");
    call(property(tree, u"Columns"), u"Add", {u"A"});
    std::vector<wstring> heard;
    const auto hear = [&](const wchar* event) {
        listen(tree, event, [&heard, event](std::span<const GenericValue> arguments) {
            wstring line = event;
            for (const GenericValue& argument : arguments)
                line += u' ' + (argument.isObject() ? property(argument, u"A") : argument).presentation();
            heard.push_back(line);
        });
    };
    for (const wchar* const event :
         {u"RowAdded", u"RowChanged", u"RowDeleted", u"RowMoved", u"Sorted", u"Cleared"})
        hear(event);
    const auto rows = property(tree, u"Rows");
    const auto top = call(rows, u"Add");
    call(top, u"Set", {0, u"top"});
    const auto below = property(top, u"Rows");
    call(below, u"Add");
    call(call(below, u"Add"), u"Set", {0, u"b"});
    call(below, u"Move", {1, -1});
    call(rows, u"Sort", {u"A", true});
    call(below, u"Delete", {0});
    call(below, u"Clear");
    EXPECT_EQ(heard, (std::vector<wstring>{u"RowAdded 0 ", u"RowChanged 0 A ", u"RowAdded 0 top",
                                           u"RowAdded 1 top", u"RowChanged 1 A top", u"RowMoved 1 0 top",
                                           u"Sorted ", u"RowDeleted 0 top", u"Cleared top"}));
}

TEST_F(TableEvents, EachArgumentHasItsNames) {
    for (const wchar* const type : {u"ValueTable", u"ValueTree", u"ValueList"}) {
        const auto made = make(type);
        const InterfacePtr<IEventSource> source(made.object());
        for (int event = 0; event < source->getNEvents(); ++event) {
            for (int param = 0; param < source->getNEventParams(event); ++param) {
                for (const int alias : {kEnglish, kRussian})
                    EXPECT_NE(source->getEventParamName(event, param, alias), nullptr)
                        << event << ' ' << param;
            }
            EXPECT_EQ(source->getEventParamName(event, source->getNEventParams(event), kEnglish), nullptr);
        }
    }
}

TEST_F(TableEvents, ASinkMayChangeTheTable) {
    const auto table = make(u"ValueTable");
    const auto columns = property(table, u"Columns");
    listen(table, u"ColumnsChanged", [&](auto) {
        if (index_of(call(columns, u"Count")) == 1)
            call(columns, u"Clear"); // the column whose object is on its way to the script
    });
    const auto column = call(columns, u"Add", {u"A"});
    EXPECT_NE(failure([&] { static_cast<void>(property(column, u"Name")); }), wstring());
    listen(table, u"RowAdded", [&](auto) { call(table, u"Clear"); });
    const auto row = call(table, u"Add");
    EXPECT_EQ(index_of(call(table, u"Count")), 0U);
    EXPECT_NE(failure([&] { call(row, u"Owner"); }), wstring());
}

} // namespace
