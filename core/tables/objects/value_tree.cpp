// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/column_objects.h"
#include "core/tables/objects/row_collection.h"
#include "core/tables/objects/row_events.h"
#include "core/tables/objects/sub_object.h"
#include "core/tables/objects/table_format.h"
#include "core/tables/objects/table_parameters.h"
#include "core/tables/objects/tree_objects.h"

#include <core/tables/value_tree.h>

namespace core {

/// The rows of a tree below one row, or the topmost ones, as a part of the row or of the tree.
class ValueTreeRowCollection : public RowCollection<ValueTreeRowCollection> {
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

  private:
    TableData& data_;
    const RowHandle* parent_;
};

class ValueTreeRow : public RowObject<ValueTreeRow> {
  public:
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

  private:
    GenericValue getRows() const {
        static_cast<void>(row()); // a deleted row has no rows
        return Value(const_cast<SubObject<ValueTreeRowCollection>*>(&rows_));
    }
    GenericValue getParent() const {
        TableData& data = handle_.data();
        const RowId parent = data.parentOf(row());
        return parent != kNoRow ? row_value(data, parent) : GenericValue();
    }

    SubObject<ValueTreeRowCollection> rows_;
};

class ValueTree : public ScriptObject<ValueTree, IPersistableObject> {
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
    static std::span<const EventEntry<ValueTree>> events() noexcept;
    Connection connectSink(int event, IEventSink* sink) override {
        data_.watch(events_);
        return ScriptObject::connectSink(event, sink);
    }
    [[nodiscard]] RowEvents<Value>& rowEvents() noexcept { return events_; }

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

GenericValue create_value_tree() {
    return make_object<ValueTree>();
}

namespace {

const ScriptClassEntry<ValueTree> kTreeEntry;

const ScriptTypeEntry<ValueTreeRow> kRowEntry;

const ScriptTypeEntry<ValueTreeRowCollection> kCollectionEntry;

} // namespace

std::span<const Method<ValueTreeRowCollection>> ValueTreeRowCollection::methods() noexcept {
    static constexpr auto kMethods = rowMethods();
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
