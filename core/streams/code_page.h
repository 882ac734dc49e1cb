// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace core::detail {

/// A page whose characters are a byte each, in both directions.
struct PageTable {
    static constexpr wchar kNoUnit = 0xFFFF; // is not a character, so that no page has it

    std::array<wchar, 256> units{};
    bool hasHoles = false;
    /// For the high byte of a unit the element of `bytes`; the first one is that of units which the page does
    /// not have.
    std::array<std::uint8_t, 256> rows{};
    std::vector<std::array<std::uint8_t, 256>> bytes{1};

    /// The byte of a unit. A unit that the page does not have gets any byte, which is not that of the unit.
    [[nodiscard]] std::uint8_t byteOf(wchar unit) const noexcept {
        return bytes[rows[unit >> 8]][unit & 0xFF];
    }
};

/// Who converts.
enum class PageKind { utf8, utf16le, utf16be, table, icu };

/// What is known of an encoding. There is one for each, made when it is first asked for and never given back.
struct CodePage {
    std::string icuName{}; // ICU's own name
    wstring name{};        // the usual one
    PageKind kind = PageKind::icu;
    std::span<const std::byte> mark{};
    bool movesControls = false;               // see has_moved_controls() in encoding.cpp
    std::unique_ptr<const PageTable> table{}; // of a page that is one
};

/// The page of that name or alias; null for a name that ICU does not know. Throws std::bad_alloc.
[[nodiscard]] const CodePage* find_code_page(wstring_view name);
/// The page of UTF-8, without any look-up.
[[nodiscard]] const CodePage& utf8_page() noexcept;

} // namespace core::detail
