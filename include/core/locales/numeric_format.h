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
///   zero=text    the text of zero, and of what rounds to it; not that of another number
/// as in "fraction=2; point=','; group=' '", each at most once. A value type; one object may be used by many
/// threads.
class NumericFormat {
  public:
    /// Makes the plain form.
    NumericFormat() noexcept = default;
    /// Makes the format of a format string. Throws CtorException for a malformed one, and std::bad_alloc.
    CORE_API explicit NumericFormat(wstring_view format);

    /// Replaces `text`, whose capacity is used, by the number. Throws std::bad_alloc.
    CORE_API void format(const Numeric& number, wstring& text) const;
    /// Returns the text of the number. Throws std::bad_alloc.
    [[nodiscard]] CORE_API wstring format(const Numeric& number) const;

    /// Reads as much of `text` as this format could have written, white space in front allowed, and stores
    /// through `end` where it stopped. Groups may be left out. False, with `number` unchanged and `end` at
    /// the start of the text, when no number stands there. Throws std::bad_alloc.
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

/// Returns the format that the settings of the calling thread's process ask for. It is borrowed, for this
/// thread, until it asks again under other settings. Throws CtorException for a malformed format
/// string in the settings.
[[nodiscard]] CORE_API const NumericFormat& default_numeric_format();

} // namespace core
