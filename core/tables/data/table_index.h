// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/strings/hash_index.h"
#include "core/tables/data/row_range.h"
#include "core/tables/data/table_column.h"

#include <core/runtime/locale.h>

namespace core {

/// Finds the rows whose cells in some columns have given values: a hash table from the cells of those columns
/// to the rows, linked in rings.
///
/// An index that is current is kept so by link() and unlink() around every change of a row. Where keeping it
/// would cost as much as making it again (many cells changed at once, another form of a column), or there is
/// not enough memory, it is given up instead, and built again when it is next needed; a write never fails
/// because of an index.
class TableIndex : public TablePart<TableIndex> {
  public:
    explicit TableIndex(std::vector<const TableColumn*> columns) noexcept : columns_(std::move(columns)) {}

    [[nodiscard]] std::span<const TableColumn* const> columns() const noexcept { return columns_; }
    [[nodiscard]] bool covers(const TableColumn& column) const noexcept;

    /// Says whether the index holds all rows of the table; refresh() is needed otherwise.
    [[nodiscard]] bool isCurrent() const noexcept { return current_; }
    void giveUp() noexcept;
    /// Makes it current again over all rows of the table.
    void refresh(RowRange rows);
    void link(RowId row) noexcept;
    void unlink(RowId row) noexcept;
    /// The rows whose cells match, in no particular order; the index must be current and the
    /// probes those of its columns.
    void find(std::span<const CellProbe> probes, std::vector<RowId>& rows) const;

    // ranges of the first column
    /// The rows in the order of their cells in the first column, borrowed until the next change; empty unless
    /// somebody has sorted them since the last one, for a locale that orders texts the same.
    [[nodiscard]] std::span<const RowId> sorted(const Locale& locale) const noexcept {
        return locale == locale_ ? std::span<const RowId>(sorted_) : std::span<const RowId>();
    }
    void setSorted(std::vector<RowId> rows, const Locale& locale) {
        locale_ = locale;
        sorted_ = std::move(rows);
    }
    /// Counts a question that sorted rows would answer. Returns whether there have been enough of them since
    /// the last change, so that sorting will pay.
    [[nodiscard]] bool askSorted() noexcept { return ++questions_ > kQuestions; }

  private:
    static constexpr std::uint32_t kQuestions = 8;
    struct Link {
        RowId next;
        RowId previous;
    };

    [[nodiscard]] std::uint64_t hashOf(RowId row) const noexcept;
    [[nodiscard]] RowId firstWithKeyOf(RowId row, std::uint64_t hash) const noexcept;
    void add(RowId row);
    void forgetSorted() noexcept {
        if (questions_ != 0)
            sorted_ = {};
        questions_ = 0;
    }

    std::vector<const TableColumn*> columns_;
    HashIndex index_;         // of the first row of each key
    std::vector<Link> links_; // by row: a ring of the rows of one key
    bool current_ = false;
    std::vector<RowId> sorted_;
    Locale locale_; // of the order of sorted_
    std::uint32_t questions_ = 0;
};

} // namespace core
