// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/expression_errors.h"
#include "core/tables/query/expression_operations.h"
#include "core/tables/query/expression_steps.h"
#include "core/tables/query/expression_words.h"

#include <core/dates/date.h>
#include <core/numbers/errors.h>

#include <algorithm>
#include <array>
#include <limits>

namespace core {
namespace {

using Form = CellColumn::Form;
using Operator = ExpressionOperator;

std::int64_t ten_to(std::uint32_t power) noexcept {
    std::int64_t result = 1;
    for (; power != 0; --power)
        result *= 10;
    return result;
}

class LiteralStep final : public ExpressionStep {
  public:
    LiteralStep(const Value& value, ExpressionPlace place)
        : ExpressionStep(kind_bit(value.kind()), place), value_(value) {
        if (const NumericRef number = value.asNumeric()) {
            std::int64_t length = 0;
            std::int64_t scale = 0;
            number->lengthAndPrecision(length, scale);
            const auto digits =
                static_cast<std::uint32_t>(std::min<std::int64_t>(scale, Numeric::kMaxScale + 1));
            if (const auto word = digits <= Numeric::kMaxScale ? number->scaled(digits) : std::nullopt)
                setWord(*word, Form::numbers, digits);
        } else if (const Date* const date = value.asDate();
                   date != nullptr && date->ticks() <= std::numeric_limits<std::int64_t>::max()) {
            setWord(static_cast<std::int64_t>(date->ticks()), Form::dates, 0);
        }
    }
    Value value(RowId) override { return value_; }
    bool words(const RowBatch& rows, std::span<std::int64_t> out) override {
        std::fill_n(out.begin(), rows.size(), word_);
        return true;
    }
    const Value* constant() const noexcept override { return &value_; }

  private:
    void setWord(std::int64_t word, Form form, std::uint32_t scale) noexcept {
        word_ = word;
        form_ = WordForm{form, scale};
    }

    Value value_;
    std::int64_t word_ = 0;
};

class ColumnStep final : public ExpressionStep {
  public:
    ColumnStep(const CellColumn& cells, KindSet kinds, ExpressionPlace place)
        : ExpressionStep(kinds, place), cells_(cells) {
        if (cells.form() == Form::numbers || cells.form() == Form::dates)
            form_ = WordForm{cells.form(), cells.scale()};
    }
    Value value(RowId row) override { return cells_.get(row); }
    bool words(const RowBatch& rows, std::span<std::int64_t> out) override {
        rows.forEach(cells_.words(), [&](std::size_t i, std::int64_t word) { out[i] = word; });
        return true;
    }
    bool isOfWords() const noexcept override { return form_.has_value(); }
    const CellColumn* cells() const noexcept override { return &cells_; }

  private:
    const CellColumn& cells_;
};

class NegationStep final : public ExpressionStep {
  public:
    NegationStep(StepPtr operand, ExpressionPlace place)
        : ExpressionStep(operand->kinds(), place), operand_(std::move(operand)) {
        if (operand_->wordForm() && operand_->wordForm()->form == Form::numbers)
            form_ = operand_->wordForm();
    }
    Value value(RowId row) override {
        const Value value = operand_->value(row);
        if (is_empty_cell(value))
            return {};
        const NumericRef number = value.asNumeric();
        if (!number)
            fail_expression(place(), messages::kExpressionOperands,
                            {u"-", kind_name(kNumberKind), value.type().presentation()});
        return Value(-*number);
    }
    bool words(const RowBatch& rows, std::span<std::int64_t> out) override {
        if (!operand_->words(rows, out))
            return false;
        for (std::int64_t& word : out.first(rows.size()))
            word = word == kEmptyWord ? word : -word;
        return true;
    }

  private:
    StepPtr operand_;
};

/// Computes words with a check of each result; kEmptyWord stands for Undefined on both sides.
template <class Compute>
bool combine(std::span<std::int64_t> a, std::span<const std::int64_t> b, Compute compute) noexcept {
    bool fits = true;
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::int64_t result = 0;
        const bool empty = a[i] == kEmptyWord || b[i] == kEmptyWord;
        const bool bad = !compute(a[i], b[i], result) || result == kEmptyWord;
        fits = fits && (empty || !bad);
        a[i] = empty ? kEmptyWord : result;
    }
    return fits;
}

/// Brings words to a larger scale; false when one does not fit.
bool rescale(std::span<std::int64_t> words, std::uint32_t from, std::uint32_t to) noexcept {
    if (from == to)
        return true;
    const std::int64_t factor = ten_to(to - from);
    bool fits = true;
    for (std::int64_t& word : words) {
        std::int64_t scaled = 0;
        const bool empty = word == kEmptyWord;
        fits = fits && (empty || !__builtin_mul_overflow(word, factor, &scaled));
        word = empty ? word : scaled;
    }
    return fits;
}

/// The form of what an operator makes of words; nothing where it makes values alone.
std::optional<WordForm> combined_form(Operator sign, const WordForm& a, const WordForm& b) noexcept {
    constexpr std::uint32_t kTickScale = 4; // ten thousand ticks a second
    static_assert(kTicksPerSecond == 10'000);
    const bool sum = sign == Operator::add || sign == Operator::subtract;
    if (a.form == Form::dates && b.form == Form::dates)
        return sign == Operator::subtract ? std::optional(WordForm{Form::numbers, kTickScale}) : std::nullopt;
    if (a.form == Form::dates)
        return sum ? std::optional(a) : std::nullopt;
    const std::uint32_t scale = sum ? std::max(a.scale, b.scale) : a.scale + b.scale;
    const bool fits = (sum || sign == Operator::multiply) && scale <= Numeric::kMaxScale;
    return b.form == Form::numbers && fits ? std::optional(WordForm{Form::numbers, scale}) : std::nullopt;
}

/// A date some seconds later, or earlier where `sign` is -1, within the calendar.
std::int64_t moved(std::int64_t date, std::int64_t seconds, int sign) noexcept {
    constexpr auto kAll = static_cast<std::int64_t>(Date::kLimit / kTicksPerSecond + 1);
    const DateSpan span(std::clamp(seconds, -kAll, kAll) * kTicksPerSecond * sign);
    return static_cast<std::int64_t>((Date(static_cast<std::uint64_t>(date)) + span).ticks());
}

class ArithmeticStep final : public ExpressionStep {
  public:
    ArithmeticStep(Steps operands, std::span<const Operator> operators, KindSet kinds, ExpressionPlace place)
        : ExpressionStep(kinds, place), operands_(std::move(operands)),
          operators_(operators.begin(), operators.end()) {
        form_ = operands_.front()->wordForm();
        for (std::size_t i = 1; form_ && i < operands_.size(); ++i) {
            const auto& other = operands_[i]->wordForm();
            form_ = other ? combined_form(operators_[i - 1], *form_, *other) : std::nullopt;
        }
    }
    Value value(RowId row) override {
        Value result = operands_.front()->value(row);
        for (std::size_t i = 1; i < operands_.size(); ++i)
            result = arithmetic(operators_[i - 1], result, operands_[i]->value(row), place());
        return result;
    }
    bool words(const RowBatch& rows, std::span<std::int64_t> out) override {
        const auto result = out.first(rows.size());
        if (!operands_.front()->words(rows, out))
            return false;
        other_.resize(rows.size());
        WordForm form = *operands_.front()->wordForm();
        for (std::size_t i = 1; i < operands_.size(); ++i) {
            const WordForm other = *operands_[i]->wordForm();
            if (!operands_[i]->words(rows, other_) || !apply(operators_[i - 1], result, form, other))
                return false;
            form = *combined_form(operators_[i - 1], form, other);
        }
        return true;
    }

  private:
    /// Combines `result`, of a form, with the words in other_, of another one.
    bool apply(Operator sign, std::span<std::int64_t> result, const WordForm& form, const WordForm& other) {
        if (form.form == Form::dates && other.form == Form::numbers) {
            const std::int64_t second = ten_to(other.scale);
            return combine(result, other_, [=](std::int64_t date, std::int64_t seconds, std::int64_t& out) {
                out = moved(date, seconds / second, sign == Operator::add ? 1 : -1);
                return true;
            });
        }
        if (sign == Operator::multiply)
            return combine(result, other_, [](std::int64_t a, std::int64_t b, std::int64_t& out) {
                return !__builtin_mul_overflow(a, b, &out);
            });
        const std::uint32_t common = std::max(form.scale, other.scale);
        if (!rescale(result, form.scale, common) || !rescale(other_, other.scale, common))
            return false;
        if (sign == Operator::add)
            return combine(result, other_, [](std::int64_t a, std::int64_t b, std::int64_t& out) {
                return !__builtin_add_overflow(a, b, &out);
            });
        return combine(result, other_, [](std::int64_t a, std::int64_t b, std::int64_t& out) {
            return !__builtin_sub_overflow(a, b, &out);
        });
    }

    Steps operands_;
    std::vector<Operator> operators_;
    std::vector<std::int64_t> other_;
};

class CallStep final : public ExpressionStep {
  public:
    CallStep(const ExpressionFunction& function, Steps arguments, KindSet kinds, ExpressionPlace place)
        : ExpressionStep(kinds, place), function_(function), arguments_(std::move(arguments)),
          values_(arguments_.size()) {
        const auto& words = function.ofWords;
        if (const auto& form = arguments_.empty() ? form_ : arguments_.front()->wordForm();
            words.run != nullptr && form && form->form == words.argument)
            form_ = WordForm{function.result == kNumberKind ? Form::numbers : Form::dates,
                             words.keepsScale ? form->scale : 0};
    }
    Value value(RowId row) override {
        switch (function_.way) {
        case ExpressionFunction::Way::first:
            return firstFilled(row);
        case ExpressionFunction::Way::choice: {
            const Truth truth = truth_of(arguments_[0]->value(row), arguments_[0]->place());
            return arguments_[truth == Truth::yes ? 1 : 2]->value(row);
        }
        default:
            return called(row);
        }
    }
    bool words(const RowBatch& rows, std::span<std::int64_t> out) override {
        ExpressionStep& argument = *arguments_.front();
        if (!argument.words(rows, out))
            return false;
        function_.ofWords.run(out.first(rows.size()), argument.wordForm()->scale);
        return true;
    }
    bool isOfWords() const noexcept override { return form_ && arguments_.front()->isOfWords(); }
    StepPtr argumentWithin(WordInterval& interval) override {
        const auto dates = dates_where(function_, interval);
        if (!dates)
            return nullptr;
        interval = *dates;
        return std::move(arguments_.front());
    }

  private:
    Value firstFilled(RowId row) {
        for (const StepPtr& argument : arguments_) {
            if (Value value = argument->value(row); !is_empty_cell(value))
                return value;
        }
        return {};
    }
    Value called(RowId row) {
        for (std::size_t i = 0; i < values_.size(); ++i) {
            values_[i] = arguments_[i]->value(row);
            if (is_empty_cell(values_[i]))
                return {};
        }
        try {
            return function_.call(ExpressionArguments(function_, values_, place()));
        } catch (const NumericException& failure) {
            fail_expression(place(), failure);
        }
    }

    const ExpressionFunction& function_;
    Steps arguments_;
    std::vector<Value> values_;
};

class MemoStep final : public ExpressionStep {
  public:
    MemoStep(StepPtr step, const CellColumn& cells)
        : ExpressionStep(step->kinds(), step->place()), step_(std::move(step)), cells_(cells) {}

    Value value(RowId row) override {
        const std::size_t code = cells_.codes()[row];
        if (values_.empty())
            values_.resize(cells_.dictionary().size());
        auto& known = values_[code];
        if (!known)
            known = step_->value(row);
        return *known;
    }
    void truths(const RowBatch& rows, std::span<Truth> out, RowId& current) override {
        if (truths_.empty())
            truths_.resize(cells_.dictionary().size(), kUnset);
        std::uint8_t* const known = truths_.data();
        rows.forEach(cells_.codes(), [&](std::size_t i, CellColumn::Code code) {
            if (known[code] == kUnset) {
                current = rows[i];
                Truth truth{};
                step_->truths(RowBatch(std::span(&current, 1)), {&truth, 1}, current);
                known[code] = static_cast<std::uint8_t>(truth);
            }
            out[i] = static_cast<Truth>(known[code]);
        });
    }

  private:
    static constexpr std::uint8_t kUnset = 255;

    StepPtr step_;
    const CellColumn& cells_;
    std::vector<std::optional<Value>> values_; // by code
    std::vector<std::uint8_t> truths_;         // by code
};

} // namespace

StepPtr literal_step(const Value& value, ExpressionPlace place) {
    return std::make_unique<LiteralStep>(value, place);
}

StepPtr column_step(const CellColumn& cells, KindSet kinds, ExpressionPlace place) {
    return std::make_unique<ColumnStep>(cells, kinds, place);
}

StepPtr negation_step(StepPtr operand, ExpressionPlace place) {
    if (!comparable(operand->kinds(), kNumberKind))
        fail_expression(place, messages::kExpressionOperands,
                        {u"-", kind_name(kNumberKind), kind_name(operand->kinds() & ~kEmptyKinds)});
    return std::make_unique<NegationStep>(std::move(operand), place);
}

StepPtr arithmetic_step(Steps operands, std::span<const Operator> operators, ExpressionPlace place) {
    KindSet kinds = operands.front()->kinds();
    for (std::size_t i = 1; i < operands.size(); ++i) {
        const KindSet result = arithmetic_kinds(operators[i - 1], kinds, operands[i]->kinds());
        if (result == 0 || (result & ~kEmptyKinds) == 0) {
            // A constant Undefined suits everything.
            const bool empty = (kinds & ~kEmptyKinds) == 0 || (operands[i]->kinds() & ~kEmptyKinds) == 0;
            if (!empty)
                fail_expression(place, messages::kExpressionOperands,
                                {wstring(operator_text(operators[i - 1])), kind_name(kinds & ~kEmptyKinds),
                                 kind_name(operands[i]->kinds() & ~kEmptyKinds)});
        }
        kinds = result;
    }
    return std::make_unique<ArithmeticStep>(std::move(operands), operators, kinds, place);
}

StepPtr call_step(const ExpressionFunction& function, Steps arguments, ExpressionPlace place) {
    KindSet kinds = function.result;
    const std::size_t first = function.way == ExpressionFunction::Way::choice ? 1 : 0;
    for (std::size_t i = first; function.result == 0 && i < arguments.size(); ++i)
        kinds |= arguments[i]->kinds();
    if (first != 0)
        require_condition(*arguments[0]);
    return std::make_unique<CallStep>(function, std::move(arguments),
                                      static_cast<KindSet>(kinds | kind_bit(ValueKind::undefined)), place);
}

StepPtr memo_step(StepPtr step, const CellColumn& cells) {
    return std::make_unique<MemoStep>(std::move(step), cells);
}

} // namespace core
