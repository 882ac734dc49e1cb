// SPDX-License-Identifier: Apache-2.0
#include "core/collections/stored_count.h"
#include "core/tables/objects/checked_rows.h"
#include "core/tables/objects/column_objects.h"
#include "core/tables/objects/combining_methods.h"
#include "core/tables/objects/index_objects.h"
#include "core/tables/objects/row_collection.h"
#include "core/tables/objects/row_events.h"
#include "core/tables/objects/shaping_methods.h"
#include "core/tables/objects/sub_object.h"
#include "core/tables/objects/table_expressions.h"
#include "core/tables/objects/table_format.h"
#include "core/tables/objects/table_parameters.h"
#include "core/tables/objects/table_parts.h"
#include "core/tables/objects/table_summaries.h"
#include "core/tables/query/expression_parser.h"
#include "core/tables/query/group_by.h"

#include <core/collections/value_structure.h>
#include <core/context/arguments.h>
#include <core/context/errors.h>
#include <core/runtime/process.h>
#include <core/runtime/threads/thread.h>
#include <core/tables/chooser.h>
#include <core/tables/errors.h>
#include <core/tables/value_table.h>
#include <core/values/errors.h>

namespace core {

class ValueTable : public RowCollection<ValueTable, IValueTable, IPersistableObject>,
                   public CombiningMethods<ValueTable>,
                   public ShapingMethods<ValueTable> {
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
    Column column(std::size_t position) const override { return columns_.get(position); }
    std::int32_t findColumn(wstring_view name) const override { return columns_.find(name); }
    std::size_t rowCount() const noexcept override { return data_.rows().size(); }
    GenericValue get(std::size_t row, std::int32_t column) const override {
        return checked().get(row, column);
    }
    GenericValue row(std::size_t position) override { return row_value(data_, checked().at(position)); }
    std::size_t indexOf(const Value& row) const override;
    std::vector<std::size_t> IValueTableBaseRO_findRows(std::span<const VTFindParam> filter) const override;
    std::optional<std::size_t> find(const Value& value, std::span<const std::int32_t> columns) const override;
    Value total(std::int32_t column) const override { return checked().total(column, false); }
    std::vector<Value> unloadColumn(std::int32_t column) const override { return checked().unload(column); }
    InterfacePtr<IValueTable> copy(std::span<const std::int32_t> columns) const override;
    InterfacePtr<IValueTable> copyRows(std::span<const std::size_t> rows,
                                       std::span<const std::int32_t> columns) const override;
    std::size_t indexCount() const noexcept override { return data_.indexes().size(); }
    std::vector<std::int32_t> index(std::size_t position) const override;

    // IValueTable
    IValueColumns& columns() noexcept override { return columns_; }
    std::int32_t addColumn(wstring_view name, TypeDomain domain, const LocalWString& title,
                           std::int32_t width) override {
        return columns_.insert(data_.columnCount(), name, std::move(domain), title, width);
    }
    void setColumnType(std::int32_t column, TypeDomain domain, Losses* losses) override {
        columns_.setType(column, std::move(domain), losses);
    }
    const Losses& losses() const noexcept override { return data_.losses(); }
    void appendRow(std::span<const Value> cells) override { checked().insert(rowCount(), cells); }
    void insertRow(std::size_t position, std::span<const Value> cells) override {
        checked().insert(position, cells);
    }
    void set(std::size_t row, std::int32_t column, const Value& value) override {
        checked().set(row, column, value);
    }
    void moveRow(std::size_t from, std::size_t to) override { checked().move(from, to); }
    void removeRow(std::size_t row) override { checked().remove(row); }
    void clear() override { data_.removeRows(kNoRow); }
    void sort(std::span<const VTSortParam> columns, ICompareValues* comparison) override {
        checked().sort(columns, false, comparison);
    }
    void groupBy(std::span<const std::int32_t> columns, std::span<const std::int32_t> totals) override {
        collapse(checked().columns(columns), checked().columns(totals));
    }
    std::optional<std::size_t> chooseRow(const wstring& title, std::optional<std::size_t> initial) override;
    void loadColumn(std::int32_t column, std::span<const Value> values, Losses* losses) override {
        checked().load(column, values, losses);
    }
    void fill(const Value& value, std::span<const std::int32_t> columns, Losses* losses) override {
        data_.fill(checked().columnsOrAll(columns), value, losses);
    }
    void addIndex(std::span<const std::int32_t> columns) override;
    void removeIndex(std::size_t position) override {
        checkIndex(position);
        data_.removeIndex(position);
    }
    void clearIndexes() noexcept override { data_.clearIndexes(); }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override { serialize_table(storage, data_); }
    void deserialize(IInPersistenceStorage* storage) override { deserialize_table(storage, data_); }

  private:
    /// The rows by position, for the interfaces.
    [[nodiscard]] CheckedRows checked() const noexcept {
        return CheckedRows(const_cast<TableData&>(data_), kNoRow);
    }
    void checkIndex(std::size_t position) const {
        if (position >= data_.indexes().size())
            throw_bad_index();
    }
    [[nodiscard]] std::vector<RowId> rowsArgument(const Value& argument, int param) const;
    [[nodiscard]] InterfacePtr<SCOM_InternalClass<ValueTable>> copied(std::span<const std::size_t> columns,
                                                                      RowRange rows) const;
    void collapse(const ColumnList& columns, const ColumnList& totals);
    [[nodiscard]] GenericValue choose(const wstring& title, const Value& initial);

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
    GenericValue callFilter(std::span<GenericValue> arguments) {
        data_.keepRows(filtered_rows(data_, kNoRow, false, arguments[0], 0));
        return {};
    }
    GenericValue callAddColumn(std::span<GenericValue> arguments) {
        add_computed_column(data_, text_argument(arguments[0], 0), text_argument(arguments[1], 1),
                            parameters_argument(arguments[2], 2));
        return {};
    }
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

std::size_t ValueTable::indexOf(const Value& row) const {
    return data_.rows().positionOf(row_object_argument(data_, row, 0));
}

std::vector<std::size_t> ValueTable::IValueTableBaseRO_findRows(std::span<const VTFindParam> filter) const {
    std::vector<std::size_t> positions;
    for (const RowId row : checked().findRows(filter, false))
        positions.push_back(data_.rows().positionOf(row));
    return positions;
}

std::optional<std::size_t> ValueTable::find(const Value& value, std::span<const std::int32_t> columns) const {
    const RowId row = checked().find(value, columns, false);
    return row != kNoRow ? std::optional(data_.rows().positionOf(row)) : std::nullopt;
}

InterfacePtr<IValueTable> ValueTable::copy(std::span<const std::int32_t> columns) const {
    const RowList all(data_, kNoRow, false);
    return copied(checked().columnsOrAll(columns), all.range());
}

InterfacePtr<IValueTable> ValueTable::copyRows(std::span<const std::size_t> positions,
                                               std::span<const std::int32_t> columns) const {
    std::vector<RowId> chosen;
    chosen.reserve(positions.size());
    for (const std::size_t position : positions)
        chosen.push_back(checked().at(position));
    return copied(checked().columnsOrAll(columns), RowRange(chosen));
}

std::vector<std::int32_t> ValueTable::index(std::size_t position) const {
    checkIndex(position);
    std::vector<std::int32_t> ids;
    for (const TableColumn* const column : data_.indexes()[position]->columns())
        ids.push_back(column->id);
    return ids;
}

void ValueTable::addIndex(std::span<const std::int32_t> ids) {
    if (ids.empty())
        parameter_value_mismatch(0);
    std::vector<const TableColumn*> indexed;
    for (const std::size_t position : checked().columns(ids))
        indexed.push_back(&data_.column(position));
    data_.addIndex(std::move(indexed));
}

std::optional<std::size_t> ValueTable::chooseRow(const wstring& title, std::optional<std::size_t> initial) {
    const GenericValue chosen = choose(title, initial ? row(*initial) : GenericValue());
    return chosen.isUndefined() ? std::nullopt : std::optional(indexOf(chosen));
}

/// Returns the rows to copy: all, those of an array, or those that pass a filter.
std::vector<RowId> ValueTable::rowsArgument(const Value& argument, int param) const {
    if (argument.isUndefined())
        return matching_rows(data_, kNoRow, false, {});
    if (is_filter_argument(argument))
        return filtered_rows(data_, kNoRow, false, argument, param);
    std::vector<RowId> rows;
    for (const Value& row : array_argument(argument, param))
        rows.push_back(row_object_argument(data_, row, param));
    return rows;
}

/// A new table with some columns of this one and the cells of some rows.
InterfacePtr<SCOM_InternalClass<ValueTable>> ValueTable::copied(std::span<const std::size_t> columns,
                                                                RowRange rows) const {
    std::vector<std::unique_ptr<TableColumn>> copies;
    for (const std::size_t position : columns) {
        Thread::check();
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
    if (const wstring_view* const list = arguments[1].asString(); list != nullptr && has_expression(*list)) {
        const auto chosen = copied(optional_columns_argument(data_, Value(), 1), RowRange(rows));
        Operands operands(chosen->data_); // what the other rows hold is not computed
        NewColumns columns(rows.size());
        for (const TableColumn* const column : keys_argument(chosen->data_, operands, arguments[1], 1))
            columns.add(column->info, column->cells.copy(RowRange(rows.size())));
        return Value(table_of(columns.take()).query<IValue>());
    }
    return copied(optional_columns_argument(data_, arguments[1], 1), RowRange(rows));
}

GenericValue ValueTable::callCopyColumns(std::span<GenericValue> arguments) {
    return copied(optional_columns_argument(data_, arguments[0], 0), RowRange(0));
}

GenericValue ValueTable::callGroupBy(std::span<GenericValue> arguments) {
    const GroupingColumns grouping = grouping_arguments(data_, arguments);
    group_by(data_, grouping.columns, grouping.totals);
    return {};
}

void ValueTable::collapse(const ColumnList& columns, const ColumnList& totals) {
    check_grouping(data_, columns, totals);
    group_by(data_, columns, totals);
}

GenericValue ValueTable::callFillValues(std::span<GenericValue> arguments) {
    data_.fill(optional_columns_argument(data_, arguments[1], 1), arguments[0]);
    return {};
}

GenericValue ValueTable::callChooseRow(std::span<GenericValue> arguments) {
    const wstring title(optional_text_argument(arguments[0], 0));
    if (!arguments[1].isUndefined())
        static_cast<void>(row_object_argument(data_, arguments[1], 1));
    return choose(title, arguments[1]);
}

GenericValue ValueTable::choose(const wstring& title, const Value& initial) {
    IChooser* const chooser = get_service<IChooser>();
    return chooser != nullptr ? chooser->chooseRow(Value(this), title, initial) : GenericValue();
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

const ScriptClassEntry<ValueTable> kValueTableEntry;

constexpr Param kCopy[] = {named_param(kRowCollectionTerm, kUndefinedDefault), kAnyColumnsParam};
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
constexpr Param kFilter[] = {named_param(kFilterName)};
constexpr Param kAddColumn[] = {named_param(kCodePropTerm), named_param({u"Expression", u"Выражение"}),
                                named_param({u"Parameters", u"Параметры"}, kUndefinedDefault)};
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
            {kCopyColumnsMethodTerm, kOfAnyColumns, kFunction, &ValueTable::callCopyColumns,
             &kValueTableType},
            {kGroupByMethodTerm, kOfGroups, kProcedure, &ValueTable::callGroupBy},
            {kFillValuesMethodTerm, kFillValues, kProcedure, &ValueTable::callFillValues},
            {kSelectRowMethodTerm, kChooseRow, kFunction, &ValueTable::callChooseRow},
            {kGroupMethodTerm, kGroup, kFunction, &ValueTable::callGroup, &kValueTableType},
            {kPivotMethodTerm, kPivot, kFunction, &ValueTable::callPivot, &kValueTableType},
            {kUnpivotMethodTerm, kUnpivot, kFunction, &ValueTable::callUnpivot, &kValueTableType},
            {kAddWindowMethodTerm, kAddWindow, kProcedure, &ValueTable::callAddWindow},
            {kFilterMethodTerm, kFilter, kProcedure, &ValueTable::callFilter},
            {kAddColumnMethodTerm, kAddColumn, kProcedure, &ValueTable::callAddColumn},
            {kAddRowMethodTerm, kOfCells, kFunction, &ValueTable::callAddRow, script.elements},
        }));
    static constexpr auto kMethods =
        detail::joined(detail::joined(kOwn, combiningMethods()), shapingMethods());
    return kMethods;
}

} // namespace core
