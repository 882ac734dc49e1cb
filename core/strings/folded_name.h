// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <array>
#include <cstdint>
#include <vector>

namespace core {

/// A name as tables look for it: folded once, both for the hash and for the comparison that proves the name
/// found. A folding is kept as words of four units, the first unit in the lowest bits, the last word filled
/// up with zeros. Borrows the name.
class FoldedName {
  public:
    explicit FoldedName(wstring_view name) noexcept;

    /// The same as table_hash_nocase() of the name.
    [[nodiscard]] std::uint64_t hash() const noexcept { return hash_; }
    /// Units of the full case folding.
    [[nodiscard]] std::size_t length() const noexcept { return length_; }
    /// Whether these words are the folding; they are known to be of the same length.
    [[nodiscard]] bool isSame(const std::uint64_t* folding) const noexcept {
        if (length_ > 4 * kWords)
            return isSameLong(folding);
        for (std::size_t i = 0; 4 * i < length_; ++i) {
            if (folding[i] != words_[i])
                return false;
        }
        return true;
    }
    /// Adds `head` and the words of the folding at the end. Throws std::bad_alloc; nothing is added then.
    void appendTo(std::vector<std::uint64_t>& words, std::uint64_t head) const;

  private:
    static constexpr std::size_t kWords = 16;

    [[nodiscard]] bool isSameLong(const std::uint64_t* folding) const noexcept;

    wstring_view name_;
    std::uint64_t hash_;
    std::size_t length_;
    std::array<std::uint64_t, kWords> words_; ///< the first ones
};

} // namespace core
