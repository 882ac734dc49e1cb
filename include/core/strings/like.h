// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/code_unit.h>

#include <memory>
#include <type_traits>

/// LIKE patterns, matched against a whole text, code unit by code unit:
///
///     %       any run of units, including none
///     _       any one unit
///     [abc]   one unit of a set; x-y is a range, its ends in either order; a hyphen at an end of the set is
///             itself. A set that is not closed runs to the end of the pattern; [] matches nothing
///     [^abc]  one unit that is not in the set; [^] matches any unit
///     other   itself
///
/// The escape character makes the unit after it stand for itself. At the end of the pattern it is itself, and
/// inside a set it has no effect. 0 means no escape character.
///
/// Without regard to case, units match when their simple foldings (fold_case() of a unit) are the same, and a
/// set holds every unit that is another case of a member.
namespace core {

/// Whether a pattern tells the cases of a letter apart.
enum class LikeCase {
    exact, ///< it does
    ignore ///< it does not
};

/// A pattern made ready for matching many texts. It never changes; copies share what was made ready, and
/// several threads may match with one at once. One that was moved from can only be assigned to.
class LikePattern {
  public:
    /// Makes a pattern ready. The text of the pattern is not needed afterwards.
    CORE_API explicit LikePattern(wstring_view pattern, wchar escape = 0,
                                  LikeCase letterCase = LikeCase::exact);

    /// Tells whether the whole text matches. This takes at most the length of the text times that of the
    /// longest stretch of the pattern without "%".
    [[nodiscard]] CORE_API bool matches(wstring_view text) const noexcept;

  private:
    std::shared_ptr<const class LikeProgram> program_;
};

/// Tells whether `text` matches `pattern`. Each thread keeps its last pattern ready, so that a loop over
/// texts costs what matching costs; several patterns in turn are better kept as LikePattern.
[[nodiscard]] CORE_API bool compare_like(wstring_view text, wstring_view pattern, wchar escape = 0);
/// Tells whether `text` matches `pattern`, both in UTF-8. An escape above 0x7F escapes nothing.
[[nodiscard]] CORE_API bool compare_like(std::string_view text, std::string_view pattern, char escape = 0);
/// Tells whether a text matches a pattern, both ended by null units.
template <CodeUnit C>
[[nodiscard]] bool compare_like(const C* text, const C* pattern, std::type_identity_t<C> escape = 0) {
    return compare_like(text_view(text), text_view(pattern), escape);
}
/// Tells whether a text matches a pattern, each given by a pointer and its end (code_unit.h).
template <CodeUnit C, TextEnd<C> T, TextEnd<C> P>
[[nodiscard]] bool compare_like(const C* text, T textEnd, const C* pattern, P patternEnd,
                                std::type_identity_t<C> escape = 0) {
    return compare_like(text_view(text, textEnd), text_view(pattern, patternEnd), escape);
}

/// Tells whether `text` matches `pattern` without regard to case. Each thread keeps its last pattern ready.
[[nodiscard]] CORE_API bool compare_nocase_like(wstring_view text, wstring_view pattern, wchar escape = 0);
/// Tells whether `text` matches `pattern` without regard to case, both in UTF-8. An escape above 0x7F escapes
/// nothing.
[[nodiscard]] CORE_API bool compare_nocase_like(std::string_view text, std::string_view pattern,
                                                char escape = 0);
/// Tells whether a text matches a pattern without regard to case, both ended by null units.
template <CodeUnit C>
[[nodiscard]] bool compare_nocase_like(const C* text, const C* pattern, std::type_identity_t<C> escape = 0) {
    return compare_nocase_like(text_view(text), text_view(pattern), escape);
}
/// Tells whether a text matches a pattern without regard to case, each given by a pointer and its end
/// (code_unit.h).
template <CodeUnit C, TextEnd<C> T, TextEnd<C> P>
[[nodiscard]] bool compare_nocase_like(const C* text, T textEnd, const C* pattern, P patternEnd,
                                       std::type_identity_t<C> escape = 0) {
    return compare_nocase_like(text_view(text, textEnd), text_view(pattern, patternEnd), escape);
}

} // namespace core
