// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/any_value.h>
#include <core/runtime/index_iterator.h>
#include <core/tables/value_list.h>

#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace core {

/// An item of a value list: a handle, which keeps the list alive and names the item by its position. Every
/// function except position() throws ContextException ("IDS_INDEX_OFFBOUND") when there is no such item.
/// Threads: as the list.
class ListItem {
  public:
    /// Makes the handle of an item, which is not looked for before it is used.
    ListItem(InterfacePtr<IValueList> list, std::size_t position) noexcept
        : list_(std::move(list)), position_(position) {}

    /// Returns the position of the item.
    [[nodiscard]] std::size_t position() const noexcept { return position_; }
    /// Returns a copy of all that the item holds. Throws as said above.
    [[nodiscard]] IValueList::Item content() const { return list_->get(position_); }
    /// Returns the item as scripts hold it, which stays this item wherever it moves. Throws as said above.
    [[nodiscard]] GenericValue object() const { return list_->item(position_); }
    /// Returns the value. Throws as said above.
    [[nodiscard]] Value value() const { return content().value; }
    /// Returns the text that a user reads: the presentation, or that of the value where it is empty. Throws
    /// as said above.
    [[nodiscard]] wstring presentation() const {
        const IValueList::Item item = content();
        const wstring& text = item.presentation.text();
        return text.empty() ? item.value.presentation() : text;
    }
    /// Returns the check mark. Throws as said above.
    [[nodiscard]] bool isChecked() const { return content().check; }
    /// Returns the picture, or Undefined. Throws as said above.
    [[nodiscard]] Value picture() const { return content().picture; }

    /// Replaces all that the item holds. Throws as IValueList::set() does.
    void set(const IValueList::Item& content) const { list_->set(position_, content); }
    /// Gives the item another value. Throws as IValueList::set() does.
    void setValue(const AnyValue& value) const {
        change([&](IValueList::Item& item) { item.value = value; });
    }
    /// Gives the item another presentation; an empty one stands for that of the value. Throws as said above.
    void setPresentation(const LocalWString& presentation) const {
        change([&](IValueList::Item& item) { item.presentation = presentation; });
    }
    /// Sets or clears the check mark. Throws as said above.
    void check(bool check = true) const { list_->setCheck(position_, check); }
    /// Gives the item another picture. Throws as IValueList::set() does.
    void setPicture(const Value& picture) const {
        change([&](IValueList::Item& item) { item.picture = picture; });
    }

  private:
    template <class Change>
    void change(Change change) const {
        IValueList::Item item = content();
        change(item);
        list_->set(position_, item);
    }

    InterfacePtr<IValueList> list_;
    std::size_t position_;
};

/// A value list in the hand of a program:
///
///     List sizes;
///     sizes.add(38, u"small");
///     for (const ListItem& item : sizes)
///         std::cout << item.value() << '\n';
///
/// It is a handle: copies share one list, which scripts know as "ValueList", and a function that is const may
/// change it. IValueList has the same operations, and `->` leads to it. Threads: one at a time.
class List {
  public:
    /// Makes an empty list that admits every value. Throws std::bad_alloc.
    List() : list_(create_value_list()) {}
    /// Makes a list of these values; `List{other}` is a list of one list.
    List(AnyValues values) : List() { list_->load(to_values(values)); }
    /// Holds a list that is there, which must not be null.
    List(InterfacePtr<IValueList> list) noexcept : list_(std::move(list)) {}
    /// Holds the list that a value is. Throws ContextException ("IDS_PARAMETER_N_TYPE_MISMATCH") for any
    /// other value.
    explicit List(const Value& value) : list_(from_value<InterfacePtr<IValueList>>(value)) {}

    /// Returns the list, borrowed: valid as long as this handle.
    [[nodiscard]] IValueList* operator->() const noexcept { return list_.get(); }
    /// Returns the list, borrowed: valid as long as this handle.
    operator const InterfacePtr<IValueList>&() const noexcept { return list_; }
    /// Returns the list as a value.
    operator Value() const { return detail::value_of_pointer(list_.get()); }

    /// Returns how many items there are.
    [[nodiscard]] std::size_t size() const noexcept { return list_->count(); }
    /// Returns whether there are none.
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    /// Returns the item at a position, which is not looked for before it is used.
    [[nodiscard]] ListItem operator[](std::size_t position) const noexcept { return {list_, position}; }
    /// Begins a walk over the items that there are now, by their positions.
    [[nodiscard]] IndexIterator<List> begin() const noexcept { return {*this, 0}; }
    /// Returns the end of a walk.
    [[nodiscard]] IndexIterator<List> end() const noexcept { return {*this, size()}; }
    /// Returns the first item with a value; nothing where none has it.
    [[nodiscard]] std::optional<ListItem> find(const AnyValue& value) const {
        const auto position = list_->find(value);
        return position ? std::optional((*this)[*position]) : std::nullopt;
    }
    /// Returns the values of all items, in their order.
    [[nodiscard]] std::vector<Value> values() const { return list_->values(); }

    /// Adds an item behind the others and returns it. Throws as IValueList::add() does.
    ListItem add(const AnyValue& value, const LocalWString& presentation = {}, bool check = false) const {
        return insert(size(), value, presentation, check);
    }
    /// Inserts an item before the one at a position and returns it. Throws as IValueList::insert() does.
    ListItem insert(std::size_t position, const AnyValue& value, const LocalWString& presentation = {},
                    bool check = false) const {
        list_->insert(position, {value, presentation, check, {}});
        return {list_, position};
    }
    /// Deletes an item; those behind it move up. Throws as IValueList::remove() does.
    void remove(const ListItem& item) const { list_->remove(item.position()); }
    /// Deletes all items.
    void clear() const { list_->clear(); }
    /// Sorts the items by their values; those with equal ones keep their order.
    void sort(SortDirection direction = SortDirection::ascending) const { list_->sortByValue(direction); }

  private:
    InterfacePtr<IValueList> list_;
};

/// A value list.
template <>
struct NativeValue<List> {
    /// Returns the list; refuses the type of every other value.
    static List from(const Value& value, ValueReceiver receiver) {
        return from_value<InterfacePtr<IValueList>>(value, receiver);
    }
    /// Returns the list as a value.
    static Value to(const List& list) { return list; }
    /// Returns the type of value lists.
    static const GUID* type() noexcept { return &kValueListType; }
};

} // namespace core
