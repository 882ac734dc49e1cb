// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/cell_column.h"
#include "core/tables/data/table_handle.h"

#include <core/locales/local_wstring.h>
#include <core/types/type_domain.h>

namespace core {

using ColumnId = std::int32_t;

/// What a column is, without its cells.
struct ColumnInfo {
    wstring name;
    TypeDomain domain{};
    LocalWString title{}; ///< empty for the name
    std::int32_t width = 0;

    /// Returns the title, and the name for the languages that have none.
    [[nodiscard]] LocalWString shownTitle() const {
        LocalWString shown = title;
        if (shown.find(Locale()) == nullptr)
            shown.set(Locale(), name);
        return shown;
    }
};

/// A column with its cells. It stays at its address as long as it is in the table.
struct TableColumn : TablePart<TableColumn> {
    TableColumn(ColumnId columnId, ColumnInfo columnInfo)
        : id(columnId), info(std::move(columnInfo)), defaultValue(info.domain.defaultValue()) {}
    ~TableColumn() {
        if (handle() != nullptr)
            handle()->setLastName(std::move(info.name));
    }

    ColumnId id;
    ColumnInfo info;
    Value defaultValue; ///< of new cells
    CellColumn cells;
};

} // namespace core
