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

/// A value in the form that the cells of one column have: what a search compares with them. The value is
/// borrowed.
struct CellProbe {
    bool possible = false; ///< whether a cell can equal it
    std::int64_t word = 0; ///< in columns of words or codes
    const Value* value = nullptr;
};

/// The cells of one column, by row id, in the plainest form that holds them all. A column begins in the form
/// `coded` and changes its form when a value is written that the form cannot hold. A column of prices costs
/// eight bytes a row, one of a thousand names four. Reading a cell makes a value of it.
///
///  1. numbers: a cell is words_[row] × 10^-scale(). dates: it is words_[row] ticks. In both, kEmptyWord is
///     Undefined.
///  2. coded: codes_[row] is the value's code in the dictionary, and 0 is Undefined. The form holds strings,
///     Booleans, types and Null. It is given up when the dictionary saves nothing.
///  3. values: values_[row] holds anything.
///  4. Only the vector of the form has elements.
class CellColumn {
  public:
    enum class Form : std::uint8_t { coded, numbers, dates, values };
    using Code = ValueDictionary::Code;
    static constexpr std::int64_t kEmptyWord = std::numeric_limits<std::int64_t>::min();

    // make a column of cells that another one had
    /// Returns whether a dictionary may hold a value: it does not change, and keeping it keeps nothing else
    /// alive.
    [[nodiscard]] static bool isCodable(const Value& value) noexcept;
    /// A column of numbers or dates.
    [[nodiscard]] static CellColumn ofWords(Form form, std::uint32_t scale,
                                            std::vector<std::int64_t> words) noexcept;
    /// A column of codes, all of which the dictionary has.
    [[nodiscard]] static CellColumn ofCodes(std::unique_ptr<ValueDictionary> dictionary,
                                            std::vector<Code> codes) noexcept;
    [[nodiscard]] static CellColumn ofValues(std::vector<Value> values) noexcept;

    CellColumn() : dictionary_(std::make_unique<ValueDictionary>()) {}

    // inspect
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] Form form() const noexcept { return form_; }
    [[nodiscard]] std::uint32_t scale() const noexcept { return scale_; }
    [[nodiscard]] const ValueDictionary& dictionary() const noexcept { return *dictionary_; }
    [[nodiscard]] Value get(RowId row) const;
    /// The cells of each form; empty for a form that the column does not have.
    [[nodiscard]] std::span<const std::int64_t> words() const noexcept { return words_; }
    [[nodiscard]] std::span<const Code> codes() const noexcept { return codes_; }
    [[nodiscard]] std::span<const Value> values() const noexcept { return values_; }
    /// Calls `work` with the cells of the form that the column has.
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
    /// Equal cells of this column have equal hashes as long as its form stays.
    [[nodiscard]] std::uint64_t hash(RowId row) const noexcept;
    [[nodiscard]] std::uint64_t hash(const CellProbe& probe) const noexcept;

    // modify; if an operation throws, all values are as they were
    /// Makes cells for the rows below `size`. New cells are Undefined.
    void grow(std::size_t size);
    /// Puts a value into a cell. If the cell could hold an object, `value` receives what it held; the caller
    /// lets go of that when nothing is left half done. Returns whether the form has changed, and hashes with
    /// it.
    bool exchange(RowId row, Value& value);
    /// Does the same for the first rows of an order, as many as there are values; each receives what its cell
    /// held.
    void exchange(const RowOrder& rows, std::span<Value> values);
    /// Puts a value into a cell that holds Undefined. Returns whether the form has changed.
    bool put(RowId row, const Value& value);
    /// Adds a cell with a value behind the others. Returns whether the form has changed. If it throws, the
    /// cell may be there, with Undefined.
    bool append(const Value& value);
    /// Replaces all cells by `size` cells with one value.
    void fill(std::size_t size, const Value& value);
    /// Returns the cells of the rows, in their order, as another column.
    [[nodiscard]] CellColumn copy(RowRange rows) const;
    /// Puts the cells into the order of the rows, none of which comes twice. `room` is what makeRoom() of
    /// this column returned for as many rows, so nothing can fail.
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
    [[nodiscard]] CellColumn copyCodes(RowRange rows) const;

    Form form_ = Form::coded;
    std::uint8_t scale_ = 0;
    std::size_t size_ = 0;
    std::vector<std::int64_t> words_;
    std::vector<Code> codes_;
    std::vector<Value> values_;
    std::unique_ptr<ValueDictionary> dictionary_; // null in every form except coded
};

} // namespace core
