// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/loop_check.h"

#include <core/context/context_def.h>
#include <core/context/iteration.h>
#include <core/descriptions/type_description.h>
#include <core/exchange/table_view.h>
#include <core/runtime/settings.h>
#include <core/runtime/threads/thread.h>
#include <core/tables/terms.h>
#include <core/tables/value_list.h>
#include <core/tables/value_table.h>
#include <core/tables/value_tree.h>

namespace core {

namespace {

GenericValue property(const Value& object, const Term& name) {
    const auto context = object.query<IContext_>();
    GenericValue value;
    context->getPropVal(context->findProp(name[kEnglish]), value);
    return value;
}

TableView view_of(const InterfacePtr<IValueTableBaseRO>& table, ViewFor whom) {
    TableView view;
    std::vector<std::int32_t> ids;
    for (std::size_t i = 0; i < table->columnCount(); ++i) {
        IValueTableBaseRO::Column column = table->column(i);
        ids.push_back(column.id);
        view.columns.push_back({whom == ViewFor::people ? column.title.text() : column.name,
                                static_cast<std::size_t>(column.width), std::move(column.domain)});
    }
    view.rows = table->rowCount();
    view.walk = [table, ids](const TableView::Show& show) {
        std::vector<Value> cells(ids.size());
        detail::LoopCheck check;
        for (std::size_t row = 0; row < table->rowCount(); ++row) {
            check();
            for (std::size_t i = 0; i < ids.size(); ++i)
                cells[i] = table->get(row, ids[i]);
            if (!show(cells, 0))
                return;
        }
    };
    return view;
}

/// Calls `visit` with each row of a tree and how many it is below, until it returns false.
template <class Visit>
void walk_tree(const Value& tree, Visit visit) {
    std::vector<InterfacePtr<IValueEnum>> open;
    const auto enter = [&open](const Value& parent) {
        open.push_back(property(parent, kRowCollectionTerm).query<IValueCollection>()->enumerate());
    };
    enter(tree);
    detail::LoopCheck check;
    for (GenericValue row; !open.empty();) {
        check();
        if (!open.back()->next(row)) {
            open.pop_back();
            continue;
        }
        if (!visit(row, open.size() - 1))
            return;
        enter(row);
    }
}

TableView view_of_tree(const Value& tree, ViewFor whom) {
    const bool showsLevel = whom == ViewFor::programs;
    TableView view;
    if (showsLevel)
        view.columns.push_back({u"Level"});
    GenericValue column;
    const auto columns = property(tree, kColumnCollectionTerm).query<IValueCollection>()->enumerate();
    while (columns->next(column)) {
        wstring title = property(column, showsLevel ? kCodePropTerm : kTitlePropTerm).presentation();
        if (title.empty()) // one that is in other languages
            title = property(column, kCodePropTerm).presentation();
        view.columns.push_back({std::move(title),
                                static_cast<std::size_t>(*property(column, kWidthPropTerm).asNumeric()),
                                *type_domain_of(property(column, kTypePropTerm))});
    }
    walk_tree(tree, [&view](const Value&, std::size_t) {
        ++view.rows;
        return true;
    });
    view.walk = [tree, showsLevel](const TableView::Show& show) {
        std::vector<Value> cells;
        walk_tree(tree, [&](const Value& row, std::size_t level) {
            cells.clear();
            if (showsLevel)
                cells.emplace_back(level);
            GenericValue cell;
            for (const auto walk = row.query<IValueCollection>()->enumerate(); walk->next(cell);)
                cells.push_back(cell);
            return show(cells, level);
        });
    };
    return view;
}

TableView view_of(const InterfacePtr<IValueList>& list, ViewFor whom) {
    const bool forPeople = whom == ViewFor::people;
    const int alias = forPeople && Thread::getResourceLocale().isRussian() ? kRussian : kEnglish;
    const auto title = [alias](const Term& name) { return TableView::Column{name[alias]}; };
    TableView view;
    view.columns = {title(kVLColumnTermValue), title(kVLColumnTermPresent), title(kVLColumnTermCheck)};
    view.rows = list->count();
    bool pictures = false; // a column of its own where an item has one
    for (std::size_t i = 0; i < view.rows && forPeople && !pictures; ++i)
        pictures = !list->get(i).picture.isUndefined();
    if (pictures)
        view.columns.push_back(title(kVLColumnTermPicture));
    view.walk = [list, forPeople, pictures](const TableView::Show& show) {
        detail::LoopCheck check;
        for (std::size_t i = 0; i < list->count(); ++i) {
            check();
            const IValueList::Item item = list->get(i);
            const Value check = forPeople ? Value(item.check ? u"✓" : u"") : Value(item.check);
            const Value cells[] = {item.value, Value(item.presentation.text()), check, item.picture};
            if (!show(std::span(cells).first(pictures ? 4 : 3), 0))
                return;
        }
    };
    return view;
}

} // namespace

std::optional<TableView> table_view(const Value& value, ViewFor whom) {
    if (const auto table = value.query<IValueTableBaseRO>())
        return view_of(table, whom);
    if (const auto list = value.query<IValueList>())
        return view_of(list, whom);
    if (value.isObject() && value.type().id() == kValueTreeType)
        return view_of_tree(value, whom);
    return {};
}

} // namespace core
