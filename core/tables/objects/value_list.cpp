// SPDX-License-Identifier: Apache-2.0
#include "core/collections/stored_count.h"
#include "core/lists/malformed.h"
#include "core/objects/stored_text.h"
#include "core/tables/convert/cell_fit.h"
#include "core/tables/objects/table_arguments.h"
#include "core/tables/objects/value_list_impl.h"
#include "core/tables/sort/value_ranks.h"
#include "core/tables/sort/word_sort.h"

#include <core/context/arguments.h>
#include <core/context/errors.h>
#include <core/descriptions/type_description.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/tables/errors.h>
#include <core/tables/terms.h>
#include <core/values/errors.h>

#include <unordered_set>

namespace core {

const ValueListItemPtr& ValueList::itemAt(std::size_t position) const {
    if (position >= count())
        throw_bad_index();
    return items_[order_.at(position)];
}

ValueList::Items ValueList::inOrder() const {
    Items items;
    items.reserve(count());
    order_.walk([&](RowId id) {
        items.push_back(items_[id]);
        return true;
    });
    return items;
}

const Value& ValueList::notHolding(const Value& value) const {
    const auto list = value.query<IListObject>();
    if (list && list->self().holds(*this))
        throw_error<ContextException>(messages::kListHoldsItself);
    return value;
}

Value ValueList::adjusted(const Value& value) const {
    return notHolding(domain_.adjust(value));
}

std::vector<Value> ValueList::fitted(const TypeDomain& domain, std::span<const Value> values) {
    std::vector<Value> made;
    made.reserve(values.size());
    Losses lost;
    for (const Value& value : values) {
        FittedCell fit = fit_cell(domain, value);
        if (fit.loss)
            lost.add({.row = made.size(), .text = value.presentation(), .reason = *fit.loss});
        made.push_back(std::move(fit.value));
    }
    lost.check();
    return made;
}

/// Says whether a list is this one or is held by it, directly or through other lists.
bool ValueList::holds(const ValueList& list) const {
    std::unordered_set<const ValueList*> seen = {this};
    std::vector<const ValueList*> ahead = {this};
    while (!ahead.empty()) {
        const ValueList* const here = ahead.back();
        ahead.pop_back();
        if (here == &list)
            return true;
        here->order_.walk([&](RowId id) {
            const Item& item = here->items_[id]->content();
            for (const Value* const value : {&item.value, &item.picture}) {
                const auto inner = value->query<IListObject>();
                if (inner && seen.insert(&inner->self()).second)
                    ahead.push_back(&inner->self());
            }
            return true;
        });
    }
    return false;
}

GenericValue ValueList::inserted(std::size_t position, Item item) {
    item.value = adjusted(item.value);
    static_cast<void>(notHolding(item.picture));
    ValueListItemPtr object = make_object<ValueListItem>(std::move(item));
    GenericValue result(object);
    // By the count: a failed insertion may have left an empty place behind the items.
    const RowId id = free_.empty() ? static_cast<RowId>(count()) : free_.back();
    if (id == items_.size())
        items_.emplace_back();
    order_.insert(position, id);
    if (!free_.empty())
        free_.pop_back();
    object->enter(this, id);
    items_[id] = std::move(object);
    added_.raise(position);
    return result;
}

/// Makes an item of a value, a presentation, a check mark and a picture.
GenericValue ValueList::inserted(std::size_t position, std::span<GenericValue> definition, int param) {
    return inserted(position, Item{.value = definition[0],
                                   .presentation = from_value<LocalWString>(
                                       definition[1], ValueReceiver::parameter(param + 1)),
                                   .check = flag_argument(definition[2], param + 2),
                                   .picture = definition[3]});
}

void ValueList::insert(std::size_t position, const Item& item) {
    if (position > count())
        throw_bad_index();
    static_cast<void>(inserted(position, item));
}

void ValueList::set(std::size_t position, const Item& item) {
    const ValueListItemPtr& changed = itemAt(position);
    Item content = item;
    content.value = adjusted(content.value);
    static_cast<void>(notHolding(content.picture));
    changed->exchangeContent(content);
    changed_.raise(position);
}

/// Replaces all items.
void ValueList::assign(Items items) noexcept {
    leave();
    items_.swap(items);
    for (std::size_t i = 0; i < items_.size(); ++i)
        items_[i]->enter(this, static_cast<RowId>(i));
    order_.makePlain(items_.size());
    free_.clear();
}

/// Tells all items that they are no longer in the list.
void ValueList::leave() noexcept {
    for (const ValueListItemPtr& item : items_) {
        if (item)
            item->enter(nullptr, kNoRow);
    }
}

std::size_t ValueList::position(const Value& argument, int param) const {
    return argument.kind() == ValueKind::number ? position_argument(argument, param, count())
                                                : positionOfItem(argument, param);
}

std::size_t ValueList::positionOfItem(const Value& argument, int param) const {
    const auto object = argument.query<IListItemObject>();
    if (!object)
        parameter_type_mismatch(param);
    if (object->self().list() != this)
        parameter_value_mismatch(param);
    return order_.positionOf(object->self().id());
}

InterfacePtr<IValueEnum> ValueList::enumerate() {
    std::vector<Value> items;
    items.reserve(count());
    for (const ValueListItemPtr& item : inOrder())
        items.emplace_back(item);
    return create_value_enum(std::move(items));
}

/// Sorts by a value of each item. Items with equal values keep their order.
void ValueList::sort(SortDirection direction, Value (*key)(const Item& item)) {
    const Items items = inOrder();
    std::vector<Value> keys;
    keys.reserve(items.size());
    for (const ValueListItemPtr& item : items)
        keys.push_back(key(item->content()));
    const std::vector<std::uint32_t> ranks = rank_values(keys, RowRange(keys.size()));
    std::vector<std::uint64_t> order(items.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        const std::uint32_t rank = direction == SortDirection::ascending ? ranks[i] : ~ranks[i];
        order[i] = std::uint64_t{rank} << 32 | i;
    }
    sort_words(order);
    Items sorted;
    sorted.reserve(items.size());
    for (const std::uint64_t key : order)
        sorted.push_back(items[static_cast<std::uint32_t>(key)]);
    assign(std::move(sorted));
    sorted_.raise();
}

GenericValue ValueList::getValueType() const {
    return create_type_description(domain_);
}

void ValueList::setValueTypeProperty(const GenericValue& value) {
    const TypeDomain* const domain = type_domain_of(value);
    if (domain == nullptr && !value.isUndefined())
        parameter_type_mismatch(0);
    setValueType(domain != nullptr ? *domain : TypeDomain());
}

void ValueList::setValueType(TypeDomain changed) {
    if (changed == domain_)
        return; // see TableData::setDomain()
    const Items items = inOrder();
    std::vector<Value> values;
    values.reserve(items.size());
    for (const ValueListItemPtr& item : items)
        values.push_back(item->content().value);
    values = fitted(changed, values);
    std::swap(domain_, changed);
    for (std::size_t i = 0; i < items.size(); ++i)
        items[i]->exchangeValue(values[i]);
    reloaded_.raise();
}

void ValueList::serialize(IOutPersistenceStorage* storage) const {
    ListOutStream& out = storage->listStream();
    out.putBeginOfList();
    domain_.pattern().serialize(out);
    out.put(static_cast<std::int64_t>(count()));
    for (const ValueListItemPtr& item : inOrder()) {
        out.putBeginOfList();
        serialize_value(storage, item->content().value);
        put_plain_text(out, item->content().presentation);
        out.put(item->content().check);
        serialize_value(storage, item->content().picture);
        put_languages(out, item->content().presentation);
        out.putEndOfList();
    }
    out.putEndOfList();
}

void ValueList::deserialize(IInPersistenceStorage* storage) {
    ListInStream& in = storage->listStream();
    TypeDomainPattern pattern;
    in.getBeginOfList();
    pattern.deserialize(in);
    std::int64_t count = get_count(in);
    TypeDomain domain(std::move(pattern));
    Items items; // grows with the items that are there: the count is not believed
    for (; count > 0; --count) {
        Item item;
        in.getBeginOfList();
        item.value = GenericValue::deserialize(storage);
        item.presentation = get_plain_text(in);
        in.get(item.check);
        item.picture = GenericValue::deserialize(storage);
        get_languages(in, item.presentation);
        in.getEndOfList();
        if (!domain.canHold(item.value))
            throw_malformed(); // no list of this description ever held it
        items.push_back(make_object<ValueListItem>(std::move(item)));
    }
    in.getEndOfList();
    domain_ = std::move(domain);
    assign(std::move(items));
    reloaded_.raise();
}

InterfacePtr<IValueList> create_value_list() {
    return make_object<ValueList>();
}

namespace {

const ScriptClassEntry<ValueList> kValueListEntry;

} // namespace

std::span<const EventEntry<ValueList>> ValueList::events() noexcept {
    using Self = ValueList;
    static constexpr NamePair kIndex[] = {{u"Index", u"Индекс"}};
    static constexpr NamePair kPlaces[] = {{u"From", u"Откуда"}, {u"To", u"Куда"}};
    static constexpr EventEntry<Self> kEvents[] = {
        event_entry<&Self::added_>(kIndex),   event_entry<&Self::changed_>(kIndex),
        event_entry<&Self::deleted_>(kIndex), event_entry<&Self::moved_>(kPlaces),
        event_entry<&Self::sorted_>(),        event_entry<&Self::cleared_>(),
        event_entry<&Self::reloaded_>(),
    };
    return kEvents;
}

std::span<const Property<ValueList>> ValueList::properties() noexcept {
    static constexpr Property<ValueList> kProperties[] = {
        {kTypePropTerm, &ValueList::getValueType, &ValueList::setValueTypeProperty, &kTypeDescriptionType},
    };
    return kProperties;
}

} // namespace core
