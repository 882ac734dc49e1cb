// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/row_objects.h"

#include "core/tables/objects/table_parameters.h"
#include "core/tables/objects/tree_objects.h"

#include <core/collections/terms.h>
#include <core/tables/terms.h>
#include <core/tables/value_table.h>

namespace core {

class ValueTableRow : public RowObject<ValueTableRow> {
  public:
    static constexpr ScriptClass script = {
        .names = kValueTableRowTerm,
        .type = kValueTableRowType,
        .object = "fd415ae8-96df-4eeb-b4e6-f0b432a1f043"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_VALUETABLEROW",
    };

    ValueTableRow(TableData& data, RowId row) : RowObject(data, row) {}

    static std::span<const Method<ValueTableRow>> methods() noexcept;
};

/// Shows the rows of a walk as script objects, and keeps their table.
class RowEnum : public IValueEnum {
  public:
    using Interfaces = InterfaceList<IValueEnum>;

    RowEnum(TableData& data, RowId parent) : owner_(&data.owner()), data_(data), walk_(data, parent) {}
    bool next(GenericValue& out) override {
        const RowId row = walk_.next();
        if (row == kNoRow)
            return false;
        out = row_value(data_, row);
        return true;
    }

  private:
    InterfacePtr<IValue> owner_;
    TableData& data_;
    RowWalk walk_;
};

GenericValue row_value(TableData& data, RowId row) {
    if (RowHandle* const handle = data.handleOf(row))
        return Value(&handle->self());
    return data.isTree() ? make_tree_row(data, row) : GenericValue(make_object<ValueTableRow>(data, row));
}

InterfacePtr<IValueEnum> walk_rows(TableData& data, RowId parent) {
    return make_object<RowEnum>(data, parent);
}

namespace {

const ScriptTypeEntry<ValueTableRow> kRowObjectsEntry;

} // namespace

std::span<const Method<ValueTableRow>> ValueTableRow::methods() noexcept {
    static constexpr Method<ValueTableRow> kMethods[] = {
        {kCollectTermGet, kOfColumn, kFunction, &ValueTableRow::callGet},
        {kCollectTermSet, kOfColumnAndValue, kProcedure, &ValueTableRow::callSet},
        {kOwnerMethodTerm, required(0), kFunction, &ValueTableRow::callOwner, &kValueTableType},
    };
    return kMethods;
}

} // namespace core
