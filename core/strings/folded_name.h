// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/names.h>

#include <cstdint>
#include <vector>

namespace core {

/// A name as tables look for it: its fingerprint, and its full case folding where that is quickly had.
/// Foldings are kept as words of four units, the first of them in the lowest bits, the last word filled up
/// with zeros. The name must live as long.
class FoldedName {
  public:
    explicit FoldedName(wstring_view name) noexcept;

    [[nodiscard]] const NameFingerprint& fingerprint() const noexcept { return fingerprint_; }
    /// Whether these words are the folding. It is known to have the same length.
    [[nodiscard]] bool isSame(const std::uint64_t* folding) const noexcept {
        if (!ready_)
            return isSameLong(folding);
        for (std::size_t i = 0; 4 * i < fingerprint_.length; ++i) {
            if (folding[i] != words_[i])
                return false;
        }
        return true;
    }
    void appendTo(std::vector<std::uint64_t>& foldings) const;

  private:
    static constexpr std::size_t kWords = 16;

    [[nodiscard]] bool isSameLong(const std::uint64_t* folding) const noexcept;

    wstring_view name_;
    NameFingerprint fingerprint_;
    bool ready_; // the words hold the folding
    std::uint64_t words_[kWords];
};

} // namespace core
