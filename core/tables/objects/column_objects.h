// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/objects/named_columns.h"

#include <core/context/script_object.h>
#include <core/tables/terms.h>

namespace core {

/// How the library knows its own column objects among all values.
class IColumnObject : public IUnknown {
  public:
    static constexpr GUID IID = "dede5bfa-7ddd-49e7-bab9-39d4a89b084a"_guid;
    [[nodiscard]] virtual const TableHandle<TableColumn>& handle() const noexcept = 0;

  protected:
    ~IColumnObject() = default;
};

inline constexpr GUID kValueTableColumnType = "f478813e-4087-4794-9832-ae7ae3aa98df"_guid;
inline constexpr GUID kValueTableColumnCollectionType = "15e85ff8-27a9-4965-a502-6cd6294f8f84"_guid;

/// Returns the script object of a column: the one that scripts hold, or a new one.
[[nodiscard]] GenericValue column_value(TableData& data, TableColumn& column);

/// The columns of a table or a tree, as a part of that.
class ValueTableColumnCollection
    : public ScriptObjectOver<ValueTableColumnCollection, NamedColumns<ValueTableColumnCollection>,
                              IValueCollection> {
  public:
    static constexpr ScriptClass script = {
        .names = kValueTableColumnCollectionTerm,
        .type = kValueTableColumnCollectionType,
        .object = "9d5f68b2-c62f-4646-a169-48e237c17272"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_VALUETABLECOLUMNS",
        .elements = &kValueTableColumnType,
    };

    explicit ValueTableColumnCollection(TableData& data) noexcept : data_(data) {}

    static std::span<const Method<ValueTableColumnCollection>> methods() noexcept;
    InterfacePtr<IValueEnum> enumerate() override;

    [[nodiscard]] const TableData& tableData() const noexcept { return data_; }
    [[nodiscard]] GenericValue getColumn(std::size_t position) {
        return column_value(data_, data_.column(position));
    }

  private:
    GenericValue insert(std::size_t position, std::span<GenericValue> definition, int firstParam);
    GenericValue callAdd(std::span<GenericValue> arguments);
    GenericValue callInsert(std::span<GenericValue> arguments);
    GenericValue callIndexOf(std::span<GenericValue> arguments);
    GenericValue callCount(std::span<GenericValue> arguments);
    GenericValue callFind(std::span<GenericValue> arguments);
    GenericValue callDelete(std::span<GenericValue> arguments);
    GenericValue callGet(std::span<GenericValue> arguments);
    GenericValue callMove(std::span<GenericValue> arguments);
    GenericValue callClear(std::span<GenericValue> arguments);

    TableData& data_;
};

} // namespace core
