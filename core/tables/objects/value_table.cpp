// SPDX-License-Identifier: Apache-2.0
#include "core/collections/stored_count.h"
#include "core/tables/objects/column_objects.h"
#include "core/tables/objects/combining_methods.h"
#include "core/tables/objects/index_objects.h"
#include "core/tables/objects/row_collection.h"
#include "core/tables/objects/row_events.h"
#include "core/tables/objects/sub_object.h"
#include "core/tables/objects/table_format.h"
#include "core/tables/objects/table_parameters.h"
#include "core/tables/objects/table_parts.h"
#include "core/tables/objects/table_summaries.h"
#include "core/tables/query/group_by.h"

#include <core/collections/value_structure.h>
#include <core/context/arguments.h>
#include <core/context/errors.h>
#include <core/runtime/process.h>
#include <core/strings/integer_text.h>
#include <core/tables/chooser.h>
#include <core/tables/errors.h>
#include <core/tables/value_table.h>
#include <core/values/errors.h>

namespace core {

class ValueTable : public RowCollection<ValueTable, IValueTable, IPersistableObject>,
                   public CombiningMethods<ValueTable> {
  public:
    static constexpr ScriptClass script = {
        .names = kValueTableTerm,
        .type = kValueTableType,
        .object = kValueTableClass,
        .presentation = "IDS_TYPE_PRESENTATION_VALUETABLE",
        .arguments = {0, 0},
        .elements = &kValueTableRowType,
    };
    using Interfaces = ScriptInterfaces<IValueTable, IValueTableBaseRO, IValueCollection, IPersistableObject>;
    static constexpr bool kHierarchical = false;

    ValueTable()
        : data_(*this, false), events_(data_), columns_(*static_cast<IValue*>(this), data_),
          indexes_(*static_cast<IValue*>(this), data_) {}

    static std::span<const Property<ValueTable>> properties() noexcept;
    static std::span<const Method<ValueTable>> methods() noexcept;
    static std::span<const EventEntry<ValueTable>> events() noexcept;
    Connection connectSink(int event, IEventSink* sink) override {
        data_.watch(events_);
        return RowCollection::connectSink(event, sink);
    }
    [[nodiscard]] RowEvents<>& rowEvents() noexcept { return events_; }

    [[nodiscard]] TableData& data() noexcept { return data_; }
    [[nodiscard]] RowId parent() const noexcept { return kNoRow; }

    // IValueTableBaseRO
    std::size_t columnCount() const noexcept override { return data_.columnCount(); }
    Column column(std::size_t position) const override;
    std::int32_t findColumn(wstring_view name) const override;
    std::size_t rowCount() const noexcept override { return data_.rows().size(); }
    GenericValue get(std::size_t row, std::int32_t column) const override {
        return data_.get(rowAt(row), columnAt(column));
    }
    GenericValue row(std::size_t position) override { return row_value(data_, rowAt(position)); }
    std::vector<std::size_t> IValueTableBaseRO_findRows(std::span<const VTFindParam> filter) const override;

    // IValueTable
    std::int32_t addColumn(wstring_view name, TypeDomain domain, const LocalWString& title,
                           std::int32_t width) override;
    void setColumnType(std::int32_t column, TypeDomain domain, Losses* losses) override {
        data_.setDomain(data_.column(columnAt(column)), std::move(domain), losses);
    }
    const Losses& losses() const noexcept override { return data_.losses(); }
    void appendRow(std::span<const Value> cells) override;
    void set(std::size_t row, std::int32_t column, const Value& value) override {
        data_.set(rowAt(row), columnAt(column), value);
    }
    void removeRow(std::size_t row) override {
        static_cast<void>(rowAt(row));
        data_.removeRow(kNoRow, row);
    }
    void clear() override { data_.removeRows(kNoRow); }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override { serialize_table(storage, data_); }
    void deserialize(IInPersistenceStorage* storage) override { deserialize_table(storage, data_); }

  private:
    [[nodiscard]] RowId rowAt(std::size_t position) const {
        if (position >= data_.rows().size())
            throw_bad_index();
        return data_.rows().at(position);
    }
    [[nodiscard]] std::size_t columnAt(std::int32_t id) const {
        const auto column = data_.findColumn(ColumnId{id});
        if (!column)
            throw_error<ContextException>(messages::kUnknownColumn, {string_intto(id)});
        return *column;
    }
    [[nodiscard]] std::vector<RowId> rowsArgument(const Value& argument, int param) const;
    [[nodiscard]] GenericValue copy(std::span<const std::size_t> columns, RowRange rows) const;

    // properties and methods
    GenericValue getColumns() const {
        return Value(const_cast<SubObject<ValueTableColumnCollection>*>(&columns_));
    }
    GenericValue getIndexes() const { return Value(const_cast<SubObject<VTIndexCollection>*>(&indexes_)); }
    GenericValue getLosses() const { return losses_table(data_.losses()); }
    GenericValue getLossCount() const { return data_.losses().count(); }
    GenericValue callCopy(std::span<GenericValue> arguments);
    GenericValue callCopyColumns(std::span<GenericValue> arguments);
    GenericValue callGroupBy(std::span<GenericValue> arguments);
    GenericValue callFillValues(std::span<GenericValue> arguments);
    GenericValue callChooseRow(std::span<GenericValue> arguments);
    GenericValue callGroup(std::span<GenericValue> arguments) { return call_group(data_, arguments); }
    GenericValue callPivot(std::span<GenericValue> arguments) { return call_pivot(data_, arguments); }
    GenericValue callUnpivot(std::span<GenericValue> arguments) { return call_unpivot(data_, arguments); }
    GenericValue callAddWindow(std::span<GenericValue> arguments) {
        call_add_window(data_, arguments);
        return {};
    }

    TableData data_;
    RowEvents<> events_;
    SubObject<ValueTableColumnCollection> columns_;
    SubObject<VTIndexCollection> indexes_;
};

IValueTableBaseRO::Column ValueTable::column(std::size_t position) const {
    if (position >= data_.columnCount())
        throw_bad_index();
    const TableColumn& column = data_.column(position);
    return {.id = column.id,
            .name = column.info.name,
            .title = column.info.shownTitle(),
            .width = column.info.width,
            .domain = column.info.domain};
}

std::int32_t ValueTable::findColumn(wstring_view name) const {
    const auto position = data_.findColumn(name);
    return position ? data_.column(*position).id : -1;
}

std::vector<std::size_t> ValueTable::IValueTableBaseRO_findRows(std::span<const VTFindParam> filter) const {
    std::vector<RowCondition> conditions;
    for (const VTFindParam& param : filter)
        conditions.push_back({&data_.column(columnAt(param.column)), &param.value});
    std::vector<std::size_t> positions;
    for (const RowId row : matching_rows(data_, kNoRow, false, conditions))
        positions.push_back(data_.rows().positionOf(row));
    return positions;
}

std::int32_t ValueTable::addColumn(wstring_view name, TypeDomain domain, const LocalWString& title,
                                   std::int32_t width) {
    if (width < 0)
        parameter_value_mismatch(3);
    ColumnInfo info{.name = wstring(name), .domain = std::move(domain), .title = title, .width = width};
    const ColumnId id = data_.insertColumn(data_.columnCount(), std::move(info)).id;
    data_.tellColumnsChanged();
    return id;
}

void ValueTable::appendRow(std::span<const Value> cells) {
    if (cells.size() > data_.columnCount())
        throw_bad_index();
    data_.insertRow(kNoRow, data_.rows().size(), cells);
}

/// Returns the rows to copy: all, those of an array, or those that match a filter.
std::vector<RowId> ValueTable::rowsArgument(const Value& argument, int param) const {
    if (argument.query<IValueStructure>())
        return matching_rows(data_, kNoRow, false, filter_argument(data_, argument, param));
    if (argument.isUndefined())
        return matching_rows(data_, kNoRow, false, {});
    std::vector<RowId> rows;
    for (const Value& row : array_argument(argument, param))
        rows.push_back(row_object_argument(data_, row, param));
    return rows;
}

/// A new table with some columns of this one and the cells of some rows.
GenericValue ValueTable::copy(std::span<const std::size_t> columns, RowRange rows) const {
    std::vector<std::unique_ptr<TableColumn>> copies;
    for (const std::size_t position : columns) {
        const TableColumn& column = data_.column(position);
        const auto id = static_cast<ColumnId>(copies.size());
        copies.push_back(std::make_unique<TableColumn>(id, column.info));
        copies.back()->cells = column.cells.copy(rows);
    }
    auto table = make_object<ValueTable>();
    table->data_.assign(std::move(copies), rows.size());
    return table;
}

GenericValue ValueTable::callCopy(std::span<GenericValue> arguments) {
    const std::vector<RowId> rows = rowsArgument(arguments[0], 0);
    return copy(optional_columns_argument(data_, arguments[1], 1), RowRange(rows));
}

GenericValue ValueTable::callCopyColumns(std::span<GenericValue> arguments) {
    return copy(optional_columns_argument(data_, arguments[0], 0), RowRange(0));
}

GenericValue ValueTable::callGroupBy(std::span<GenericValue> arguments) {
    const ColumnList columns = column_list_argument(data_, arguments[0], 0, BlankList::noColumn);
    ColumnList totals;
    if (!arguments[1].isUndefined())
        totals = column_list_argument(data_, arguments[1], 1, BlankList::noColumn);
    for (const std::size_t column : totals) {
        if (std::find(columns.begin(), columns.end(), column) != columns.end())
            throw_error<ContextException>(messages::kGroupedAndTotalled, {data_.column(column).info.name});
    }
    if (columns.empty() && totals.empty())
        throw_error<ContextException>(messages::kGroupByNothing);
    group_by(data_, columns, totals);
    return {};
}

GenericValue ValueTable::callFillValues(std::span<GenericValue> arguments) {
    data_.fill(optional_columns_argument(data_, arguments[1], 1), arguments[0]);
    return {};
}

GenericValue ValueTable::callChooseRow(std::span<GenericValue> arguments) {
    const wstring title(optional_text_argument(arguments[0], 0));
    if (!arguments[1].isUndefined())
        static_cast<void>(row_object_argument(data_, arguments[1], 1));
    IChooser* const chooser = get_service<IChooser>();
    return chooser != nullptr ? chooser->chooseRow(Value(this), title, arguments[1]) : GenericValue();
}

InterfacePtr<IValueTable> create_value_table() {
    return make_object<ValueTable>();
}

InterfacePtr<IValueTable> make_value_table(std::vector<std::unique_ptr<TableColumn>> columns,
                                           std::size_t count, Losses losses) {
    auto table = make_object<ValueTable>();
    table->data().assign(std::move(columns), count);
    table->data().setLosses(std::move(losses));
    return table;
}

TableData* table_data_of(IValueTable& table) {
    const InterfacePtr<IValue> value(&table);
    ValueTable* const own = ValueTable::of(value.get());
    return own != nullptr ? &own->data() : nullptr;
}

const TableData* table_data_of(IValueTableBaseRO& table) {
    const InterfacePtr<IValueTable> changeable(&table);
    return changeable ? table_data_of(*changeable) : nullptr;
}

namespace {

const ScriptClassEntry<ValueTable> kEntry;

constexpr Param kCopy[] = {named_param(kRowCollectionTerm, kUndefinedDefault), kAnyColumnsParam};
constexpr Param kCopyColumns[] = {kAnyColumnsParam};
constexpr Param kGroupBy[] = {named_param({u"GroupColumns", u"КолонкиГруппировки"}),
                              named_param({u"TotalColumns", u"КолонкиИтогов"}, kUndefinedDefault)};
constexpr Param kAggregatesParam = named_param({u"Aggregates", u"Агрегаты"});
constexpr Param kGroup[] = {kColumnsParam, named_param({u"Aggregates", u"Агрегаты"}, kUndefinedDefault),
                            named_param({u"Totals", u"Итоги"}, ParamDefault::falseValue)};
constexpr Param kPivot[] = {named_param(kRowCollectionTerm), named_param(kColumnName), kAggregatesParam,
                            named_param({u"Limit", u"Предел"}, kUndefinedDefault)};
constexpr Param kUnpivot[] = {kColumnsParam, named_param(kCodePropTerm, kUndefinedDefault),
                              named_param(kVLColumnTermValue, kUndefinedDefault),
                              named_param({u"KeepEmpty", u"ОставлятьПустые"}, ParamDefault::falseValue)};
constexpr Param kAddWindow[] = {named_param({u"Functions", u"Функции"}),
                                named_param({u"Partition", u"Раздел"}, kUndefinedDefault),
                                named_param({u"Order", u"Порядок"}, kUndefinedDefault)};
constexpr Param kFillValues[] = {kValueParam, kAnyColumnsParam};
constexpr Param kChooseRow[] = {named_param(kTitlePropTerm, kUndefinedDefault),
                                named_param({u"InitialRow", u"НачальнаяСтрока"}, kUndefinedDefault)};

} // namespace

std::span<const Property<ValueTable>> ValueTable::properties() noexcept {
    static constexpr Property<ValueTable> kProperties[] = {
        {kColumnCollectionTerm, &ValueTable::getColumns, nullptr, &kValueTableColumnCollectionType},
        {kIndexCollectionTerm, &ValueTable::getIndexes, nullptr, &kVTIndexCollectionType},
        {kLossesTerm, &ValueTable::getLosses, nullptr, &kValueTableType},
        {kLossCountTerm, &ValueTable::getLossCount, nullptr, &kNumberType},
    };
    return kProperties;
}

std::span<const EventEntry<ValueTable>> ValueTable::events() noexcept {
    static constexpr auto kEvents = RowEvents<>::entries<ValueTable>();
    return kEvents;
}

std::span<const Method<ValueTable>> ValueTable::methods() noexcept {
    static constexpr auto kOwn = detail::joined(
        rowMethods(),
        std::to_array<Method<ValueTable>>({
            {kCopyMethodTerm, kCopy, kFunction, &ValueTable::callCopy, &kValueTableType},
            {kCopyColumnsMethodTerm, kCopyColumns, kFunction, &ValueTable::callCopyColumns, &kValueTableType},
            {kGroupByMethodTerm, kGroupBy, kProcedure, &ValueTable::callGroupBy},
            {kFillValuesMethodTerm, kFillValues, kProcedure, &ValueTable::callFillValues},
            {kSelectRowMethodTerm, kChooseRow, kFunction, &ValueTable::callChooseRow},
            {kGroupMethodTerm, kGroup, kFunction, &ValueTable::callGroup, &kValueTableType},
            {kPivotMethodTerm, kPivot, kFunction, &ValueTable::callPivot, &kValueTableType},
            {kUnpivotMethodTerm, kUnpivot, kFunction, &ValueTable::callUnpivot, &kValueTableType},
            {kAddWindowMethodTerm, kAddWindow, kProcedure, &ValueTable::callAddWindow},
        }));
    static constexpr auto kMethods = detail::joined(kOwn, combiningMethods());
    return kMethods;
}

} // namespace core
