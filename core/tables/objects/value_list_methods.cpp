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

GenericValue ValueList::callFindByValue(std::span<GenericValue> arguments) {
    GenericValue found;
    order_.walk([&](RowId id) {
        if (!items_[id]->content().value.equals(arguments[0]))
            return true;
        found = GenericValue(items_[id]);
        return false;
    });
    return found;
}

GenericValue ValueList::callSortByValue(std::span<GenericValue> arguments) {
    sort(arguments[0], [](const Item& item) { return item.value; });
    return {};
}

GenericValue ValueList::callSortByPresentation(std::span<GenericValue> arguments) {
    sort(arguments[0], [](const Item& item) { return Value(item.presentation.text()); });
    return {};
}

GenericValue ValueList::callChooseItem(std::span<GenericValue> arguments) {
    const wstring title(text_argument(arguments[0], 0));
    if (!arguments[1].isUndefined())
        static_cast<void>(positionOfItem(arguments[1], 1));
    IChooser* const chooser = get_service<IChooser>();
    return chooser != nullptr ? chooser->chooseItem(Value(this), title, arguments[1]) : GenericValue();
}

GenericValue ValueList::callCheckItems(std::span<GenericValue> arguments) {
    const wstring title(text_argument(arguments[0], 0));
    IChooser* const chooser = get_service<IChooser>();
    return chooser != nullptr && chooser->checkItems(Value(this), title);
}

GenericValue ValueList::callUnloadValues(std::span<GenericValue>) {
    std::vector<Value> values;
    values.reserve(count());
    for (const ValueListItemPtr& item : inOrder())
        values.push_back(item->content().value);
    return Value(create_value_array(std::move(values)).query<IValue>());
}

GenericValue ValueList::callLoadValues(std::span<GenericValue> arguments) {
    const auto array = object_argument<IValueSequence>(arguments[0], 0);
    Items items;
    items.reserve(array->count());
    for (const Value& value : array->values())
        items.push_back(
            make_object<ValueListItem>(Item{.value = adjusted(value), .presentation = {}, .picture = {}}));
    assign(std::move(items));
    reloaded_.raise();
    return {};
}

GenericValue ValueList::callCopy(std::span<GenericValue>) {
    auto copy = make_object<ValueList>();
    copy->domain_ = domain_;
    Items items;
    items.reserve(count());
    for (const ValueListItemPtr& item : inOrder())
        items.push_back(make_object<ValueListItem>(item->content()));
    copy->assign(std::move(items));
    return copy;
}

GenericValue ValueList::callCount(std::span<GenericValue>) {
    return count();
}

GenericValue ValueList::callAdd(std::span<GenericValue> arguments) {
    return insert(count(), arguments, 0);
}

GenericValue ValueList::callInsert(std::span<GenericValue> arguments) {
    const std::size_t position = position_argument(arguments[0], 0, count(), IndexBound::insertion);
    return insert(position, arguments.subspan(1), 1);
}

GenericValue ValueList::callDelete(std::span<GenericValue> arguments) {
    const std::size_t at = position(arguments[0], 0);
    const RowId id = order_.at(at);
    free_.push_back(id);
    try {
        order_.erase(at);
    } catch (...) {
        free_.pop_back();
        throw;
    }
    const ValueListItemPtr dying = std::move(items_[id]);
    dying->enter(nullptr, kNoRow);
    deleted_.raise(at);
    return {};
}

GenericValue ValueList::callClear(std::span<GenericValue>) {
    assign({});
    cleared_.raise();
    return {};
}

GenericValue ValueList::callMove(std::span<GenericValue> arguments) {
    const std::size_t from = position(arguments[0], 0);
    const std::size_t to = target_argument(arguments[1], 1, from, count());
    order_.move(from, to);
    moved_.raise(from, to);
    return {};
}

GenericValue ValueList::callIndexOf(std::span<GenericValue> arguments) {
    return positionOfItem(arguments[0], 0);
}

GenericValue ValueList::callGet(std::span<GenericValue> arguments) {
    return item(position_argument(arguments[0], 0, count()));
}

GenericValue ValueList::callFillChecks(std::span<GenericValue> arguments) {
    const bool check = flag_argument(arguments[0], 0);
    for (const ValueListItemPtr& item : items_) {
        if (item)
            item->setCheck(check);
    }
    reloaded_.raise();
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
