// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

/// The platform types that every layer shares.
namespace core {

using wchar = char16_t;                     ///< a UTF-16 code unit, on every platform
using wstring = std::u16string;             ///< text in UTF-16
using wstring_view = std::u16string_view;   ///< borrowed text in UTF-16
using wistream = std::basic_istream<wchar>; ///< a stream of code units to be read
using wostream = std::basic_ostream<wchar>; ///< a stream of code units to be written

using HRESULT = std::int32_t; ///< 0 is success, negative values are failures
/// Success.
inline constexpr HRESULT kOk = 0;
/// The object does not have the interface.
inline constexpr HRESULT kNoInterface = static_cast<HRESULT>(0x80004002U);

} // namespace core
