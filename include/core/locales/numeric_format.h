// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers/numeric.h>
#include <core/runtime/api.h>
#include <core/runtime/types.h>

namespace core {

/// Numbers as text for a user. The default is the plain form: all digits, "." before the fraction, "-" in
/// front, no grouping. What is written reads back, up to the digits that `fraction` rounds off.
///
/// A format string may hold
///   fraction=N   exactly N digits after the point, 0 ... 1000, rounded in the process's mode
///   point=c      the character before the fraction
///   group=c      the character between groups of three digits of the whole part
///   zero=text    the text of zero, and of what rounds to it
/// as in "fraction=2; point=','; group=' '". A value type; one object may be used by many threads.
class NumericFormat {
  public:
    NumericFormat() noexcept = default;
    /// CtorException for a malformed format string.
    CORE_API explicit NumericFormat(wstring_view format);

    /// Replaces `text`, whose capacity is used.
    CORE_API void format(const Numeric& number, wstring& text) const;
    [[nodiscard]] CORE_API wstring format(const Numeric& number) const;

    /// Reads as much of `text` as this format could have written, white space in front allowed, and stores
    /// through `end` where it stopped. Groups may be left out. False, with `number` unchanged and `end` at
    /// the start of the text, when no number stands there.
    [[nodiscard]] CORE_API bool parse(wstring_view text, Numeric& number, const wchar** end = nullptr) const;

  private:
    static constexpr int kAllDigits = -1;

    [[nodiscard]] bool isPlain() const noexcept {
        return fraction_ == kAllDigits && point_ == u'.' && group_ == u'\0' && zero_.empty();
    }

    int fraction_ = kAllDigits;
    wchar point_ = u'.';
    wchar group_ = u'\0'; ///< none
    wstring zero_;        ///< empty: like any other number
};

/// The format that the settings of the calling thread's process ask for. The reference is for
/// this thread and holds until it asks again under other settings. CtorException for a malformed
/// format string in the settings.
[[nodiscard]] CORE_API const NumericFormat& default_numeric_format();

} // namespace core
