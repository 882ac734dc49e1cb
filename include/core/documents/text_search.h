// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/documents/text_range.h>
#include <core/documents/text_snapshot.h>

#include <memory>
#include <optional>

namespace core {

/// How a text is looked for.
enum class TextQueryKind : std::int32_t {
    exact = 0,      ///< unit by unit
    ignoreCase = 1, ///< capital and small letters are equal
    regex = 2,      ///< a regular expression; ^ and $ match at each line
};

/// What is looked for in a text.
struct TextQuery {
    wstring text{};                            ///< the text or the pattern; not empty
    TextQueryKind kind = TextQueryKind::exact; ///< how it is compared
};

/// Finds one match after the other, without a copy of the text. One thread at a time; it holds the snapshot,
/// so that editing goes on meanwhile.
///
/// Every function that looks throws std::bad_alloc, and DocumentException for a regular expression that takes
/// too long on the text.
class CORE_API TextSearch {
  public:
    /// Prepares to search `text` from `from` on. Throws DocumentException for an empty query, for a malformed
    /// regular expression and for an offset behind the end.
    TextSearch(const TextSnapshot& text, const TextQuery& query, std::uint64_t from = 0);
    ~TextSearch();
    /// Takes the search over; `other` may then only be destroyed.
    TextSearch(TextSearch&& other) noexcept;
    /// Takes the search over; `other` may then only be destroyed.
    TextSearch& operator=(TextSearch&& other) noexcept;

    /// Returns the next match, which does not overlap the one before; nothing behind the last one. A regular
    /// expression may match an empty range.
    [[nodiscard]] std::optional<TextRange> next();
    /// Returns what stands for the match that next() has returned last when it is replaced by `replacement`.
    /// In the replacement of a regular expression "$1" is what group 1 has matched, "$0" the whole, and "\"
    /// takes the unit behind it as it is. Throws DocumentException, too, for a group that the pattern does
    /// not have.
    [[nodiscard]] wstring expand(wstring_view replacement) const;

  private:
    class Engine;
    class UnitEngine;
    class RegexEngine;
    std::unique_ptr<Engine> engine_;
};

/// Returns the first match at `from` or behind it; nothing where no match follows. Throws as TextSearch does.
[[nodiscard]] CORE_API std::optional<TextRange> find(const TextSnapshot& text, const TextQuery& query,
                                                     std::uint64_t from = 0);

} // namespace core
