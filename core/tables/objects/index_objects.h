// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"
#include "core/tables/objects/table_object.h"

#include <core/context/iteration.h>

namespace core {

inline constexpr GUID kVTIndexType = "c2bbd476-af15-4b8a-aa97-6c8ba039c343"_guid;
inline constexpr GUID kVTIndexCollectionType = "9906b757-f6a2-46a6-884d-3a16d454f679"_guid;

/// The indexes of a table, as a part of that.
class VTIndexCollection : public TableObject<VTIndexCollection, true, &kVTIndexType>,
                          public IValueCollection {
  public:
    using Interfaces = InterfaceList<IValue, IContext_, IContextDef, IContextDefExt, IValueCollection>;

    explicit VTIndexCollection(TableData& data) noexcept : data_(data) {}

    static std::span<const Method<VTIndexCollection>> methods() noexcept;
    IType* getType() const noexcept override;
    InterfacePtr<IValueEnum> enumerate() override;

  private:
    GenericValue callAdd(std::span<GenericValue> arguments);
    GenericValue callDelete(std::span<GenericValue> arguments);
    GenericValue callClear(std::span<GenericValue> arguments);
    GenericValue callCount(std::span<GenericValue> arguments);
    GenericValue callGet(std::span<GenericValue> arguments);

    TableData& data_;
};

} // namespace core
