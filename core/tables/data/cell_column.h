// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/strings/table_hash.h"
#include "core/tables/data/row_range.h"
#include "core/tables/data/value_dictionary.h"

#include <core/numbers/numeric.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <span>

namespace core {

/// A value as the cells of one column keep theirs: what a search compares with. Borrows the value.
struct CellProbe {
    bool possible = false; ///< whether any cell can equal it
    std::int64_t word = 0; ///< in columns of plain cells
    const Value* value = nullptr;
};

/// The cells of one column, by row id, in the plainest form that holds them all. A column begins in the form
/// `coded` and changes its form when a value is written that the form cannot hold: a column of prices costs
/// eight bytes a row, one of a thousand names four. Reading makes a value of a cell.
///
///  1. numbers: words_[row] × 10^-scale(). dates: words_[row] ticks. In both, kEmptyWord is Undefined.
///  2. coded: codes_[row] is the value's code in the dictionary; 0 is Undefined. Holds what stands for
///     itself: strings, Booleans, types, Null. Given up when the dictionary saves nothing.
///  3. values: values_[row], anything.
///  4. Only the store of the form has elements.
class CellColumn {
  public:
    enum class Form : std::uint8_t { coded, numbers, dates, values };
    using Code = ValueDictionary::Code;
    static constexpr std::int64_t kEmptyWord = std::numeric_limits<std::int64_t>::min();

    CellColumn() : dictionary_(std::make_unique<ValueDictionary>()) {}

    // inspect
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] Form form() const noexcept { return form_; }
    [[nodiscard]] std::uint32_t scale() const noexcept { return scale_; }
    [[nodiscard]] const ValueDictionary& dictionary() const noexcept { return *dictionary_; }
    [[nodiscard]] Value get(RowId row) const;
    /// The cells in their form; empty in any other.
    [[nodiscard]] std::span<const std::int64_t> words() const noexcept { return words_; }
    [[nodiscard]] std::span<const Code> codes() const noexcept { return codes_; }
    [[nodiscard]] std::span<const Value> values() const noexcept { return values_; }
    /// Calls `work` with those of the form it has.
    template <class Work>
    decltype(auto) visit(Work work) const {
        switch (form_) {
        case Form::coded:
            return work(codes());
        case Form::values:
            return work(values());
        default:
            return work(words());
        }
    }

    // search
    [[nodiscard]] CellProbe probe(const Value& value) const noexcept;
    [[nodiscard]] bool matches(RowId row, const CellProbe& probe) const noexcept;
    [[nodiscard]] bool equal(RowId a, RowId b) const noexcept;
    /// Equal for equal cells of this column, as long as its form stays.
    [[nodiscard]] std::uint64_t hash(RowId row) const noexcept;
    [[nodiscard]] std::uint64_t hash(const CellProbe& probe) const noexcept;

    // modify: an operation that throws leaves all values as they were
    /// Makes cells for the rows below `size`; new ones are Undefined.
    void grow(std::size_t size);
    /// Puts a value into a cell. `value` receives what the cell held, where that could be an
    /// object: for the caller to let go of when nothing is left half done. True when the form has
    /// changed, and hashes with it.
    bool exchange(RowId row, Value& value);
    /// Does the same for the first rows of an order, as many as there are values; each receives what its cell
    /// held.
    void exchange(const RowOrder& rows, std::span<Value> values);
    /// Puts a value into a cell that holds Undefined. True when the form has changed.
    bool put(RowId row, const Value& value);
    /// As many cells as rows, filled with one value.
    void fill(std::size_t size, const Value& value);
    /// The cells of the rows, in their order, as a column of its own.
    [[nodiscard]] CellColumn copy(RowRange rows) const;
    /// The same, leaving this column without cells, for rows none of which comes twice: `room` is what
    /// makeRoom() of this column gave for as many rows, so nothing can fail.
    void take(std::span<const RowId> rows, CellColumn&& room) noexcept;
    [[nodiscard]] CellColumn makeRoom(std::size_t size) const;

  private:
    CellColumn(Form form, std::uint32_t scale, std::unique_ptr<ValueDictionary> dictionary) noexcept
        : form_(form), scale_(static_cast<std::uint8_t>(scale)), dictionary_(std::move(dictionary)) {}
    /// Calls `work` with the vector of the form.
    template <class Work>
    decltype(auto) visitStore(Work work) {
        switch (form_) {
        case Form::coded:
            return work(codes_);
        case Form::values:
            return work(values_);
        default:
            return work(words_);
        }
    }
    [[nodiscard]] std::optional<std::int64_t> wordOf(const Value& value) const noexcept;
    bool putWord(RowId row, const Value& value);
    bool putCode(RowId row, const Value& value);
    bool putInForm(Form form, std::uint32_t scale, RowId row, const Value& value);
    [[nodiscard]] bool rescale(std::uint32_t scale);
    void toValues();

    Form form_ = Form::coded;
    std::uint8_t scale_ = 0;
    std::size_t size_ = 0;
    std::vector<std::int64_t> words_;
    std::vector<Code> codes_;
    std::vector<Value> values_;
    std::unique_ptr<ValueDictionary> dictionary_; // null in every form but coded
};

} // namespace core
