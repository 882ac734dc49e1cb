// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/expression_step.h"

#include <core/strings/term.h>

namespace core {

struct ExpressionFunction;

/// The arguments of a call, none of which is empty, and what refuses them.
class ExpressionArguments {
  public:
    ExpressionArguments(const ExpressionFunction& function, std::span<const Value> values,
                        ExpressionPlace place) noexcept
        : function_(function), values_(values), place_(place) {}
    [[nodiscard]] std::size_t size() const noexcept { return values_.size(); }
    [[nodiscard]] const Value& operator[](std::size_t i) const noexcept { return values_[i]; }
    [[nodiscard]] ExpressionPlace place() const noexcept { return place_; }
    [[nodiscard]] Numeric number(std::size_t i) const;
    /// A number as an integer between the ends of its type.
    [[nodiscard]] int whole(std::size_t i) const;
    [[nodiscard]] wstring_view text(std::size_t i) const;
    [[nodiscard]] Date date(std::size_t i) const;
    [[noreturn]] void refuse(std::size_t i) const;

  private:
    const ExpressionFunction& function_;
    std::span<const Value> values_;
    ExpressionPlace place_;
};

/// A function of expressions.
struct ExpressionFunction {
    static constexpr int kMany = 1000;

    /// How a call is computed.
    enum class Way : std::uint8_t {
        plain,  // from all its arguments; an empty one gives Undefined
        first,  // the first argument that is not empty
        choice, // the second argument where the first is true, else the third
    };

    /// The same function of one argument for many numbers or dates at once.
    struct OfWords {
        /// Replaces words of arguments, of a scale, by those of the results, of the scale `scaleOf()` gives;
        /// none of them can fail. Null where there is no such form.
        void (*run)(std::span<std::int64_t> words, std::uint32_t scale) noexcept = nullptr;
        CellColumn::Form argument = CellColumn::Form::dates;
        bool keepsScale = false;
        /// Says whether a later date of the calendar never has a smaller result.
        bool rises = false;
    };

    NamePair names;
    int least; ///< arguments
    int most;
    KindSet result; ///< 0 for the kinds of the arguments, the condition of a choice excepted
    Value (*call)(const ExpressionArguments& arguments) = nullptr;
    Way way = Way::plain;
    OfWords ofWords = {};
};

/// Returns the dates, as words, for which a function that rises has words in an interval; nothing where they
/// lie in more than one interval.
[[nodiscard]] std::optional<WordInterval> dates_where(const ExpressionFunction& function,
                                                      WordInterval results) noexcept;

/// Finds a function by either name; null when there is none.
[[nodiscard]] const ExpressionFunction* find_expression_function(wstring_view name) noexcept;
/// All functions, in the order in which help shows them.
[[nodiscard]] std::span<const ExpressionFunction> expression_functions() noexcept;

} // namespace core
