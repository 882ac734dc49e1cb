// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// What a conversion of many cells could not keep.
namespace core {

class TypeDomain;

/// Why a cell does not hold all that it was given. The numbers are stored in failures.
enum class LossReason : std::int32_t {
    notNumber = 1,    ///< the text is not a number
    notDate = 2,      ///< the text is not a date
    notBoolean = 3,   ///< the text is not a Boolean
    notOfType = 4,    ///< the value has no reading in any of the types
    tooLarge = 5,     ///< the number has more digits before the point than the type
    rounded = 6,      ///< the number has more digits behind the point than the type
    negative = 7,     ///< the type has no negative numbers
    cut = 8,          ///< the text is longer than the type
    partOfDate = 9,   ///< the date has parts that the type leaves out
    noColumn = 10,    ///< the row has more fields than there are columns
    missingCells = 11 ///< the row has fewer fields than there are columns
};

/// One cell that does not hold all that it was given.
struct Loss {
    std::size_t row = 0;    ///< the position of the row in the table
    std::uint64_t line = 0; ///< where the row begins in its file, from 1; 0 where there is no file
    wstring column{};       ///< the name of the column; empty where no column is meant
    wstring text{};         ///< what was given, as text
    LossReason reason = LossReason::notOfType; ///< why it was not kept
};

/// Returns why the text of a loss was not kept, as a sentence without its end in the language of the thread:
/// `“abc” is not a number`. Throws std::bad_alloc.
[[nodiscard]] CORE_API wstring loss_text(const Loss& loss);

/// All losses of a conversion: how many there are, and the first of them. A value type; one thread at a time.
class CORE_API Losses {
  public:
    /// How many losses are kept; the others are counted.
    static constexpr std::size_t kKept = 1000;

    /// Counts a loss, and keeps it while fewer than kKept are kept. Throws std::bad_alloc.
    void add(Loss loss);
    /// Returns how many cells did not keep all that they were given.
    [[nodiscard]] std::uint64_t count() const noexcept { return count_; }
    /// Returns whether nothing was lost.
    [[nodiscard]] bool empty() const noexcept { return count_ == 0; }
    /// Returns the first losses, in the order of the rows and their columns; borrowed until the next change.
    [[nodiscard]] std::span<const Loss> first() const noexcept { return first_; }
    /// Throws ConversionException that names the first losses, if there are any. `source` is what messages
    /// call what was converted: a file, or the empty text.
    void check(wstring_view source = {}) const;

  private:
    std::uint64_t count_ = 0;
    std::vector<Loss> first_;
};

} // namespace core
