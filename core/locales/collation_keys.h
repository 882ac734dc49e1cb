// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/strings/code_unit.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace core {

/// Keys of many texts whose bytes stand in the order of the texts: comparing two keys, byte by byte, tells
/// what compare() with the locale tells, except that identical keys may belong to texts of different code
/// units. For sorting: a key is made once a text, comparing keys is cheap, and all of them are one block of
/// memory. No key has a zero byte in it. Keys compare with those of the same object only.
class CORE_API CollationKeys {
  public:
    /// The texts are not needed any more afterwards. Throws LocaleException when the system has no collation
    /// rules at all, ConverterException for a text that is too long for a key.
    CollationKeys(std::span<const wstring_view> texts, const Locale& locale);

    [[nodiscard]] std::string_view operator[](std::size_t i) const noexcept {
        const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
        return std::string_view(bytes_).substr(begin, ends_[i] - begin);
    }

  private:
    std::string bytes_;
    std::vector<std::size_t> ends_;
};

} // namespace core
