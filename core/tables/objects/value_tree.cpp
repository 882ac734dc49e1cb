// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/checked_rows.h"
#include "core/tables/objects/column_objects.h"
#include "core/tables/objects/row_collection.h"
#include "core/tables/objects/row_events.h"
#include "core/tables/objects/sub_object.h"
#include "core/tables/objects/table_format.h"
#include "core/tables/objects/table_parameters.h"
#include "core/tables/objects/tree_methods.h"
#include "core/tables/objects/tree_objects.h"

#include <core/tables/value_tree.h>

namespace core {

/// The rows of a tree below one row, or the topmost ones, as a part of the row or of the tree.
class ValueTreeRowCollection : public RowCollection<ValueTreeRowCollection, IValueTreeRows> {
  public:
    static constexpr ScriptClass script = {
        .names = kValueTreeRowCollectionTerm,
        .type = "73aa5a29-af0c-4f13-9315-5f3d91cefcae"_guid,
        .object = "f41c9bd7-54c9-4d7a-b44b-5fc5e47373ff"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_VALUETREEROWS",
        .elements = &kValueTreeRowType,
    };
    static constexpr bool kHierarchical = true;

    /// `parent` is null for the topmost rows.
    ValueTreeRowCollection(TableData& data, const RowHandle* parent) noexcept
        : data_(data), parent_(parent) {}

    static std::span<const Method<ValueTreeRowCollection>> methods() noexcept;

    [[nodiscard]] TableData& data() noexcept { return data_; }
    [[nodiscard]] RowId parent() const { return parent_ != nullptr ? parent_->row() : kNoRow; }

    // IValueTreeRows
    std::size_t count() const override { return data_.rowsOf(parent()).size(); }
    InterfacePtr<IValueTreeRow> row(std::size_t position) override { return typed(checked().at(position)); }
    std::size_t indexOf(const Value& row) const override;
    Value get(std::size_t row, std::int32_t column) const override { return checked().get(row, column); }
    void set(std::size_t row, std::int32_t column, const Value& value) override {
        checked().set(row, column, value);
    }
    InterfacePtr<IValueTreeRow> add(std::span<const Value> cells) override { return insert(count(), cells); }
    InterfacePtr<IValueTreeRow> insert(std::size_t position, std::span<const Value> cells) override;
    void move(std::size_t from, std::size_t to) override { checked().move(from, to); }
    void remove(std::size_t position) override { checked().remove(position); }
    void clear() override { data_.removeRows(parent()); }
    void sort(std::span<const VTSortParam> columns, RowDepth depth, ICompareValues* comparison) override {
        checked().sort(columns, depth == RowDepth::all, comparison);
    }
    InterfacePtr<IValueTreeRow> find(const Value& value, std::span<const std::int32_t> columns,
                                     RowDepth depth) override;
    std::vector<InterfacePtr<IValueTreeRow>> findRows(std::span<const VTFindParam> filter,
                                                      RowDepth depth) override;
    Value total(std::int32_t column, RowDepth depth) const override {
        return checked().total(column, depth == RowDepth::all);
    }
    void loadColumn(std::int32_t column, std::span<const Value> values, Losses* losses) override {
        checked().load(column, values, losses);
    }
    std::vector<Value> unloadColumn(std::int32_t column) const override { return checked().unload(column); }

  private:
    /// The rows by position, for the interface.
    [[nodiscard]] CheckedRows checked() const { return CheckedRows(data_, parent()); }
    [[nodiscard]] InterfacePtr<IValueTreeRow> typed(RowId row) {
        return row_value(data_, row).query<IValueTreeRow>();
    }

    TableData& data_;
    const RowHandle* parent_;
};

std::size_t ValueTreeRowCollection::indexOf(const Value& row) const {
    if (row.kind() == ValueKind::number)
        parameter_type_mismatch(0);
    return row_argument(data_, parent(), row, 0);
}

/// The object of the row is made first, as for scripts.
InterfacePtr<IValueTreeRow> ValueTreeRowCollection::insert(std::size_t position,
                                                           std::span<const Value> cells) {
    checked().checkInsertion(position, cells);
    InterfacePtr<IValueTreeRow> row = typed(data_.nextRow());
    data_.insertRow(parent(), position, cells);
    return row;
}

InterfacePtr<IValueTreeRow>
ValueTreeRowCollection::find(const Value& value, std::span<const std::int32_t> columns, RowDepth depth) {
    const RowId row = checked().find(value, columns, depth == RowDepth::all);
    return row != kNoRow ? typed(row) : nullptr;
}

std::vector<InterfacePtr<IValueTreeRow>> ValueTreeRowCollection::findRows(std::span<const VTFindParam> filter,
                                                                          RowDepth depth) {
    std::vector<InterfacePtr<IValueTreeRow>> found;
    for (const RowId row : checked().findRows(filter, depth == RowDepth::all))
        found.push_back(typed(row));
    return found;
}

class ValueTreeRow : public RowObject<ValueTreeRow, IValueTreeRow> {
  public:
    using Interfaces = ScriptInterfaces<IValueCollection, IRowObject, IValueTreeRow, IValueRow>;
    static constexpr ScriptClass script = {
        .names = kValueTreeRowTerm,
        .type = kValueTreeRowType,
        .object = "d69a98fb-da31-45b6-baa5-600a0c9b3f6a"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_VALUETREEROW",
    };

    ValueTreeRow(TableData& data, RowId row)
        : RowObject(data, row), rows_(*static_cast<IValue*>(this), data, &handle_) {}

    static std::span<const Property<ValueTreeRow>> properties() noexcept;
    static std::span<const Method<ValueTreeRow>> methods() noexcept;

    // IValueTreeRow
    IValueTreeRows& rows() const override { return below(); }
    InterfacePtr<IValueTreeRow> parent() const override { return getParent().query<IValueTreeRow>(); }

  private:
    [[nodiscard]] SubObject<ValueTreeRowCollection>& below() const {
        static_cast<void>(row()); // a deleted row has no rows
        return const_cast<SubObject<ValueTreeRowCollection>&>(rows_);
    }
    GenericValue getRows() const { return Value(&below()); }
    GenericValue getParent() const {
        TableData& data = handle_.data();
        const RowId parent = data.parentOf(row());
        return parent != kNoRow ? row_value(data, parent) : GenericValue();
    }

    SubObject<ValueTreeRowCollection> rows_;
};

class ValueTree : public ScriptObject<ValueTree, IValueTree, IPersistableObject>,
                  public TreeMethods<ValueTree> {
  public:
    static constexpr ScriptClass script = {
        .names = kValueTreeTerm,
        .type = kValueTreeType,
        .object = kValueTreeClass,
        .presentation = "IDS_TYPE_PRESENTATION_VALUETREE",
        .arguments = {0, 0},
    };

    ValueTree()
        : data_(*this, true), events_(data_), columns_(*static_cast<IValue*>(this), data_),
          rows_(*static_cast<IValue*>(this), data_, nullptr) {}

    static std::span<const Property<ValueTree>> properties() noexcept;
    static std::span<const Method<ValueTree>> methods() noexcept;
    static std::span<const EventEntry<ValueTree>> events() noexcept;
    Connection connectSink(int event, IEventSink* sink) override {
        data_.watch(events_);
        return ScriptObject::connectSink(event, sink);
    }
    [[nodiscard]] RowEvents<Value>& rowEvents() noexcept { return events_; }
    [[nodiscard]] TableData& data() noexcept { return data_; }

    IValueColumns& columns() noexcept override { return columns_; }
    IValueTreeRows& rows() noexcept override { return rows_; }

    void serialize(IOutPersistenceStorage* storage) const override { serialize_table(storage, data_); }
    void deserialize(IInPersistenceStorage* storage) override { deserialize_table(storage, data_); }

  private:
    GenericValue getColumns() const {
        return Value(const_cast<SubObject<ValueTableColumnCollection>*>(&columns_));
    }
    GenericValue getRows() const { return Value(const_cast<SubObject<ValueTreeRowCollection>*>(&rows_)); }

    TableData data_;
    RowEvents<Value> events_;
    SubObject<ValueTableColumnCollection> columns_;
    SubObject<ValueTreeRowCollection> rows_;
};

GenericValue make_tree_row(TableData& data, RowId row) {
    return make_object<ValueTreeRow>(data, row);
}

InterfacePtr<IValueTree> create_value_tree() {
    return make_object<ValueTree>();
}

InterfacePtr<IValueTree> make_value_tree(const std::function<void(TableData&)>& fill) {
    auto tree = make_object<ValueTree>();
    fill(tree->data());
    return tree;
}

TableData* tree_data_of(IValueTree& tree) {
    const InterfacePtr<IValue> value(&tree);
    ValueTree* const own = ValueTree::of(value.get());
    return own != nullptr ? &own->data() : nullptr;
}

namespace {

const ScriptClassEntry<ValueTree> kTreeEntry;

const ScriptTypeEntry<ValueTreeRow> kRowEntry;

const ScriptTypeEntry<ValueTreeRowCollection> kValueTreeCollectionEntry;

} // namespace

std::span<const Method<ValueTreeRowCollection>> ValueTreeRowCollection::methods() noexcept {
    static constexpr auto kMethods =
        detail::joined(rowMethods(), std::to_array<Method<ValueTreeRowCollection>>(
                                         {{kAddRowMethodTerm, kOfCells, kFunction,
                                           &ValueTreeRowCollection::callAddRow, script.elements}}));
    return kMethods;
}

std::span<const Property<ValueTreeRow>> ValueTreeRow::properties() noexcept {
    static constexpr Property<ValueTreeRow> kProperties[] = {
        {kRowCollectionTerm, &ValueTreeRow::getRows, nullptr, &ValueTreeRowCollection::script.type},
        {kParentPropTerm, &ValueTreeRow::getParent},
    };
    return kProperties;
}

std::span<const Method<ValueTreeRow>> ValueTreeRow::methods() noexcept {
    static constexpr Method<ValueTreeRow> kMethods[] = {
        {kCollectTermGet, kOfColumn, kFunction, &ValueTreeRow::callGet},
        {kCollectTermSet, kOfColumnAndValue, kProcedure, &ValueTreeRow::callSet},
        {kOwnerMethodTerm, required(0), kFunction, &ValueTreeRow::callOwner, &kValueTreeType},
    };
    return kMethods;
}

std::span<const Method<ValueTree>> ValueTree::methods() noexcept {
    static constexpr auto kMethods = treeMethods();
    return kMethods;
}

std::span<const EventEntry<ValueTree>> ValueTree::events() noexcept {
    static constexpr auto kEvents = RowEvents<Value>::entries<ValueTree>();
    return kEvents;
}

std::span<const Property<ValueTree>> ValueTree::properties() noexcept {
    static constexpr Property<ValueTree> kProperties[] = {
        {kColumnCollectionTerm, &ValueTree::getColumns, nullptr, &kValueTableColumnCollectionType},
        {kRowCollectionTerm, &ValueTree::getRows, nullptr, &ValueTreeRowCollection::script.type},
    };
    return kProperties;
}

} // namespace core
