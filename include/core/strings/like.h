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
/// The escape character makes the unit after it stand for itself; at the end of the pattern it is itself, and
/// inside a set it has no effect. 0 means that there is none.
namespace core {

enum class LikeCase { exact, ignore };

/// A pattern made ready for matching many texts. Immutable; copies share what was made ready, and several
/// threads may match with one at once. One that was moved from can only be assigned to.
///
/// Matching takes at most the text's length times that of the longest stretch without "%",
/// however the pattern is made.
class LikePattern {
  public:
    CORE_API explicit LikePattern(wstring_view pattern, wchar escape = 0,
                                  LikeCase letterCase = LikeCase::exact);

    [[nodiscard]] CORE_API bool matches(wstring_view text) const noexcept;

  private:
    std::shared_ptr<const class LikeProgram> program_;
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
