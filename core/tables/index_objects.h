// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/table_data.h"
#include "core/tables/table_object.h"

#include <core/context/iteration.h>

namespace core {

/// The indexes of a table, as a part of that.
class VTIndexCollection : public TableObject<VTIndexCollection>, public IValueCollection {
  public:
    using Interfaces = InterfaceList<IValue, IContext_, IContextDef, IValueCollection>;

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
