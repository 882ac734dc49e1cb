// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/objects/value_list_item.h"

#include <core/context/events/event.h>
#include <core/types/type_domain.h>

#include <vector>

namespace core {

/// How the library knows its own lists among all values.
class IListObject : public IUnknown {
  public:
    static constexpr GUID IID = "c7e38042-32bc-4f9f-b2f4-9c88a6fad2f8"_guid;
    [[nodiscard]] virtual const ValueList& self() const noexcept = 0;

  protected:
    ~IListObject() = default;
};

/// Items have ids as the rows of a table have, so that taking one from a long list, or asking for its index,
/// does not mean going through the list.
class ValueList
    : public ScriptObject<ValueList, IValueList, IListObject, IValueCollection, IPersistableObject> {
  public:
    static constexpr ScriptClass script = {
        .names = kValueListTerm,
        .type = kValueListType,
        .object = kValueListClass,
        .presentation = "IDS_TYPE_PRESENTATION_VALUELIST",
        .arguments = {0, 0},
        .elements = &kValueListItemType,
    };

    ValueList() : order_(chunks_, true) {}
    ValueList(const ValueList&) = delete;
    ValueList& operator=(const ValueList&) = delete;
    ~ValueList() { leave(); }

    static std::span<const Property<ValueList>> properties() noexcept;
    static std::span<const Method<ValueList>> methods() noexcept;
    static std::span<const EventEntry<ValueList>> events() noexcept;
    const ValueList& self() const noexcept override { return *this; }
    InterfacePtr<IValueEnum> enumerate() override;

    // IValueList
    std::size_t count() const noexcept override { return order_.size(); }
    Item get(std::size_t position) const override { return itemAt(position)->content(); }
    GenericValue item(std::size_t position) const override { return itemAt(position); }
    std::size_t indexOf(const Value& item) const override { return positionOfItem(item, 0); }
    std::optional<std::size_t> find(const Value& value) const noexcept override;
    std::vector<Value> values() const override;
    TypeDomain valueType() const override { return domain_; }
    InterfacePtr<IValueList> copy() const override;
    void add(const Item& item) override { insert(count(), item); }
    void insert(std::size_t position, const Item& item) override;
    void set(std::size_t position, const Item& item) override;
    void setCheck(std::size_t position, bool check) override {
        itemAt(position)->setCheck(check);
        changed_.raise(position);
    }
    void fillChecks(bool check) override;
    void move(std::size_t from, std::size_t to) override;
    void remove(std::size_t position) override;
    void clear() override;
    void load(std::span<const Value> values) override;
    void setValueType(TypeDomain domain) override;
    void sortByValue(SortDirection direction) override;
    void sortByPresentation(SortDirection direction) override;
    std::optional<std::size_t> choose(const wstring& title, std::optional<std::size_t> initial) override;
    bool chooseChecks(const wstring& title) override;

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override;
    void deserialize(IInPersistenceStorage* storage) override;

    /// What the list makes of a value that an item is to have.
    [[nodiscard]] Value adjusted(const Value& value) const;
    /// What a list with the description makes of many values. Throws ConversionException when one of them
    /// would not be kept whole.
    [[nodiscard]] static std::vector<Value> fitted(const TypeDomain& domain, std::span<const Value> values);
    /// Returns `value`, through which this list would not hold itself.
    const Value& notHolding(const Value& value) const;
    /// Tells those who listen that the content of an item has changed.
    void itemChanged(RowId id) {
        if (!changed_.isIdle())
            changed_.raise(order_.positionOf(id));
    }

  private:
    using Items = std::vector<ValueListItemPtr>;

    [[nodiscard]] const ValueListItemPtr& itemAt(std::size_t position) const;
    [[nodiscard]] Items inOrder() const;
    [[nodiscard]] GenericValue inserted(std::size_t position, Item item);
    [[nodiscard]] GenericValue inserted(std::size_t position, std::span<GenericValue> definition, int param);
    void assign(Items items) noexcept;
    void leave() noexcept;
    /// The position of an item that is given by it or as an object, or as an object only.
    [[nodiscard]] std::size_t position(const Value& argument, int param) const;
    [[nodiscard]] std::size_t positionOfItem(const Value& argument, int param) const;
    void sort(SortDirection direction, Value (*key)(const Item& item));
    [[nodiscard]] GenericValue chosen(const wstring& title, const Value& initial);
    [[nodiscard]] bool holds(const ValueList& list) const;

    GenericValue getValueType() const;
    void setValueTypeProperty(const GenericValue& value);

    GenericValue callFindByValue(std::span<GenericValue> arguments);
    GenericValue callSortByValue(std::span<GenericValue> arguments);
    GenericValue callSortByPresentation(std::span<GenericValue> arguments);
    GenericValue callChooseItem(std::span<GenericValue> arguments);
    GenericValue callCheckItems(std::span<GenericValue> arguments);
    GenericValue callUnloadValues(std::span<GenericValue> arguments);
    GenericValue callLoadValues(std::span<GenericValue> arguments);
    GenericValue callCopy(std::span<GenericValue> arguments);
    GenericValue callCount(std::span<GenericValue> arguments);
    GenericValue callAdd(std::span<GenericValue> arguments);
    GenericValue callInsert(std::span<GenericValue> arguments);
    GenericValue callDelete(std::span<GenericValue> arguments);
    GenericValue callClear(std::span<GenericValue> arguments);
    GenericValue callMove(std::span<GenericValue> arguments);
    GenericValue callIndexOf(std::span<GenericValue> arguments);
    GenericValue callGet(std::span<GenericValue> arguments);
    GenericValue callFillChecks(std::span<GenericValue> arguments);

    TypeDomain domain_;
    ChunksByRow chunks_;
    RowOrder order_;
    Items items_; // by id; null for those that are free
    std::vector<RowId> free_;

    // Raised when the change is complete: sinks may do anything with the list.
    Event<std::size_t> added_{named<u"ItemAdded", u"ПриДобавленииЭлемента">};
    Event<std::size_t> changed_{named<u"ItemChanged", u"ПриИзмененииЭлемента">};
    Event<std::size_t> deleted_{named<u"ItemDeleted", u"ПриУдаленииЭлемента">};
    Event<std::size_t, std::size_t> moved_{named<u"ItemMoved", u"ПриПеремещенииЭлемента">};
    Event<> sorted_{named<u"Sorted", u"ПриСортировке">};
    Event<> cleared_{named<u"Cleared", u"ПриОчистке">};
    Event<> reloaded_{named<u"Reloaded", u"ПриПерезагрузке">};
};

} // namespace core
