// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/code_unit.h>

#include <unicode/ucol.h>

#include <array>
#include <cstdint>
#include <string>

namespace core::detail {

/// What a language's rules come to in texts of everyday letters: each has one rank in the alphabet,
/// and its case decides between texts that are otherwise the same. Making a key so takes a fraction of what
/// the rules take.
class LetterOrder {
  public:
    /// Of the collator's language.
    explicit LetterOrder(const UCollator* collator);

    /// Appends the key of a text to `keys`. False, with part of it appended, when a unit of the text needs
    /// the rules.
    [[nodiscard]] bool append(std::string& keys, wstring_view text) const;

  private:
    static constexpr std::size_t kUnits = 0x500; // up to the end of Cyrillic
    struct Letter {
        std::uint8_t rank = 0; // in the alphabet, counted from kFirstRank; 0: needs the rules
        std::uint8_t form = 0; // 0 to 3 among those of one rank
    };

    std::array<Letter, kUnits> letters_{};
};

} // namespace core::detail
