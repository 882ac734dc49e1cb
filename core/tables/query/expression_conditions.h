// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/expression_step.h"

namespace core {

[[nodiscard]] constexpr Truth turned(Truth truth, bool negated) noexcept {
    return negated ? opposite(truth) : truth;
}

/// A step that is true, false or unknown.
class ConditionStep : public ExpressionStep {
  public:
    using ExpressionStep::ExpressionStep;
    Value value(RowId row) final { return value_of(truth(row)); }
    void truths(const RowBatch& rows, std::span<Truth> out, RowId& current) override {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            current = rows[i];
            out[i] = truth(current);
        }
    }

  protected:
    static constexpr KindSet kTruths = kBooleanKind | kind_bit(ValueKind::undefined);
    [[nodiscard]] virtual Truth truth(RowId row) = 0;
};

// Conditions on a step that is of words. None of them can fail.
[[nodiscard]] StepPtr interval_step(StepPtr operand, WordInterval interval, bool negated,
                                    ExpressionPlace place);
/// One of `words`; `empty` is what a cell that is not filled answers.
[[nodiscard]] StepPtr listed_words_step(StepPtr operand, std::vector<std::int64_t> words, Truth empty,
                                        bool negated, ExpressionPlace place);
[[nodiscard]] StepPtr empty_words_step(StepPtr operand, bool negated, ExpressionPlace place);

} // namespace core
