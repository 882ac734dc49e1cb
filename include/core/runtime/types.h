// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

/// The platform types that every layer shares.
namespace core {

using wchar = char16_t; ///< a UTF-16 code unit, on every platform
using wstring = std::u16string;
using wstring_view = std::u16string_view;
using wistream = std::basic_istream<wchar>;
using wostream = std::basic_ostream<wchar>;

using HRESULT = std::int32_t; ///< 0 is success, negative values are failures
inline constexpr HRESULT kOk = 0;
inline constexpr HRESULT kNoInterface = static_cast<HRESULT>(0x80004002U);

} // namespace core
