// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/column_objects.h"

#include "core/tables/objects/table_parameters.h"
#include "core/tables/objects/table_parts.h"

#include <core/collections/terms.h>
#include <core/context/arguments.h>
#include <core/context/errors.h>
#include <core/descriptions/type_description.h>
#include <core/objects/locale_values.h>
#include <core/strings/trim.h>
#include <core/tables/errors.h>
#include <core/tables/terms.h>
#include <core/values/errors.h>

namespace core {
namespace {

TypeDomain domain_argument(const Value& argument, int param) {
    if (argument.isUndefined())
        return {};
    const TypeDomain* const domain = type_domain_of(argument);
    if (domain == nullptr)
        parameter_type_mismatch(param);
    return *domain;
}

std::int32_t width_argument(const Value& argument, int param) {
    if (argument.isUndefined())
        return 0;
    const auto width = argument.asNumeric();
    if (!width)
        parameter_type_mismatch(param);
    if (*width < 0 || *width > std::numeric_limits<std::int32_t>::max())
        parameter_value_mismatch(param);
    return static_cast<std::int32_t>(*width);
}

/// A text, also one in several languages; empty for Undefined.
LocalWString title_argument(const Value& argument, int param) {
    return argument.isUndefined() ? LocalWString()
                                  : from_value<LocalWString>(argument, ValueReceiver::parameter(param));
}

wstring name_argument(const Value& argument, int param) {
    const wstring_view* const name = argument.asString();
    if (name == nullptr)
        parameter_type_mismatch(param);
    return wstring(trim_all(*name));
}

} // namespace

class ValueTableColumn : public ScriptObject<ValueTableColumn, IColumnObject> {
  public:
    static constexpr ScriptClass script = {
        .names = kValueTableColumnTerm,
        .type = kValueTableColumnType,
        .object = "3a8f9c0b-e93c-411f-9bd0-62a8b22ec7f4"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_VALUETABLECOLUMN",
    };

    ValueTableColumn(TableData& data, TableColumn& column) noexcept
        : handle_(*this, data.owner(), data, column) {}

    static std::span<const Property<ValueTableColumn>> properties() noexcept;
    static std::span<const Method<ValueTableColumn>> methods() noexcept;
    const TableHandle<TableColumn>& handle() const noexcept override { return handle_; }

  private:
    [[nodiscard]] TableColumn& column() const {
        if (handle_.part() == nullptr)
            throw_error<ContextException>(messages::kUnknownColumn, {handle_.lastName()});
        return *handle_.part();
    }

    GenericValue getName() const { return Value(column().info.name); }
    void setName(const GenericValue& value) {
        handle_.data().renameColumn(column(), name_argument(value, 0));
    }
    GenericValue getValueType() const { return create_type_description(column().info.domain); }
    void setValueType(const GenericValue& value) {
        handle_.data().setDomain(column(), domain_argument(value, 0));
    }
    GenericValue getTitle() const {
        const ColumnInfo& info = column().info;
        return info.title.empty() ? GenericValue(info.name) : to_value(info.title);
    }
    void setTitle(const GenericValue& value) {
        TableColumn& changed = column();
        changed.info.title = title_argument(value, 0);
        handle_.data().tellColumnsChanged();
    }
    GenericValue getWidth() const { return column().info.width; }
    void setWidth(const GenericValue& value) {
        TableColumn& changed = column();
        changed.info.width = width_argument(value, 0);
        handle_.data().tellColumnsChanged();
    }

    GenericValue callConvert(std::span<GenericValue> arguments) {
        Losses losses;
        handle_.data().setDomain(column(), domain_argument(arguments[0], 0), &losses);
        GenericValue table = losses_table(losses);
        handle_.data().setLosses(std::move(losses));
        return table;
    }

    TableHandle<TableColumn> handle_;
};

GenericValue column_value(TableData& data, TableColumn& column) {
    if (column.handle() != nullptr)
        return Value(&column.handle()->self());
    return Value(make_object<ValueTableColumn>(data, column));
}

InterfacePtr<IValueEnum> ValueTableColumnCollection::enumerate() {
    std::vector<Value> columns;
    for (std::size_t i = 0; i < data_.columnCount(); ++i)
        columns.push_back(getColumn(i));
    return create_value_enum(std::move(columns));
}

std::int32_t ValueTableColumnCollection::idAt(std::size_t position) const {
    if (position >= data_.columnCount())
        throw_bad_index();
    return data_.column(position).id;
}

ValueColumn ValueTableColumnCollection::get(std::size_t position) const {
    const TableColumn& column = data_.column(column_with_id(data_, idAt(position)));
    return {.id = column.id,
            .name = column.info.name,
            .title = column.info.shownTitle(),
            .width = column.info.width,
            .domain = column.info.domain};
}

std::int32_t ValueTableColumnCollection::find(wstring_view name) const {
    const auto position = data_.findColumn(name);
    return position ? data_.column(*position).id : -1;
}

std::int32_t ValueTableColumnCollection::insert(std::size_t position, wstring_view name, TypeDomain domain,
                                                const LocalWString& title, std::int32_t width) {
    if (position > data_.columnCount())
        throw_bad_index();
    if (width < 0)
        parameter_value_mismatch(4);
    ColumnInfo info{.name = wstring(name), .domain = std::move(domain), .title = title, .width = width};
    const ColumnId id = data_.insertColumn(position, std::move(info)).id;
    data_.tellColumnsChanged();
    return id;
}

void ValueTableColumnCollection::rename(std::int32_t column, wstring_view name) {
    data_.renameColumn(withId(column), name);
}

void ValueTableColumnCollection::setType(std::int32_t column, TypeDomain domain, Losses* losses) {
    data_.setDomain(withId(column), std::move(domain), losses);
}

void ValueTableColumnCollection::setTitle(std::int32_t column, const LocalWString& title) {
    LocalWString changed = title;
    withId(column).info.title = std::move(changed);
    data_.tellColumnsChanged();
}

void ValueTableColumnCollection::setWidth(std::int32_t column, std::int32_t width) {
    TableColumn& changed = withId(column);
    if (width < 0)
        parameter_value_mismatch(1);
    changed.info.width = width;
    data_.tellColumnsChanged();
}

void ValueTableColumnCollection::move(std::int32_t column, std::size_t position) {
    const std::size_t from = positionOf(column);
    if (position >= data_.columnCount())
        throw_bad_index();
    data_.moveColumn(from, position);
}

/// Makes a column of a name, a type description, a title and a width.
GenericValue ValueTableColumnCollection::insertDefined(std::size_t position,
                                                       std::span<GenericValue> definition, int firstParam) {
    ColumnInfo info{.name = name_argument(definition[0], firstParam),
                    .domain = domain_argument(definition[1], firstParam + 1),
                    .title = title_argument(definition[2], firstParam + 2),
                    .width = width_argument(definition[3], firstParam + 3)};
    TableColumn& column = data_.insertColumn(position, std::move(info));
    GenericValue object;
    try {
        object = column_value(data_, column);
    } catch (...) { // no object, no column
        data_.removeColumn(position);
        throw;
    }
    data_.tellColumnsChanged();
    return object;
}

GenericValue ValueTableColumnCollection::callAdd(std::span<GenericValue> arguments) {
    return insertDefined(data_.columnCount(), arguments, 0);
}

GenericValue ValueTableColumnCollection::callInsert(std::span<GenericValue> arguments) {
    const std::size_t position =
        position_argument(arguments[0], 0, data_.columnCount(), IndexBound::insertion);
    return insertDefined(position, arguments.subspan(1), 1);
}

GenericValue ValueTableColumnCollection::callIndexOf(std::span<GenericValue> arguments) {
    if (!arguments[0].query<IColumnObject>())
        parameter_type_mismatch(0);
    return column_argument(data_, arguments[0], 0);
}

GenericValue ValueTableColumnCollection::callCount(std::span<GenericValue>) {
    return data_.columnCount();
}

GenericValue ValueTableColumnCollection::callFind(std::span<GenericValue> arguments) {
    const auto found = data_.findColumn(wstring_view(name_argument(arguments[0], 0)));
    return found ? getColumn(*found) : GenericValue();
}

GenericValue ValueTableColumnCollection::callDelete(std::span<GenericValue> arguments) {
    data_.removeColumn(column_argument(data_, arguments[0], 0));
    return {};
}

GenericValue ValueTableColumnCollection::callGet(std::span<GenericValue> arguments) {
    return getColumn(position_argument(arguments[0], 0, data_.columnCount()));
}

GenericValue ValueTableColumnCollection::callMove(std::span<GenericValue> arguments) {
    const std::size_t from = column_argument(data_, arguments[0], 0);
    data_.moveColumn(from, target_argument(arguments[1], 1, from, data_.columnCount()));
    return {};
}

GenericValue ValueTableColumnCollection::callClear(std::span<GenericValue>) {
    data_.clearColumns();
    return {};
}

namespace {

const ScriptTypeEntry<ValueTableColumn> kColumnEntry;

const ScriptTypeEntry<ValueTableColumnCollection> kColumnObjectsCollectionEntry;

constexpr Param kIndexAndDefinition[] = {
    kIndexParam, named_param(kCodePropTerm), named_param(kTypePropTerm, kUndefinedDefault),
    named_param(kTitlePropTerm, kUndefinedDefault), named_param(kWidthPropTerm, kUndefinedDefault)};
constexpr auto kDefinition = std::span<const Param>(kIndexAndDefinition).subspan(1);
constexpr Param kOfName[] = {named_param(kCodePropTerm)};
constexpr Param kMoveColumn[] = {named_param(kColumnName), named_param(kOffsetName)};

} // namespace

std::span<const Property<ValueTableColumn>> ValueTableColumn::properties() noexcept {
    using Self = ValueTableColumn;
    static constexpr Property<Self> kProperties[] = {
        {kCodePropTerm, &Self::getName, &Self::setName, &kStringType},
        {kTypePropTerm, &Self::getValueType, &Self::setValueType, &kTypeDescriptionType},
        {kTitlePropTerm, &Self::getTitle, &Self::setTitle},
        {kWidthPropTerm, &Self::getWidth, &Self::setWidth, &kNumberType},
    };
    return kProperties;
}

std::span<const Method<ValueTableColumn>> ValueTableColumn::methods() noexcept {
    static constexpr Param kOfType[] = {named_param(kTypePropTerm)};
    static constexpr Method<ValueTableColumn> kMethods[] = {
        {kConvertMethodTerm, kOfType, kFunction, &ValueTableColumn::callConvert, &kValueTableType},
    };
    return kMethods;
}

std::span<const Method<ValueTableColumnCollection>> ValueTableColumnCollection::methods() noexcept {
    using Self = ValueTableColumnCollection;
    static constexpr Method<Self> kMethods[] = {
        {kCollectTermAdd, kDefinition, kFunction, &Self::callAdd, &kValueTableColumnType},
        {kCollectTermInsert, kIndexAndDefinition, kFunction, &Self::callInsert, &kValueTableColumnType},
        {kCollectTermIndexOf, kOfColumn, kFunction, &Self::callIndexOf, &kNumberType},
        {kCollectTermCount, required(0), kFunction, &Self::callCount, &kNumberType},
        {kCollectTermFind, kOfName, kFunction, &Self::callFind},
        {kCollectTermRemove, kOfColumn, kProcedure, &Self::callDelete},
        {kCollectTermGet, kOfIndex, kFunction, &Self::callGet, &kValueTableColumnType},
        {kCollectTermMove, kMoveColumn, kProcedure, &Self::callMove},
        {kCollectTermClear, required(0), kProcedure, &Self::callClear},
    };
    return kMethods;
}

} // namespace core
