// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace core {

namespace detail {
struct CodePage;
} // namespace detail

/// What a conversion does with what does not fit: bytes that are not text in the encoding, a character that
/// the encoding does not have, half of a surrogate pair. It is never passed over in silence.
enum class CodingErrorAction : std::int32_t {
    report = 0,  ///< Throws ConverterException, which names what does not fit and its place.
    replace = 1, ///< U+FFFD when reading, "?" when writing.
    escape = 2,  ///< Each byte as `\xHH` when reading, a character as `\uHHHH` or `\UHHHHHHHH` when writing.
};

/// A character encoding: UTF-8, or any other that ICU knows. A small value; copies are cheap. Two are equal
/// when they convert alike, whatever names they were found by. Threads: safe on all.
class CORE_API Encoding {
  public:
    /// UTF-8.
    Encoding() noexcept;
    /// Finds an encoding by a name or an alias, without regard to case, blanks, "-" and "_": "windows-1251",
    /// "cp866", "utf8". Throws ConverterException for a name that nobody knows.
    explicit Encoding(wstring_view name);

    /// Returns the encoding of that name or alias; nothing for a name that nobody knows.
    [[nodiscard]] static std::optional<Encoding> find(wstring_view name);
    /// Returns the usual names of all encodings, sorted.
    [[nodiscard]] static std::vector<wstring> names();

    /// Returns the usual name, such as "windows-1251"; borrowed for ever.
    [[nodiscard]] const wstring& name() const noexcept;
    /// Returns all names that it is found by, the usual one among them.
    [[nodiscard]] std::vector<wstring> aliases() const;
    /// Returns the byte order mark that may stand in front of a text; empty for an encoding without one, and
    /// for "UTF-16" and "UTF-32", whose converters write and skip it themselves. Borrowed for ever.
    [[nodiscard]] std::span<const std::byte> mark() const noexcept;

    /// Returns whether both convert alike.
    friend bool operator==(const Encoding&, const Encoding&) noexcept = default;

    /// Returns what the library keeps of the encoding, for its own converters; borrowed for ever.
    [[nodiscard]] const detail::CodePage& page() const noexcept { return *page_; }

  private:
    explicit Encoding(const detail::CodePage& page) noexcept : page_(&page) {}

    const detail::CodePage* page_; // one for each encoding, never given back
};

} // namespace core
