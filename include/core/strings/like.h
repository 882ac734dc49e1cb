// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/code_unit.h>

#include <array>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

/// LIKE patterns, matched against a whole text, code unit by code unit:
///
///     %       any run of units, including none
///     _       any one unit
///     [abc]   one unit of a set; x-y is a range, its ends in either order; a hyphen at an end of the set is
///             itself. A set that is not closed runs to the end of the pattern; [] matches nothing
///     [^abc]  one unit that is not in the set; [^] matches any unit
///     other   itself
///
/// The escape character makes the unit after it stand for itself; at the end of the pattern it is itself, and
/// inside a set it has no effect. 0 means that there is none.
namespace core {

enum class LikeCase { exact, ignore };

/// A pattern made ready for matching many texts. Immutable; one object may be used by several threads at
/// once.
///
/// A text is matched in time proportional to its length times that of the longest run without "%", however
/// the pattern is made.
class CORE_API LikePattern {
  public:
    explicit LikePattern(wstring_view pattern, wchar escape = 0, LikeCase letterCase = LikeCase::exact);

    [[nodiscard]] bool matches(wstring_view text) const noexcept;

    [[nodiscard]] const wstring& pattern() const noexcept { return pattern_; }
    [[nodiscard]] wchar escape() const noexcept { return escape_; }
    [[nodiscard]] LikeCase letterCase() const noexcept { return letterCase_; }

  private:
    /// The members of a set: sorted ranges, the first 256 units as bits as well. When case is ignored, the
    /// folding of every member is a member, and foldings are looked up.
    struct Set {
        std::vector<std::pair<wchar, wchar>> ranges;
        std::array<std::uint64_t, 4> low{};
        bool negated = false;
        [[nodiscard]] bool matches(wchar c) const noexcept;
    };
    /// A stretch of the pattern between two "%": elements first, first + 1, ..., each matching one unit.
    struct Run {
        std::size_t first = 0;
        std::size_t length = 0;
        bool literal = true;          ///< every element is a unit
        std::size_t anchor = 0;       ///< the first element that is a unit; length if there is none
        std::array<wchar, 4> units{}; ///< all units that the anchor matches
    };
    class Parser;
    template <class Fold>
    class Matcher;

    static constexpr std::uint32_t kUnit = 0; ///< an element that matches the unit in units_
    static constexpr std::uint32_t kAny = 1;
    static constexpr std::uint32_t kSet = 2; ///< and above: kSet + the index of the set

    wstring pattern_;
    wchar escape_;
    LikeCase letterCase_;
    std::vector<Run> runs_; ///< at least one; "%" stands between each two
    wstring units_;         ///< by element; folded when case is ignored
    std::vector<std::uint32_t> elements_;
    std::vector<Set> sets_;
};

/// Whether `text` matches `pattern`. The last pattern of each thread is kept ready, so that a loop over texts
/// costs what matching costs; several patterns in turn are better kept as LikePattern.
[[nodiscard]] CORE_API bool compare_like(wstring_view text, wstring_view pattern, wchar escape = 0);
[[nodiscard]] CORE_API bool compare_like(std::string_view text, std::string_view pattern, char escape = 0);
/// The same, without regard to case: units match when their simple foldings (fold_case of a unit) are the
/// same, and a set holds every unit that is another case of a member.
[[nodiscard]] CORE_API bool compare_nocase_like(wstring_view text, wstring_view pattern, wchar escape = 0);
[[nodiscard]] CORE_API bool compare_nocase_like(std::string_view text, std::string_view pattern,
                                                char escape = 0);

template <CodeUnit C>
[[nodiscard]] bool compare_like(const C* text, const C* pattern, std::type_identity_t<C> escape = 0) {
    return compare_like(text_view(text), text_view(pattern), escape);
}
template <CodeUnit C>
[[nodiscard]] bool compare_like(const C* text, std::size_t length, const C* pattern,
                                std::size_t patternLength, std::type_identity_t<C> escape = 0) {
    return compare_like(std::basic_string_view<C>(text, length),
                        std::basic_string_view<C>(pattern, patternLength), escape);
}
template <CodeUnit C>
[[nodiscard]] bool compare_like(const C* text, const C* textEnd, const C* pattern, const C* patternEnd,
                                std::type_identity_t<C> escape = 0) {
    return compare_like(text_view(text, textEnd), text_view(pattern, patternEnd), escape);
}

template <CodeUnit C>
[[nodiscard]] bool compare_nocase_like(const C* text, const C* pattern, std::type_identity_t<C> escape = 0) {
    return compare_nocase_like(text_view(text), text_view(pattern), escape);
}
template <CodeUnit C>
[[nodiscard]] bool compare_nocase_like(const C* text, std::size_t length, const C* pattern,
                                       std::size_t patternLength, std::type_identity_t<C> escape = 0) {
    return compare_nocase_like(std::basic_string_view<C>(text, length),
                               std::basic_string_view<C>(pattern, patternLength), escape);
}
template <CodeUnit C>
[[nodiscard]] bool compare_nocase_like(const C* text, const C* textEnd, const C* pattern, const C* patternEnd,
                                       std::type_identity_t<C> escape = 0) {
    return compare_nocase_like(text_view(text, textEnd), text_view(pattern, patternEnd), escape);
}

} // namespace core
