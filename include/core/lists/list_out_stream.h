// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/lists/token.h>
#include <core/numbers/numeric.h>
#include <core/runtime/guid.h>

#include <cstddef>
#include <ostream>
#include <span>

namespace core {

class TextBuffer;

namespace detail {
class CompactWriter;
class UnitSink;
struct ListRun;
} // namespace detail

/// Writes nested data as a brace list: `{1,` line feed `{2,3}` line feed `}`. Commas and line breaks come by
/// themselves: every "{" except the first begins a line, and so does a "}" behind a "}". A storage may have
/// the same calls write the compact form, in bytes.
///
/// A composite type writes itself as putBeginOfList(), its members, putEndOfList(). The writer reports no
/// error: a stream that does not take a unit becomes bad and takes nothing more, and what its buffer throws
/// passes through. One thread at a time.
class CORE_API ListOutStream {
  public:
    /// Writes to `out`, which must outlive the writer and keep its buffer.
    explicit ListOutStream(wostream& out);
    /// Writes the compact form, for the storages of the library. `out` must outlive the writer.
    explicit ListOutStream(detail::CompactWriter& out) noexcept : compact_(&out) {}
    ListOutStream(const ListOutStream&) = delete;
    ListOutStream& operator=(const ListOutStream&) = delete;

    /// Begins an element that is a list.
    void putBeginOfList();
    /// Ends the current list.
    void putEndOfList();

    /// Writes a Boolean, "1" or "0".
    template <std::same_as<bool> T>
    void put(T value) {
        putBoolean(value);
    }
    /// Writes an integer in decimal digits.
    template <ListInteger T>
    void put(T value) {
        const auto number = static_cast<detail::ListNumber<T>>(value);
        const bool negative = detail::is_negative(number);
        const auto bits = static_cast<std::uint64_t>(number);
        putInteger(negative, negative ? 0 - bits : bits);
    }
    /// Writes a floating-point number with up to sixteen digits, as a `double`. Infinities and NaN set the
    /// stream's fail bit and write nothing.
    template <ListFloat T>
    void put(T value) {
        putDouble(static_cast<double>(value));
    }
    /// Writes a GUID as 36 lowercase units.
    void put(const GUID& id);
    /// Writes a number without exponent.
    void put(const Numeric& number);
    /// Writes a date as fourteen digits; what is below a second is dropped.
    void put(const Date& date);
    /// Writes a string in quotes.
    void put(wstring_view text);
    /// Writes a string in quotes.
    void put(const wstring& text) { put(wstring_view(text)); }
    /// Writes a string that ends before its null unit. A null pointer is the empty string.
    void put(const wchar* text) { put(text_view(text)); }
    /// Writes at most `length` units as a string, fewer when a null unit stands among them.
    void put(const wchar* text, std::uint32_t length);
    /// Writes bytes: as a string in base64, in the compact form as they are.
    void putBytes(std::span<const std::byte> bytes);
    /// Refuses codes of characters, which are neither text nor numbers.
    template <CharacterCode T>
    void put(T) = delete;
    /// Writes a bare token as it stands, for tools that do not know its meaning. Throws ListStreamException
    /// in the compact form, which has no such tokens.
    void putBare(wstring_view token);

  protected:
    /// Writes the "," that is due, if one is.
    void putComma();

  private:
    friend struct detail::ListRun;
    void putBoolean(bool value);
    void putInteger(bool negative, std::uint64_t magnitude);
    void putDouble(double value);
    template <std::size_t limit, class Format>
    void putToken(Format format);
    [[nodiscard]] detail::UnitSink sink() const noexcept;
    void endToken() noexcept {
        commaPending_ = true;
        justClosed_ = false;
        atStart_ = false;
    }

    wostream* out_ = nullptr;    // null in the compact form
    TextBuffer* runs_ = nullptr; // the stream's buffer, if tokens can be written into it in place
    detail::CompactWriter* compact_ = nullptr; // null in text
    bool commaPending_ = false;                // an element of the current list is complete
    bool justClosed_ = false;                  // "}" was written last
    bool atStart_ = true;                      // nothing has been written
};

} // namespace core
