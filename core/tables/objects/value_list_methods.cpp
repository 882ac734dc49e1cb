// SPDX-License-Identifier: Apache-2.0
// The list's methods as scripts call them, and their table.
#include "core/tables/objects/table_arguments.h"
#include "core/tables/objects/table_parameters.h"
#include "core/tables/objects/value_list_impl.h"

#include <core/collections/terms.h>
#include <core/collections/value_array.h>
#include <core/context/arguments.h>
#include <core/runtime/process.h>
#include <core/tables/chooser.h>
#include <core/tables/terms.h>

namespace core {

namespace {

SortDirection direction_argument(const Value& argument) {
    const auto number = argument.isUndefined() ? 0 : sort_types().number(argument);
    if (!number)
        parameter_type_mismatch(0);
    return *number == 0 ? SortDirection::ascending : SortDirection::descending;
}

} // namespace

std::optional<std::size_t> ValueList::find(const Value& value) const noexcept {
    std::optional<std::size_t> found;
    std::size_t position = 0;
    order_.walk([&](RowId id) {
        if (items_[id]->content().value.equals(value))
            found = position;
        ++position;
        return !found;
    });
    return found;
}

GenericValue ValueList::callFindByValue(std::span<GenericValue> arguments) {
    const auto position = find(arguments[0]);
    return position ? item(*position) : GenericValue();
}

void ValueList::sortByValue(SortDirection direction) {
    sort(direction, [](const Item& item) { return item.value; });
}

GenericValue ValueList::callSortByValue(std::span<GenericValue> arguments) {
    sortByValue(direction_argument(arguments[0]));
    return {};
}

void ValueList::sortByPresentation(SortDirection direction) {
    sort(direction, [](const Item& item) { return Value(item.presentation.text()); });
}

GenericValue ValueList::callSortByPresentation(std::span<GenericValue> arguments) {
    sortByPresentation(direction_argument(arguments[0]));
    return {};
}

GenericValue ValueList::chosen(const wstring& title, const Value& initial) {
    IChooser* const chooser = get_service<IChooser>();
    return chooser != nullptr ? chooser->chooseItem(Value(this), title, initial) : GenericValue();
}

std::optional<std::size_t> ValueList::choose(const wstring& title, std::optional<std::size_t> initial) {
    const GenericValue found = chosen(title, initial ? item(*initial) : GenericValue());
    return found.isUndefined() ? std::nullopt : std::optional(indexOf(found));
}

GenericValue ValueList::callChooseItem(std::span<GenericValue> arguments) {
    const wstring title(text_argument(arguments[0], 0));
    if (!arguments[1].isUndefined())
        static_cast<void>(positionOfItem(arguments[1], 1));
    return chosen(title, arguments[1]);
}

bool ValueList::chooseChecks(const wstring& title) {
    IChooser* const chooser = get_service<IChooser>();
    return chooser != nullptr && chooser->checkItems(Value(this), title);
}

GenericValue ValueList::callCheckItems(std::span<GenericValue> arguments) {
    return chooseChecks(wstring(text_argument(arguments[0], 0)));
}

std::vector<Value> ValueList::values() const {
    std::vector<Value> values;
    values.reserve(count());
    for (const ValueListItemPtr& item : inOrder())
        values.push_back(item->content().value);
    return values;
}

GenericValue ValueList::callUnloadValues(std::span<GenericValue>) {
    return Value(create_value_array(values()).query<IValue>());
}

void ValueList::load(std::span<const Value> values) {
    Items items;
    items.reserve(values.size());
    for (const Value& value : fitted(domain_, values))
        items.push_back(
            make_object<ValueListItem>(Item{.value = notHolding(value), .presentation = {}, .picture = {}}));
    assign(std::move(items));
    reloaded_.raise();
}

GenericValue ValueList::callLoadValues(std::span<GenericValue> arguments) {
    load(object_argument<IValueSequence>(arguments[0], 0)->values());
    return {};
}

InterfacePtr<IValueList> ValueList::copy() const {
    auto copy = make_object<ValueList>();
    copy->domain_ = domain_;
    Items items;
    items.reserve(count());
    for (const ValueListItemPtr& item : inOrder())
        items.push_back(make_object<ValueListItem>(item->content()));
    copy->assign(std::move(items));
    return copy;
}

GenericValue ValueList::callCopy(std::span<GenericValue>) {
    return Value(copy().query<IValue>());
}

GenericValue ValueList::callCount(std::span<GenericValue>) {
    return count();
}

GenericValue ValueList::callAdd(std::span<GenericValue> arguments) {
    return inserted(count(), arguments, 0);
}

GenericValue ValueList::callInsert(std::span<GenericValue> arguments) {
    const std::size_t position = position_argument(arguments[0], 0, count(), IndexBound::insertion);
    return inserted(position, arguments.subspan(1), 1);
}

void ValueList::remove(std::size_t position) {
    static_cast<void>(itemAt(position));
    const RowId id = order_.at(position);
    free_.push_back(id);
    try {
        order_.erase(position);
    } catch (...) {
        free_.pop_back();
        throw;
    }
    const ValueListItemPtr dying = std::move(items_[id]);
    dying->enter(nullptr, kNoRow);
    deleted_.raise(position);
}

GenericValue ValueList::callDelete(std::span<GenericValue> arguments) {
    remove(position(arguments[0], 0));
    return {};
}

void ValueList::clear() {
    assign({});
    cleared_.raise();
}

GenericValue ValueList::callClear(std::span<GenericValue>) {
    clear();
    return {};
}

void ValueList::move(std::size_t from, std::size_t to) {
    static_cast<void>(itemAt(from));
    static_cast<void>(itemAt(to));
    order_.move(from, to);
    moved_.raise(from, to);
}

GenericValue ValueList::callMove(std::span<GenericValue> arguments) {
    const std::size_t from = position(arguments[0], 0);
    move(from, target_argument(arguments[1], 1, from, count()));
    return {};
}

GenericValue ValueList::callIndexOf(std::span<GenericValue> arguments) {
    return indexOf(arguments[0]);
}

GenericValue ValueList::callGet(std::span<GenericValue> arguments) {
    return item(position_argument(arguments[0], 0, count()));
}

void ValueList::fillChecks(bool check) {
    for (const ValueListItemPtr& item : items_) {
        if (item)
            item->setCheck(check);
    }
    reloaded_.raise();
}

GenericValue ValueList::callFillChecks(std::span<GenericValue> arguments) {
    fillChecks(flag_argument(arguments[0], 0));
    return {};
}

namespace {

constexpr Param kDirection[] = {named_param({u"Direction", u"Направление"}, kUndefinedDefault)};
constexpr Param kChoice[] = {
    {.byDefault = ParamDefault::resourceText, .resource = "IDS_VLUI_FORM_TTL", .names = kTitlePropTerm},
    named_param({u"InitialItem", u"НачальныйЭлемент"}, kUndefinedDefault)};
constexpr Param kChecks[] = {
    {.byDefault = ParamDefault::resourceText, .resource = "IDS_VLUI_FORM_TTL_CH", .names = kTitlePropTerm}};
constexpr Param kIndexAndItem[] = {kIndexParam, named_param(kVLColumnTermValue, kUndefinedDefault),
                                   named_param(kVLColumnTermPresent, ParamDefault::emptyString),
                                   named_param(kVLColumnTermCheck, ParamDefault::falseValue),
                                   named_param(kVLColumnTermPicture, kUndefinedDefault)};
constexpr auto kItem = std::span<const Param>(kIndexAndItem).subspan(1);
constexpr Param kOfValues[] = {named_param({u"Values", u"Значения"})};
constexpr Param kMoveItem[] = {named_param(kItemName), named_param(kOffsetName)};
constexpr Param kOfCheck[] = {named_param(kVLColumnTermCheck)};

} // namespace

std::span<const Method<ValueList>> ValueList::methods() noexcept {
    using Self = ValueList;
    static constexpr Method<Self> kMethods[] = {
        {kValListTermFindValue, kOfValue, kFunction, &Self::callFindByValue},
        {kValListTermSort, kDirection, kProcedure, &Self::callSortByValue},
        {kValListTermSortByPresent, kDirection, kProcedure, &Self::callSortByPresentation},
        {kValListTermChooseValue, kChoice, kFunction, &Self::callChooseItem},
        {kValListTermCheckValues, kChecks, kFunction, &Self::callCheckItems, &kBooleanType},
        {kValListTermUnload, required(0), kFunction, &Self::callUnloadValues, &kValueArrayType},
        {kValListTermLoad, kOfValues, kProcedure, &Self::callLoadValues},
        {kValListTermCopy, required(0), kFunction, &Self::callCopy, &kValueListType},
        {kCollectTermCount, required(0), kFunction, &Self::callCount, &kNumberType},
        {kCollectTermAdd, kItem, kFunction, &Self::callAdd, &kValueListItemType},
        {kCollectTermInsert, kIndexAndItem, kFunction, &Self::callInsert, &kValueListItemType},
        {kCollectTermRemove, kOfItem, kProcedure, &Self::callDelete},
        {kCollectTermClear, required(0), kProcedure, &Self::callClear},
        {kCollectTermMove, kMoveItem, kProcedure, &Self::callMove},
        {kCollectTermIndexOf, kOfItem, kFunction, &Self::callIndexOf, &kNumberType},
        {kCollectTermGet, kOfIndex, kFunction, &Self::callGet, &kValueListItemType},
        {kValListTermFillChecks, kOfCheck, kProcedure, &Self::callFillChecks},
    };
    return kMethods;
}

} // namespace core
