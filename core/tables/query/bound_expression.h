// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"
#include "core/tables/query/expression_step.h"

namespace core {

/// What the cells of a column may be, by its description and its form.
[[nodiscard]] KindSet column_kinds(const TableColumn& column);

/// An expression whose columns are found, ready to be computed for the rows of its table. Valid until the
/// table changes. Threads: one at a time.
///
/// Rows are computed by batches. Numbers and dates are words as long as all results fit; what depends on one
/// column of codes is computed once for each of its values.
class BoundExpression {
  public:
    /// Throws ExpressionException: for a column or a function that is not there, for values that can never go
    /// together.
    BoundExpression(const TableData& data, const ExpressionNode& expression);

    /// What the values may be.
    [[nodiscard]] KindSet kinds() const noexcept { return step_->kinds(); }
    /// Returns those of some rows for which the expression is true, in their order. Throws
    /// ExpressionException with the position of the row in which something failed.
    [[nodiscard]] std::vector<RowId> rowsWhere(RowRange rows);
    /// Returns the values for some rows: the cells of a column, by position in `rows`. Throws as rowsWhere()
    /// does.
    [[nodiscard]] CellColumn values(RowRange rows);

  private:
    template <class Work>
    void run(Work work);
    [[nodiscard]] bool takeWords(RowRange rows, CellColumn& out);

    const TableData& data_;
    StepPtr step_;
    RowId current_ = kNoRow; // the row that is being computed, for failures
};

/// Returns the rows below a parent for which a condition is true, in their order; with those below them if
/// `subordinates` says so. Looks into the indexes of the table where they answer a part of the condition.
[[nodiscard]] std::vector<RowId> rows_where(const TableData& data, RowId parent, bool subordinates,
                                            const ExpressionNode& condition);

/// Returns the narrowest description of the cells of a column. One without any value admits every value.
[[nodiscard]] TypeDomain domain_of_cells(const CellColumn& cells);

/// Returns the values of an expression for all rows of a table, by row id. Rows that are not there hold
/// Undefined.
[[nodiscard]] CellColumn computed_cells(const TableData& data, const ExpressionNode& expression);

} // namespace core
