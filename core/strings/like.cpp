// SPDX-License-Identifier: Apache-2.0
#include "core/strings/like_program.h"

#include <core/runtime/utf8.h>
#include <core/strings/compare.h>
#include <core/strings/like.h>

#include <memory>

namespace core {

LikePattern::LikePattern(wstring_view pattern, wchar escape, LikeCase letterCase)
    : program_(std::make_shared<const LikeProgram>(pattern, escape, letterCase)) {}

bool LikePattern::matches(wstring_view text) const noexcept {
    return program_->matches(text);
}

namespace {

bool matches_like(wstring_view text, wstring_view pattern, wchar escape, LikeCase letterCase) {
    constexpr std::size_t kLongestKept = 256;
    if (pattern.size() > kLongestKept)
        return LikeProgram(pattern, escape, letterCase).matches(text);
    thread_local std::unique_ptr<const LikeProgram> kept;
    if (kept == nullptr || kept->escape() != escape || kept->letterCase() != letterCase ||
        compare(kept->pattern(), pattern) != 0)
        kept = std::make_unique<const LikeProgram>(pattern, escape, letterCase);
    return kept->matches(text);
}

// A byte above 0x7F is a part of a character and escapes nothing.
wchar wide_escape(char escape) noexcept {
    return (escape & 0x80) == 0 ? static_cast<wchar>(escape) : u'\0';
}

} // namespace

bool compare_like(wstring_view text, wstring_view pattern, wchar escape) {
    return matches_like(text, pattern, escape, LikeCase::exact);
}

bool compare_like(std::string_view text, std::string_view pattern, char escape) {
    return compare_like(from_utf8(text), from_utf8(pattern), wide_escape(escape));
}

bool compare_nocase_like(wstring_view text, wstring_view pattern, wchar escape) {
    return matches_like(text, pattern, escape, LikeCase::ignore);
}

bool compare_nocase_like(std::string_view text, std::string_view pattern, char escape) {
    return compare_nocase_like(from_utf8(text), from_utf8(pattern), wide_escape(escape));
}

} // namespace core
