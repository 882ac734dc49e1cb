// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/native_value.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/locales/local_wstring.h>
#include <core/runtime/locale.h>

/// Locales and texts in several languages as values: `New Locale("de_AT")`, `New LocalWString("en='Price';
/// ru='Цена'")` (`Локаль`, `МногоязычнаяСтрока`). Both never change once made; two are equal when their
/// content is.
namespace core {

inline constexpr GUID kLocaleClass = "e7690847-7a13-42a5-818e-e3951fec5866"_guid;       ///< class id
inline constexpr GUID kLocaleType = "0ef1ba1d-5400-4069-83a1-47dd0da29bce"_guid;        ///< type id
inline constexpr GUID kLocalWStringClass = "3b4bc5e3-341b-45e8-b7e9-cbef896a9009"_guid; ///< class id
inline constexpr GUID kLocalWStringType = "636105eb-121f-4b1a-aeaa-4a3769850c95"_guid;  ///< type id

/// Writes a string as one list: how many texts, and for each its language and the text.
CORE_API void put(ListOutStream& out, const LocalWString& string);
/// Reads what put() wrote. Throws ListStreamException for anything else, and LocaleException for a language
/// that is not known.
[[nodiscard]] CORE_API LocalWString get_local_wstring(ListInStream& in);

namespace detail {

[[nodiscard]] CORE_API Locale locale_from(const Value& value, ValueReceiver receiver);
[[nodiscard]] CORE_API Value value_of_locale(const Locale& locale);
[[nodiscard]] CORE_API LocalWString local_wstring_from(const Value& value, ValueReceiver receiver);
[[nodiscard]] CORE_API Value value_of_local_wstring(const LocalWString& string);

} // namespace detail

/// A locale: a Locale, or a String with its key.
template <>
struct NativeValue<Locale> {
    /// Returns the locale. Throws LocaleException for a key that is not known.
    static Locale from(const Value& value, ValueReceiver receiver) {
        return detail::locale_from(value, receiver);
    }
    /// Returns a Locale.
    static Value to(const Locale& value) { return detail::value_of_locale(value); }
    /// Returns the id of Locale.
    static const GUID* type() noexcept { return &kLocaleType; }
};

/// A text in several languages: a LocalWString, or a String, which is one text for all languages.
template <>
struct NativeValue<LocalWString> {
    /// Returns the text.
    static LocalWString from(const Value& value, ValueReceiver receiver) {
        return detail::local_wstring_from(value, receiver);
    }
    /// Returns a String where the text is one for all languages, else a LocalWString.
    static Value to(const LocalWString& value) { return detail::value_of_local_wstring(value); }
};

} // namespace core
