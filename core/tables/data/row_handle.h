// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/row_order.h"

#include <core/values/ivalue.h>

namespace core {

class TableData;

/// A script's object for a row: it keeps the table alive, and learns when the row is deleted or gets another
/// id. A row has one such object at a time.
class RowHandle {
  public:
    RowHandle(IValue& self, IValue& owner, TableData& data, RowId row);
    RowHandle(const RowHandle&) = delete;
    RowHandle& operator=(const RowHandle&) = delete;
    ~RowHandle();

    [[nodiscard]] IValue& self() const noexcept { return self_; }
    [[nodiscard]] const InterfacePtr<IValue>& owner() const noexcept { return owner_; }
    [[nodiscard]] TableData& data() const noexcept { return data_; }
    [[nodiscard]] bool isDeleted() const noexcept { return row_ == kNoRow; }
    /// Returns the row. Throws ContextException ("IDS_VT_UNKNOWN_ROW_ERROR") when it has been deleted.
    [[nodiscard]] RowId row() const;

  private:
    friend class TableData;

    IValue& self_;
    InterfacePtr<IValue> owner_;
    TableData& data_;
    RowId row_;
};

/// How the library knows its own row objects among all values.
class IRowObject : public IUnknown {
  public:
    static constexpr GUID IID = "1ccf73e0-a3a3-448a-ad42-69a27a9fe2dd"_guid;
    [[nodiscard]] virtual RowHandle& handle() noexcept = 0;

  protected:
    ~IRowObject() = default;
};

} // namespace core
