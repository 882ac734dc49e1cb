// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/expression_conditions.h"

#include <algorithm>

namespace core {
namespace {

/// A condition on words, which it takes straight from the cells where the step is a column.
class WordCondition : public ConditionStep {
  public:
    WordCondition(StepPtr step, ExpressionPlace place)
        : ConditionStep(kTruths, place), step_(std::move(step)) {}
    bool isSafe() const noexcept final { return true; }

  protected:
    template <class Work>
    void forEach(const RowBatch& rows, Work work) {
        if (const CellColumn* const cells = step_->cells()) {
            rows.forEach(cells->words(), work);
            return;
        }
        words_.resize(rows.size());
        static_cast<void>(step_->words(rows, words_)); // every word fits
        for (std::size_t i = 0; i < rows.size(); ++i)
            work(i, words_[i]);
    }
    Truth truth(RowId row) final {
        Truth result{};
        truths(RowBatch(row, 1), {&result, 1}, row);
        return result;
    }

  private:
    StepPtr step_;
    std::vector<std::int64_t> words_; // of the batch at hand
};

class IntervalStep final : public WordCondition {
  public:
    IntervalStep(StepPtr operand, WordInterval interval, bool negated, ExpressionPlace place)
        : WordCondition(std::move(operand), place), least_(interval.least),
          length_(static_cast<std::uint64_t>(interval.most) - static_cast<std::uint64_t>(interval.least)),
          inside_(turned(interval.isEmpty() ? Truth::no : Truth::yes, negated)),
          outside_(turned(Truth::no, negated)) {}
    void truths(const RowBatch& rows, std::span<Truth> out, RowId&) override {
        forEach(rows, [out, least = least_, length = length_, inside = inside_,
                       outside = outside_](std::size_t i, std::int64_t word) {
            const bool in = static_cast<std::uint64_t>(word) - static_cast<std::uint64_t>(least) <= length;
            out[i] = word == kEmptyWord ? Truth::unknown : in ? inside : outside;
        });
    }

  private:
    std::int64_t least_;
    std::uint64_t length_;
    Truth inside_;
    Truth outside_;
};

class ListedWordsStep final : public WordCondition {
  public:
    ListedWordsStep(StepPtr operand, std::vector<std::int64_t> words, Truth empty, bool negated,
                    ExpressionPlace place)
        : WordCondition(std::move(operand), place), words_(std::move(words)), empty_(empty),
          negated_(negated) {
        std::sort(words_.begin(), words_.end());
    }
    void truths(const RowBatch& rows, std::span<Truth> out, RowId&) override {
        forEach(rows, [&](std::size_t i, std::int64_t word) {
            const bool found = std::binary_search(words_.begin(), words_.end(), word);
            out[i] = word == kEmptyWord ? empty_ : turned(found ? Truth::yes : Truth::no, negated_);
        });
    }

  private:
    std::vector<std::int64_t> words_;
    Truth empty_;
    bool negated_;
};

class EmptyWordsStep final : public WordCondition {
  public:
    EmptyWordsStep(StepPtr operand, bool negated, ExpressionPlace place)
        : WordCondition(std::move(operand), place), negated_(negated) {}
    void truths(const RowBatch& rows, std::span<Truth> out, RowId&) override {
        forEach(rows, [&](std::size_t i, std::int64_t word) {
            out[i] = (word == kEmptyWord) != negated_ ? Truth::yes : Truth::no;
        });
    }

  private:
    bool negated_;
};

} // namespace

StepPtr interval_step(StepPtr operand, WordInterval interval, bool negated, ExpressionPlace place) {
    while (StepPtr argument = operand->argumentWithin(interval))
        operand = std::move(argument);
    return std::make_unique<IntervalStep>(std::move(operand), interval, negated, place);
}

StepPtr listed_words_step(StepPtr operand, std::vector<std::int64_t> words, Truth empty, bool negated,
                          ExpressionPlace place) {
    return std::make_unique<ListedWordsStep>(std::move(operand), std::move(words), empty, negated, place);
}

StepPtr empty_words_step(StepPtr operand, bool negated, ExpressionPlace place) {
    return std::make_unique<EmptyWordsStep>(std::move(operand), negated, place);
}

} // namespace core
