// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/cell_column.h"
#include "core/tables/query/expression_node.h"

#include <memory>
#include <optional>
#include <span>

namespace core {

/// The word of an empty cell.
inline constexpr std::int64_t kEmptyWord = CellColumn::kEmptyWord;

/// A set of kinds of values.
using KindSet = std::uint8_t;
[[nodiscard]] constexpr KindSet kind_bit(ValueKind kind) noexcept {
    return static_cast<KindSet>(1U << static_cast<unsigned>(kind));
}
/// A cell that is not filled. Whatever is computed from it is Undefined, too.
inline constexpr KindSet kEmptyKinds = kind_bit(ValueKind::undefined) | kind_bit(ValueKind::null);
inline constexpr KindSet kNumberKind = kind_bit(ValueKind::number);
inline constexpr KindSet kStringKind = kind_bit(ValueKind::string);
inline constexpr KindSet kDateKind = kind_bit(ValueKind::date);
inline constexpr KindSet kBooleanKind = kind_bit(ValueKind::boolean);
inline constexpr KindSet kObjectKind = kind_bit(ValueKind::object);
inline constexpr KindSet kAnyKinds = 0xFF;

[[nodiscard]] inline bool is_empty_cell(const Value& value) noexcept {
    return value.isUndefined() || value.kind() == ValueKind::null;
}

/// How true a condition is in a row. And is the least of its operands, Or the most.
enum class Truth : std::uint8_t { no, unknown, yes };
[[nodiscard]] constexpr Truth opposite(Truth truth) noexcept {
    return static_cast<Truth>(2 - static_cast<int>(truth));
}

/// Rows that are computed in one go: neighbours, or those of a list, which is borrowed.
class RowBatch {
  public:
    static constexpr std::size_t kMost = 1024;

    RowBatch(RowId first, std::size_t count) noexcept : first_(first), count_(count) {}
    explicit RowBatch(std::span<const RowId> rows) noexcept : rows_(rows.data()), count_(rows.size()) {}
    [[nodiscard]] std::size_t size() const noexcept { return count_; }
    [[nodiscard]] RowId operator[](std::size_t i) const noexcept {
        return rows_ != nullptr ? rows_[i] : first_ + static_cast<RowId>(i);
    }
    /// Calls `work(i, cell)` for the cells of the rows.
    template <class Cell, class Work>
    void forEach(std::span<const Cell> cells, Work work) const {
        if (rows_ == nullptr) {
            const Cell* const begin = cells.data() + first_;
            for (std::size_t i = 0; i < count_; ++i)
                work(i, begin[i]);
        } else {
            for (std::size_t i = 0; i < count_; ++i)
                work(i, cells[rows_[i]]);
        }
    }

  private:
    RowId first_ = 0;
    const RowId* rows_ = nullptr;
    std::size_t count_;
};

/// Numbers or dates as words, in the form of a column.
struct WordForm {
    CellColumn::Form form = CellColumn::Form::numbers;
    std::uint32_t scale = 0;
};
[[nodiscard]] constexpr ValueKind kind_of(const WordForm& form) noexcept {
    return form.form == CellColumn::Form::numbers ? ValueKind::number : ValueKind::date;
}

/// Words from one to another one.
struct WordInterval {
    std::int64_t least = 0;
    std::int64_t most = -1; ///< below `least` where the interval holds no word
    [[nodiscard]] bool isEmpty() const noexcept { return most < least; }
};

/// A part of an expression that knows its columns: gives a value for a row, and for many rows at once what
/// can be had faster so. Steps keep what they find out, so one thread at a time uses them.
class ExpressionStep {
  public:
    /// `kinds` are those that value() may return, `place` is where failures stand.
    ExpressionStep(KindSet kinds, ExpressionPlace place) noexcept : kinds_(kinds), place_(place) {}
    ExpressionStep(const ExpressionStep&) = delete;
    ExpressionStep& operator=(const ExpressionStep&) = delete;
    virtual ~ExpressionStep() = default;

    [[nodiscard]] virtual Value value(RowId row) = 0;
    /// Sets the truth for each row of a batch. `current` is set to each row before anything can throw there.
    virtual void truths(const RowBatch& rows, std::span<Truth> out, RowId& current);
    /// Sets the words for each row of a batch; the step has a form of words. Returns false when one does not
    /// fit: the values are then to be asked for.
    virtual bool words(const RowBatch& /*rows*/, std::span<std::int64_t> /*out*/) { return false; }
    /// Says whether words() gives them for each row there can be.
    [[nodiscard]] virtual bool isOfWords() const noexcept { return false; }
    /// Gives the argument away whose words lie in an interval exactly where those of this step, which is of
    /// words, lie in the given one, and replaces the interval. Null for a step that keeps its argument.
    [[nodiscard]] virtual std::unique_ptr<ExpressionStep> argumentWithin(WordInterval& /*interval*/) {
        return nullptr;
    }
    /// Says whether truths() cannot throw, so that it may as well look at rows that do not matter.
    [[nodiscard]] virtual bool isSafe() const noexcept { return false; }

    /// What value() may return.
    [[nodiscard]] KindSet kinds() const noexcept { return kinds_; }
    /// What words() gives; nothing where it gives none.
    [[nodiscard]] const std::optional<WordForm>& wordForm() const noexcept { return form_; }
    /// The value of a constant, else null.
    [[nodiscard]] virtual const Value* constant() const noexcept { return nullptr; }
    /// The cells of a column, else null.
    [[nodiscard]] virtual const CellColumn* cells() const noexcept { return nullptr; }

    [[nodiscard]] ExpressionPlace place() const noexcept { return place_; }

  protected:
    std::optional<WordForm> form_;

  private:
    KindSet kinds_;
    ExpressionPlace place_;
};

using StepPtr = std::unique_ptr<ExpressionStep>;
using Steps = std::vector<StepPtr>;

/// What a value says as a condition. Throws ExpressionException for one that is neither true nor false.
[[nodiscard]] Truth truth_of(const Value& value, ExpressionPlace place);
[[nodiscard]] Value value_of(Truth truth) noexcept;
/// The name of a kind of values, or of the first of several, for a message.
[[nodiscard]] wstring kind_name(KindSet kinds);

} // namespace core
