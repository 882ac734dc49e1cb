// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/expression_conditions.h"
#include "core/tables/query/expression_errors.h"
#include "core/tables/query/expression_operations.h"
#include "core/tables/query/expression_steps.h"
#include "core/tables/query/word_scale.h"

#include <core/strings/like.h>

#include <algorithm>

namespace core {
namespace {

using Operator = ExpressionOperator;

class ComparisonStep final : public ConditionStep {
  public:
    ComparisonStep(Operator sign, StepPtr a, StepPtr b, ExpressionPlace place)
        : ConditionStep(kTruths, place), sign_(sign), a_(std::move(a)), b_(std::move(b)) {
        const auto& first = a_->wordForm();
        const auto& second = b_->wordForm();
        words_ = first && second && first->form == second->form;
    }
    void truths(const RowBatch& rows, std::span<Truth> out, RowId& current) override {
        if (!words_ || !compareWords(rows, out))
            ConditionStep::truths(rows, out, current);
    }

  protected:
    Truth truth(RowId row) override { return comparison(sign_, a_->value(row), b_->value(row), place()); }

  private:
    bool compareWords(const RowBatch& rows, std::span<Truth> out) {
        first_.resize(rows.size());
        second_.resize(rows.size());
        if (!a_->words(rows, first_) || !b_->words(rows, second_))
            return false;
        const std::uint32_t a = a_->wordForm()->scale;
        const std::uint32_t b = b_->wordForm()->scale;
        const WordScale scale(std::max(a, b) - std::min(a, b));
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const bool empty = first_[i] == kEmptyWord || second_[i] == kEmptyWord;
            const int order =
                a < b ? scale.order(first_[i], second_[i]) : -scale.order(second_[i], first_[i]);
            out[i] = empty ? Truth::unknown : answers(sign_, order) ? Truth::yes : Truth::no;
        }
        return true;
    }

    Operator sign_;
    StepPtr a_;
    StepPtr b_;
    bool words_;
    std::vector<std::int64_t> first_;
    std::vector<std::int64_t> second_;
};

class BetweenStep final : public ConditionStep {
  public:
    BetweenStep(Steps operands, bool negated, ExpressionPlace place)
        : ConditionStep(kTruths, place), operands_(std::move(operands)), negated_(negated) {}

  protected:
    Truth truth(RowId row) override {
        const Value value = operands_[0]->value(row);
        const Truth least = comparison(Operator::greaterEqual, value, operands_[1]->value(row), place());
        const Truth most = comparison(Operator::lessEqual, value, operands_[2]->value(row), place());
        return turned(std::min(least, most), negated_);
    }

  private:
    Steps operands_;
    bool negated_;
};

/// Constants to look for, and what a cell that is not filled answers.
struct ListedValues {
    KindSet kinds = 0;
    ValueDictionary values; // the filled ones
    explicit ListedValues(const Steps& operands) {
        for (std::size_t i = 1; i < operands.size(); ++i) {
            const Value& value = *operands[i]->constant();
            kinds |= kind_bit(value.kind());
            if (!is_empty_cell(value))
                static_cast<void>(values.add(value));
        }
    }
    [[nodiscard]] Truth ofEmpty(bool negated) const noexcept {
        if (values.size() == 1 && (kinds & kEmptyKinds) == 0)
            return turned(Truth::no, negated); // nothing is in an empty list
        return (kinds & kEmptyKinds) != 0 ? turned(Truth::yes, negated) : Truth::unknown;
    }
    /// The words of those that are of a form.
    [[nodiscard]] std::vector<std::int64_t> words(const WordForm& form) const {
        std::vector<std::int64_t> words;
        for (const Value& value : values.values().subspan(1)) {
            if (value.kind() != kind_of(form))
                continue;
            if (const WordInterval equal = word_interval(Operator::equal, value, form); !equal.isEmpty())
                words.push_back(equal.least);
        }
        return words;
    }
};

/// One of several constants, an empty one among them for cells that are not filled.
class InStep final : public ConditionStep {
  public:
    InStep(StepPtr operand, ListedValues listed, bool negated, ExpressionPlace place)
        : ConditionStep(kTruths, place), operand_(std::move(operand)), listed_(std::move(listed)),
          negated_(negated) {}

  protected:
    Truth truth(RowId row) override {
        const Value value = operand_->value(row);
        if (is_empty_cell(value))
            return listed_.ofEmpty(negated_);
        if (!comparable(kind_bit(value.kind()), listed_.kinds))
            fail_expression(place(), messages::kExpressionCompared,
                            {value.type().presentation(), kind_name(listed_.kinds & ~kEmptyKinds)});
        return turned(listed_.values.find(value) ? Truth::yes : Truth::no, negated_);
    }

  private:
    StepPtr operand_;
    ListedValues listed_;
    bool negated_;
};

/// One of several values that differ from row to row.
class AnyEqualStep final : public ConditionStep {
  public:
    AnyEqualStep(Steps operands, bool negated, ExpressionPlace place)
        : ConditionStep(kTruths, place), operands_(std::move(operands)), negated_(negated) {}

  protected:
    Truth truth(RowId row) override {
        const Value value = operands_[0]->value(row);
        Truth result = Truth::no;
        for (std::size_t i = 1; i < operands_.size() && result != Truth::yes; ++i) {
            const Value* const constant = operands_[i]->constant();
            const Truth one = constant != nullptr && is_empty_cell(*constant)
                                  ? is_empty_cell(value) ? Truth::yes : Truth::no
                                  : comparison(Operator::equal, value, operands_[i]->value(row), place());
            result = std::max(result, one);
        }
        return turned(result, negated_);
    }

  private:
    Steps operands_;
    bool negated_;
};

class LikeStep final : public ConditionStep {
  public:
    LikeStep(Steps operands, bool negated, ExpressionPlace place)
        : ConditionStep(kTruths, place), operands_(std::move(operands)), negated_(negated) {
        const bool constant = std::all_of(operands_.begin() + 1, operands_.end(), [](const StepPtr& operand) {
            return operand->constant() != nullptr && !is_empty_cell(*operand->constant());
        });
        if (constant)
            pattern_.emplace(text(*operands_[1]->constant()), escape(0));
    }

  protected:
    Truth truth(RowId row) override {
        const Value value = operands_[0]->value(row);
        if (is_empty_cell(value))
            return Truth::unknown;
        const wstring_view subject = text(value);
        if (pattern_)
            return turned(pattern_->matches(subject) ? Truth::yes : Truth::no, negated_);
        const Value pattern = operands_[1]->value(row);
        if (is_empty_cell(pattern))
            return Truth::unknown;
        return turned(compare_like(subject, text(pattern), escape(row)) ? Truth::yes : Truth::no, negated_);
    }

  private:
    [[nodiscard]] wstring_view text(const Value& value) const {
        const wstring_view* const text = value.asString();
        if (text == nullptr)
            fail_expression(place(), messages::kExpressionOperands,
                            {u"Like", value.type().presentation(), kind_name(kStringKind)});
        return *text;
    }
    [[nodiscard]] wchar escape(RowId row) {
        if (operands_.size() < 3)
            return 0;
        const Value value = operands_[2]->value(row);
        const wstring_view unit = text(value);
        if (unit.size() != 1)
            fail_expression(operands_[2]->place(), messages::kExpressionArgument,
                            {u"Escape", u"1", wstring(unit)});
        return unit.front();
    }

    Steps operands_;
    bool negated_;
    std::optional<LikePattern> pattern_;
};

class EmptyStep final : public ConditionStep {
  public:
    EmptyStep(StepPtr operand, bool negated, ExpressionPlace place)
        : ConditionStep(kBooleanKind, place), operand_(std::move(operand)), negated_(negated) {}
    bool isSafe() const noexcept override { return operand_->cells() != nullptr; }

  protected:
    Truth truth(RowId row) override {
        return is_empty_cell(operand_->value(row)) != negated_ ? Truth::yes : Truth::no;
    }

  private:
    StepPtr operand_;
    bool negated_;
};

class NotStep final : public ConditionStep {
  public:
    NotStep(StepPtr operand, ExpressionPlace place)
        : ConditionStep(kTruths, place), operand_(std::move(operand)) {}
    void truths(const RowBatch& rows, std::span<Truth> out, RowId& current) override {
        operand_->truths(rows, out, current);
        for (Truth& truth : out.first(rows.size()))
            truth = opposite(truth);
    }
    bool isSafe() const noexcept override { return operand_->isSafe(); }

  protected:
    Truth truth(RowId row) override { return opposite(truth_of(operand_->value(row), operand_->place())); }

  private:
    StepPtr operand_;
};

/// And, or Or. What cannot change the answer of a row is not computed there, so that "Q <> 0 And P / Q > 2"
/// divides by nothing.
class ChainStep final : public ConditionStep {
  public:
    ChainStep(Steps operands, bool isOr, ExpressionPlace place)
        : ConditionStep(kTruths, place), operands_(std::move(operands)), isOr_(isOr) {}
    void truths(const RowBatch& rows, std::span<Truth> out, RowId& current) override {
        operands_.front()->truths(rows, out, current);
        for (std::size_t i = 1; i < operands_.size(); ++i) {
            if (operands_[i]->isSafe())
                addAll(*operands_[i], rows, out, current);
            else
                addWhereOpen(*operands_[i], rows, out, current);
        }
    }
    bool isSafe() const noexcept override {
        return std::all_of(operands_.begin(), operands_.end(),
                           [](const StepPtr& one) { return one->isSafe(); });
    }

  protected:
    Truth truth(RowId row) override {
        Truth result = isOr_ ? Truth::no : Truth::yes;
        for (const StepPtr& operand : operands_) {
            result = combined(result, truth_of(operand->value(row), operand->place()));
            if (!isOpen(result))
                break;
        }
        return result;
    }

  private:
    [[nodiscard]] Truth combined(Truth a, Truth b) const noexcept {
        return isOr_ ? std::max(a, b) : std::min(a, b);
    }
    [[nodiscard]] bool isOpen(Truth truth) const noexcept {
        return truth != (isOr_ ? Truth::yes : Truth::no);
    }
    void addAll(ExpressionStep& step, const RowBatch& rows, std::span<Truth> out, RowId& current) {
        more_.resize(RowBatch::kMost);
        step.truths(rows, more_, current);
        for (std::size_t i = 0; i < rows.size(); ++i)
            out[i] = combined(out[i], more_[i]);
    }
    void addWhereOpen(ExpressionStep& step, const RowBatch& rows, std::span<Truth> out, RowId& current) {
        open_.resize(RowBatch::kMost);
        positions_.resize(RowBatch::kMost);
        std::size_t count = 0;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            open_[count] = rows[i];
            positions_[count] = static_cast<std::uint16_t>(i);
            count += isOpen(out[i]) ? 1 : 0;
        }
        if (count == rows.size()) {
            addAll(step, rows, out, current);
            return;
        }
        more_.resize(RowBatch::kMost);
        step.truths(RowBatch(std::span<const RowId>(open_).first(count)), more_, current);
        for (std::size_t i = 0; i < count; ++i)
            out[positions_[i]] = combined(out[positions_[i]], more_[i]);
    }

    Steps operands_;
    bool isOr_;
    // of the batch at hand; conditions may stand too deep in each other for the stack
    std::vector<Truth> more_;
    std::vector<RowId> open_;
    std::vector<std::uint16_t> positions_;
};

/// The interval of words that a comparison with a constant asks for; nothing for other operands.
std::optional<WordInterval> interval_of(Operator sign, const ExpressionStep& step,
                                        const ExpressionStep& limit) {
    const Value* const value = limit.constant();
    if (!step.isOfWords() || value == nullptr || value->kind() != kind_of(*step.wordForm()))
        return std::nullopt;
    return word_interval(sign == Operator::notEqual ? Operator::equal : sign, *value, *step.wordForm());
}

void require_comparable(const ExpressionStep& a, const ExpressionStep& b, ExpressionPlace place) {
    if (!comparable(a.kinds(), b.kinds()))
        fail_expression(place, messages::kExpressionCompared,
                        {kind_name(a.kinds() & ~kEmptyKinds), kind_name(b.kinds() & ~kEmptyKinds)});
}

bool is_empty_constant(const ExpressionStep& step) noexcept {
    return step.constant() != nullptr && is_empty_cell(*step.constant());
}

Operator mirrored(Operator sign) noexcept {
    switch (sign) {
    case Operator::less:
        return Operator::greater;
    case Operator::lessEqual:
        return Operator::greaterEqual;
    case Operator::greater:
        return Operator::less;
    case Operator::greaterEqual:
        return Operator::lessEqual;
    default:
        return sign;
    }
}

} // namespace

StepPtr comparison_step(Operator sign, StepPtr a, StepPtr b, ExpressionPlace place) {
    if (a->constant() != nullptr && b->constant() == nullptr) {
        std::swap(a, b);
        sign = mirrored(sign);
    }
    const bool equality = sign == Operator::equal || sign == Operator::notEqual;
    if (equality && is_empty_constant(*b)) // written out, Undefined is a cell that is not filled
        return empty_step(std::move(a), sign == Operator::notEqual, place);
    require_comparable(*a, *b, place);
    if (const auto interval = interval_of(sign, *a, *b))
        return interval_step(std::move(a), *interval, sign == Operator::notEqual, place);
    return std::make_unique<ComparisonStep>(sign, std::move(a), std::move(b), place);
}

StepPtr between_step(Steps operands, bool negated, ExpressionPlace place) {
    for (std::size_t i = 1; i < operands.size(); ++i)
        require_comparable(*operands[0], *operands[i], place);
    const auto least = interval_of(Operator::greaterEqual, *operands[0], *operands[1]);
    const auto most = interval_of(Operator::lessEqual, *operands[0], *operands[2]);
    if (least && most) {
        // An interval without words has its ends at the wrong sides, and so has what is cut out of it.
        WordInterval both{std::max(least->least, most->least), std::min(least->most, most->most)};
        return interval_step(std::move(operands[0]), both, negated, place);
    }
    return std::make_unique<BetweenStep>(std::move(operands), negated, place);
}

StepPtr in_step(Steps operands, bool negated, ExpressionPlace place) {
    bool constant = true;
    for (std::size_t i = 1; i < operands.size(); ++i) {
        require_comparable(*operands[0], *operands[i], place);
        constant = constant && operands[i]->constant() != nullptr;
    }
    if (constant) {
        ListedValues listed(operands);
        if (!operands[0]->isOfWords())
            return std::make_unique<InStep>(std::move(operands[0]), std::move(listed), negated, place);
        auto words = listed.words(*operands[0]->wordForm());
        return listed_words_step(std::move(operands[0]), std::move(words), listed.ofEmpty(negated), negated,
                                 place);
    }
    return std::make_unique<AnyEqualStep>(std::move(operands), negated, place);
}

StepPtr like_step(Steps operands, bool negated, ExpressionPlace place) {
    for (const StepPtr& operand : operands) {
        if (!comparable(operand->kinds(), kStringKind))
            fail_expression(place, messages::kExpressionOperands,
                            {u"Like", kind_name(operand->kinds() & ~kEmptyKinds), kind_name(kStringKind)});
    }
    return std::make_unique<LikeStep>(std::move(operands), negated, place);
}

StepPtr empty_step(StepPtr operand, bool negated, ExpressionPlace place) {
    if (operand->isOfWords())
        return empty_words_step(std::move(operand), negated, place);
    return std::make_unique<EmptyStep>(std::move(operand), negated, place);
}

StepPtr not_step(StepPtr operand, ExpressionPlace place) {
    require_condition(*operand);
    return std::make_unique<NotStep>(std::move(operand), place);
}

StepPtr chain_step(Steps operands, bool isOr, ExpressionPlace place) {
    for (const StepPtr& operand : operands)
        require_condition(*operand);
    return std::make_unique<ChainStep>(std::move(operands), isOr, place);
}

void require_condition(const ExpressionStep& step) {
    if (!comparable(step.kinds(), kBooleanKind))
        fail_expression(step.place(), messages::kExpressionNotCondition,
                        {kind_name(step.kinds() & ~kEmptyKinds)});
}

} // namespace core
