// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/runtime/types.h>

namespace core {

/// Booleans as text for a user: "Yes" and "No", in a Russian locale "Да" and "Нет".
/// What is written reads back.
///
/// A format string, in which each item stands once, under its English or its Russian name, may hold
///   locale=key    the locale of the words
///   true=text     the word for True
///   false=text    the word for False; the two must differ in more than case
///   empty=text    the text where there is no value
/// as in "true=On; false=Off". A value type; one object may be used by many threads.
class BoolFormat {
  public:
    /// Makes the format of a format string, with the words of `locale` where it gives none. Throws
    /// CtorException for a string that is malformed or makes no sense, and std::bad_alloc.
    CORE_API explicit BoolFormat(wstring_view format = {}, const Locale& locale = Locale());

    /// Returns the word for a value, borrowed as long as the format.
    [[nodiscard]] const wstring& format(bool value) const noexcept { return value ? true_ : false_; }

    /// Reads one of the words without regard to case, white space in front allowed, and stores through `end`
    /// where it stopped; where one word begins with the other, the longer one that fits. False, with `value`
    /// unchanged and `end` at the start of the text, when neither stands there.
    [[nodiscard]] CORE_API bool parse(wstring_view text, bool& value,
                                      const wchar** end = nullptr) const noexcept;

  private:
    wstring true_;
    wstring false_;
};

/// Returns the format that the settings of the calling thread's process ask for. It is borrowed, for this
/// thread, until it asks again under other settings. Throws CtorException for a malformed format
/// string in the settings.
[[nodiscard]] CORE_API const BoolFormat& default_bool_format();

} // namespace core
