// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstdint>
#include <optional>

namespace core {

class ListInStream;
class ListOutStream;

/// The keys that are held down with another one, as bits. The numbers are stored.
enum class KeyModifiers : std::uint32_t {
    none = 0,  ///< the key alone
    ctrl = 1,  ///< Ctrl
    alt = 2,   ///< Alt
    shift = 4, ///< Shift
    meta = 8,  ///< the key of the system
};
/// Returns the modifiers of both.
[[nodiscard]] constexpr KeyModifiers operator|(KeyModifiers a, KeyModifiers b) noexcept {
    return static_cast<KeyModifiers>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}
/// Returns the modifiers that are in both.
[[nodiscard]] constexpr KeyModifiers operator&(KeyModifiers a, KeyModifiers b) noexcept {
    return static_cast<KeyModifiers>(static_cast<std::uint32_t>(a) & static_cast<std::uint32_t>(b));
}

/// Returns the number of a key by its untranslated name, in any case: "A", "7", "+", "F5", "PageUp", "Space".
/// A key that types a character has the number of that character in ASCII, a letter that of the capital; any
/// other key has a number from 256 on. Returns nothing for a text that is not a key.
[[nodiscard]] CORE_API std::optional<std::uint32_t> key_number(wstring_view name) noexcept;
/// Returns the untranslated name of a key; empty for a number that is not a key. Throws std::bad_alloc.
[[nodiscard]] CORE_API wstring key_name(std::uint32_t key);

/// A key, perhaps with others held down, that calls a command. A value of 8 bytes; safe to read on any
/// thread.
class CORE_API ShortCut {
  public:
    /// No key.
    constexpr ShortCut() noexcept = default;
    /// A key by its number (key_number()), with modifiers.
    explicit constexpr ShortCut(std::uint32_t key, KeyModifiers modifiers = KeyModifiers::none) noexcept
        : key_(key), modifiers_(modifiers) {}

    /// Returns the number of the key; 0 for a shortcut without a key.
    [[nodiscard]] constexpr std::uint32_t key() const noexcept { return key_; }
    /// Returns what is held down with the key.
    [[nodiscard]] constexpr KeyModifiers modifiers() const noexcept { return modifiers_; }
    /// Says whether there is no key.
    [[nodiscard]] constexpr bool isEmpty() const noexcept { return key_ == 0; }
    /// Says whether one of these modifiers is held down.
    [[nodiscard]] constexpr bool has(KeyModifiers modifier) const noexcept {
        return (modifiers_ & modifier) != KeyModifiers::none;
    }

    /// Returns the one text of the shortcut, the same in each language: "Ctrl+Alt+Shift+Meta+F5" with what is
    /// held down in this order, "Ctrl++" for the key "+"; the empty text where there is no key. Throws
    /// std::bad_alloc.
    [[nodiscard]] wstring toText() const;
    /// Returns the shortcut of a text; nothing for any text that says none. It takes the modifiers in any
    /// order and case, each once, and white space around the parts. The empty text is that without a key.
    [[nodiscard]] static std::optional<ShortCut> fromText(wstring_view text) noexcept;
    /// Returns what people read, in the language of the thread, where keys such as "Space" have names of
    /// their own. Throws std::bad_alloc.
    [[nodiscard]] wstring presentation() const;

    /// Says whether the key and the modifiers are equal.
    friend constexpr bool operator==(const ShortCut&, const ShortCut&) = default;
    /// Returns a hash; equal shortcuts have equal ones.
    [[nodiscard]] constexpr std::int32_t hash() const noexcept {
        return static_cast<std::int32_t>(key_ * 16 + static_cast<std::uint32_t>(modifiers_));
    }

  private:
    std::uint32_t key_ = 0;
    KeyModifiers modifiers_ = KeyModifiers::none;
};

/// Writes a shortcut as a list of two numbers, that of the key and that of the modifiers. Throws what the
/// stream throws.
CORE_API void to_stream(ListOutStream& out, const ShortCut& shortCut);
/// Reads what to_stream() wrote. Throws ListStreamException for anything else, the number of no key among it;
/// `shortCut` is unchanged then.
CORE_API void from_stream(ListInStream& in, ShortCut& shortCut);

} // namespace core
