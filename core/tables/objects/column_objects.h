// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/objects/named_columns.h"
#include "core/tables/objects/table_arguments.h"

#include <core/context/script_object.h>
#include <core/tables/terms.h>
#include <core/tables/value_columns.h>

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
                              IValueCollection, IValueColumns> {
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

    // IValueColumns
    std::size_t count() const noexcept override { return data_.columnCount(); }
    ValueColumn get(std::size_t position) const override;
    std::int32_t find(wstring_view name) const override;
    std::int32_t idAt(std::size_t position) const override;
    std::size_t positionOf(std::int32_t column) const override { return column_with_id(data_, column); }
    std::int32_t insert(std::size_t position, wstring_view name, TypeDomain domain, const LocalWString& title,
                        std::int32_t width) override;
    void rename(std::int32_t column, wstring_view name) override;
    void setType(std::int32_t column, TypeDomain domain, Losses* losses) override;
    void setTitle(std::int32_t column, const LocalWString& title) override;
    void setWidth(std::int32_t column, std::int32_t width) override;
    void move(std::int32_t column, std::size_t position) override;
    void remove(std::int32_t column) override { data_.removeColumn(positionOf(column)); }
    void clear() noexcept override { data_.clearColumns(); }

    [[nodiscard]] const TableData& tableData() const noexcept { return data_; }
    [[nodiscard]] GenericValue getColumn(std::size_t position) {
        return column_value(data_, data_.column(position));
    }

  private:
    [[nodiscard]] TableColumn& withId(std::int32_t id) { return data_.column(positionOf(id)); }
    GenericValue insertDefined(std::size_t position, std::span<GenericValue> definition, int firstParam);
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
