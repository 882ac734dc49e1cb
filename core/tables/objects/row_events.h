// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/context/events/sink_table.h"
#include "core/tables/objects/row_objects.h"

#include <core/context/events/event.h>

#include <array>

namespace core {

/// The events of a table or a tree. `Parent` is nothing for a table, and Value for a tree: the row above the
/// rows that changed, Undefined for the topmost ones. Nobody calls it before a sink has connected.
template <class... Parent>
class RowEvents final : public TableWatcher {
  public:
    explicit RowEvents(TableData& data) noexcept : data_(data) {}

    void rowAdded(RowId parent, std::size_t position) noexcept override { tell(added_, parent, position); }
    void rowChanged(RowId row, std::size_t column) noexcept override {
        if (changed_.isIdle())
            return;
        const RowId parent = data_.parentOf(row);
        tell(changed_, parent, data_.rowsOf(parent).positionOf(row), data_.column(column).info.name);
    }
    void rowDeleted(RowId parent, std::size_t position) noexcept override {
        tell(deleted_, parent, position);
    }
    void rowMoved(RowId parent, std::size_t from, std::size_t to) noexcept override {
        tell(moved_, parent, from, to);
    }
    void rowsSorted(RowId parent) noexcept override { tell(sorted_, parent); }
    void rowsCleared(RowId parent) noexcept override { tell(cleared_, parent); }
    void columnsChanged() noexcept override { columnsChanged_.raise(); }
    void reloaded() noexcept override { reloaded_.raise(); }

    /// The table of events of `T`, whose rowEvents() returns these.
    template <class T>
    [[nodiscard]] static constexpr std::array<EventEntry<T>, 8> entries() noexcept;

  private:
    template <class... Args, class... Given>
    void tell(Event<Args...>& event, RowId parent, const Given&... arguments) noexcept {
        if (event.isIdle())
            return;
        if constexpr (sizeof...(Parent) == 0) {
            event.raise(arguments...);
        } else {
            try {
                event.raise(arguments..., parent != kNoRow ? Value(row_value(data_, parent)) : Value());
            } catch (...) { // no memory for the row: the change stays done
                detail::report_sink_failure(event.names());
            }
        }
    }
    template <class T, auto event>
    [[nodiscard]] static constexpr EventEntry<T> entry(std::span<const NamePair> names) noexcept {
        using Type = std::remove_reference_t<decltype(std::declval<RowEvents&>().*event)>;
        return {&detail::EventTraits<Type>::ops,
                [](const void*, T& object) -> EventBase& { return object.rowEvents().*event; }, names};
    }

    static constexpr NamePair kIndex{u"Index", u"Индекс"};
    static constexpr NamePair kParent{u"Parent", u"Родитель"};
    static constexpr NamePair kOneRow[] = {kIndex, kParent};
    static constexpr NamePair kOneCell[] = {kIndex, {u"Column", u"Колонка"}, kParent};
    static constexpr NamePair kTwoPlaces[] = {{u"From", u"Откуда"}, {u"To", u"Куда"}, kParent};
    static constexpr NamePair kRows[] = {kParent};

    TableData& data_;
    Event<std::size_t, Parent...> added_{named<u"RowAdded", u"ПриДобавленииСтроки">};
    Event<std::size_t, wstring, Parent...> changed_{named<u"RowChanged", u"ПриИзмененииСтроки">};
    Event<std::size_t, Parent...> deleted_{named<u"RowDeleted", u"ПриУдаленииСтроки">};
    Event<std::size_t, std::size_t, Parent...> moved_{named<u"RowMoved", u"ПриПеремещенииСтроки">};
    Event<Parent...> sorted_{named<u"Sorted", u"ПриСортировке">};
    Event<Parent...> cleared_{named<u"Cleared", u"ПриОчистке">};
    Event<> columnsChanged_{named<u"ColumnsChanged", u"ПриИзмененииКолонок">};
    Event<> reloaded_{named<u"Reloaded", u"ПриПерезагрузке">};
};

template <class... Parent>
template <class T>
constexpr std::array<EventEntry<T>, 8> RowEvents<Parent...>::entries() noexcept {
    using Self = RowEvents;
    constexpr std::size_t parents = sizeof...(Parent);
    return {{
        entry<T, &Self::added_>(std::span(kOneRow).first(1 + parents)),
        entry<T, &Self::changed_>(std::span(kOneCell).first(2 + parents)),
        entry<T, &Self::deleted_>(std::span(kOneRow).first(1 + parents)),
        entry<T, &Self::moved_>(std::span(kTwoPlaces).first(2 + parents)),
        entry<T, &Self::sorted_>(std::span(kRows).first(parents)),
        entry<T, &Self::cleared_>(std::span(kRows).first(parents)),
        entry<T, &Self::columnsChanged_>({}),
        entry<T, &Self::reloaded_>({}),
    }};
}

} // namespace core
