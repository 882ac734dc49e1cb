// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/objects/named_columns.h"
#include "core/tables/objects/table_arguments.h"

#include <core/context/script_object.h>
#include <core/tables/value_columns.h>

namespace core {

inline constexpr GUID kValueTableRowType = "986427ea-161d-4970-9f88-a0a65bc4759a"_guid;

/// Returns the script object of a row: the one that scripts hold, or a new one.
[[nodiscard]] GenericValue row_value(TableData& data, RowId row);
/// Returns a walk over the rows below a parent, or over those of the table.
[[nodiscard]] InterfacePtr<IValueEnum> walk_rows(TableData& data, RowId parent);

/// What the rows of tables and of trees have in common: the cells are properties, and a walk shows them.
/// `Row` is IValueRow or extends it.
template <class T, class Row = IValueRow>
class RowObject : public ScriptObjectOver<T, NamedColumns<T>, IValueCollection, IRowObject, Row> {
    using Base = ScriptObjectOver<T, NamedColumns<T>, IValueCollection, IRowObject, Row>;

  public:
    RowHandle& handle() noexcept override { return handle_; }

    InterfacePtr<IValueEnum> enumerate() override {
        const TableData& data = tableData();
        std::vector<Value> cells;
        for (std::size_t i = 0; i < data.columnCount(); ++i)
            cells.push_back(getColumn(i));
        return create_value_enum(std::move(cells));
    }

    // IValueRow
    bool isDeleted() const noexcept override { return handle_.isDeleted(); }
    std::size_t position() const override {
        const TableData& data = tableData();
        return data.rowsOf(data.parentOf(row())).positionOf(row());
    }
    Value get(std::int32_t column) const override {
        return tableData().get(row(), column_with_id(tableData(), column));
    }
    void set(std::int32_t column, const Value& value) override {
        setColumn(column_with_id(tableData(), column), value);
    }
    Value owner() const override {
        static_cast<void>(row()); // a deleted row has no owner
        return Value(handle_.owner());
    }

    [[nodiscard]] const TableData& tableData() const noexcept { return handle_.data(); }
    [[nodiscard]] GenericValue getColumn(std::size_t position) const {
        return tableData().get(handle_.row(), position);
    }
    void setColumn(std::size_t position, const GenericValue& value) {
        handle_.data().set(handle_.row(), position, value);
    }

    bool getPropInfo(int prop, ContextValueInfo& info) const override {
        const auto column = this->columnOf(prop);
        if (!column)
            return Base::getPropInfo(prop, info);
        info = {.types = tableData().column(*column).info.domain};
        return true;
    }

  protected:
    RowObject(TableData& data, RowId row) : handle_(*this, data.owner(), data, row) {}
    ~RowObject() = default;

    [[nodiscard]] RowId row() const { return handle_.row(); }

    GenericValue callGet(std::span<GenericValue> arguments) {
        return getColumn(column_argument(tableData(), arguments[0], 0));
    }
    GenericValue callSet(std::span<GenericValue> arguments) {
        setColumn(column_argument(tableData(), arguments[0], 0), arguments[1]);
        return {};
    }
    GenericValue callOwner(std::span<GenericValue>) { return owner(); }

    RowHandle handle_;
};

} // namespace core
