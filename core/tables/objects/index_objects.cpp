// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/index_objects.h"

#include "core/tables/objects/column_objects.h"
#include "core/tables/objects/table_arguments.h"
#include "core/tables/objects/table_parameters.h"

#include <core/collections/terms.h>
#include <core/context/arguments.h>
#include <core/context/errors.h>
#include <core/tables/errors.h>
#include <core/tables/terms.h>
#include <core/values/errors.h>

namespace core {

/// How the library knows its own index objects among all values.
class IIndexObject : public IUnknown {
  public:
    static constexpr GUID IID = "cc924571-347d-48e2-86df-b255d40d38d5"_guid;
    [[nodiscard]] virtual const TableHandle<TableIndex>& handle() const noexcept = 0;

  protected:
    ~IIndexObject() = default;
};

/// An index to a script: the columns it is over.
class VTIndex : public ScriptObject<VTIndex, IValueCollection, IIndexObject> {
  public:
    static constexpr ScriptClass script = {
        .names = kValueTableIndexTerm,
        .type = kVTIndexType,
        .object = "a5a77518-855b-4f12-b3d4-fef7a31bc47d"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_VALUETABLEINDEX",
    };

    VTIndex(TableData& data, TableIndex& index) noexcept : handle_(*this, data.owner(), data, index) {}

    static std::span<const Method<VTIndex>> methods() noexcept;
    InterfacePtr<IValueEnum> enumerate() override {
        std::vector<Value> columns;
        for (std::size_t i = 0; i < size(); ++i)
            columns.push_back(column(i));
        return create_value_enum(std::move(columns));
    }
    const TableHandle<TableIndex>& handle() const noexcept override { return handle_; }

  private:
    /// An index that has been removed has no columns.
    [[nodiscard]] std::size_t size() const noexcept {
        return handle_.part() != nullptr ? handle_.part()->columns().size() : 0;
    }
    [[nodiscard]] GenericValue column(std::size_t i) {
        TableData& data = handle_.data();
        return column_value(data, data.column(data.positionOf(*handle_.part()->columns()[i])));
    }
    GenericValue callCount(std::span<GenericValue>) { return size(); }
    GenericValue callGet(std::span<GenericValue> arguments) {
        return column(position_argument(arguments[0], 0, size()));
    }

    TableHandle<TableIndex> handle_;
};

namespace {

GenericValue index_value(TableData& data, TableIndex& index) {
    if (index.handle() != nullptr)
        return Value(&index.handle()->self());
    return Value(make_object<VTIndex>(data, index));
}

/// Returns the position of an index that is given by its position or as an object.
std::size_t index_position(const TableData& data, const Value& argument) {
    const auto indexes = data.indexes();
    if (argument.kind() == ValueKind::number)
        return position_argument(argument, 0, indexes.size());
    const auto object = argument.query<IIndexObject>();
    if (!object)
        parameter_type_mismatch(0);
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        if (indexes[i].get() == object->handle().part())
            return i;
    }
    throw_error<ContextException>(messages::kUnknownIndex);
}

} // namespace

InterfacePtr<IValueEnum> VTIndexCollection::enumerate() {
    std::vector<Value> indexes;
    for (const auto& index : data_.indexes())
        indexes.push_back(index_value(data_, *index));
    return create_value_enum(std::move(indexes));
}

GenericValue VTIndexCollection::callAdd(std::span<GenericValue> arguments) {
    std::vector<const TableColumn*> columns;
    for (const std::size_t column : column_list_argument(data_, arguments[0], 0))
        columns.push_back(&data_.column(column));
    TableIndex& index = data_.addIndex(std::move(columns));
    try {
        return index_value(data_, index);
    } catch (...) { // no object, no index
        data_.removeIndex(data_.indexes().size() - 1);
        throw;
    }
}

GenericValue VTIndexCollection::callDelete(std::span<GenericValue> arguments) {
    data_.removeIndex(index_position(data_, arguments[0]));
    return {};
}

GenericValue VTIndexCollection::callClear(std::span<GenericValue>) {
    data_.clearIndexes();
    return {};
}

GenericValue VTIndexCollection::callCount(std::span<GenericValue>) {
    return data_.indexes().size();
}

GenericValue VTIndexCollection::callGet(std::span<GenericValue> arguments) {
    return index_value(data_, *data_.indexes()[position_argument(arguments[0], 0, data_.indexes().size())]);
}

namespace {

const ScriptTypeEntry<VTIndex> kIndexEntry;

const ScriptTypeEntry<VTIndexCollection> kIndexObjectsCollectionEntry;

} // namespace

std::span<const Method<VTIndex>> VTIndex::methods() noexcept {
    static constexpr Method<VTIndex> kMethods[] = {
        {kCollectTermCount, required(0), kFunction, &VTIndex::callCount, &kNumberType},
        {kCollectTermGet, kOfIndex, kFunction, &VTIndex::callGet},
    };
    return kMethods;
}

std::span<const Method<VTIndexCollection>> VTIndexCollection::methods() noexcept {
    using Self = VTIndexCollection;
    static constexpr Param kOfColumns[] = {kColumnsParam};
    static constexpr Method<Self> kMethods[] = {
        {kCollectTermAdd, kOfColumns, kFunction, &Self::callAdd, &kVTIndexType},
        {kCollectTermRemove, kOfIndex, kProcedure, &Self::callDelete},
        {kCollectTermClear, required(0), kProcedure, &Self::callClear},
        {kCollectTermCount, required(0), kFunction, &Self::callCount, &kNumberType},
        {kCollectTermGet, kOfIndex, kFunction, &Self::callGet, &kVTIndexType},
    };
    return kMethods;
}

} // namespace core
