// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/lists/token.h>
#include <core/numbers/numeric.h>
#include <core/runtime/guid.h>
#include <core/streams/unit_sink.h>

namespace core {

namespace detail {
struct ListRun;
}

/// Writes nested data as a brace list: `{1,` line feed `{2,3}` line feed `}`. Commas and line breaks come by
/// themselves: every "{" but the first begins a line, and so does a "}" behind a "}".
///
/// A composite type writes itself as putBeginOfList(), its members, putEndOfList(). The writer reports
/// nothing: errors are the stream's, which must outlive it. One thread at a time.
class CORE_API ListOutStream {
  public:
    explicit ListOutStream(wostream& out) : sink_(out) {}
    ListOutStream(const ListOutStream&) = delete;
    ListOutStream& operator=(const ListOutStream&) = delete;

    void putBeginOfList();
    void putEndOfList();

    template <std::same_as<bool> T>
    void put(T value) {
        putInteger(false, value ? 1 : 0);
    }
    template <ListInteger T>
    void put(T value) {
        const auto number = static_cast<detail::ListNumber<T>>(value);
        const bool negative = detail::is_negative(number);
        const auto bits = static_cast<std::uint64_t>(number);
        putInteger(negative, negative ? 0 - bits : bits);
    }
    /// Infinities and NaN set the stream's fail bit, and nothing is written.
    template <ListFloat T>
    void put(T value) {
        putDouble(static_cast<double>(value));
    }
    void put(const GUID& id);
    void put(const Numeric& number);
    void put(const Date& date);
    void put(wstring_view text);
    void put(const wstring& text) { put(wstring_view(text)); }
    /// Up to the null unit; a null pointer is the empty string.
    void put(const wchar* text) { put(text_view(text)); }
    /// At most `length` units, fewer when a null unit stands among them.
    void put(const wchar* text, std::uint32_t length);
    template <CharacterCode T>
    void put(T) = delete;
    /// A bare token as it stands, for tools that do not know its meaning.
    void putBare(wstring_view token);

  protected:
    /// Writes "," if an element stands in front.
    void putComma() {
        if (commaPending_)
            sink_.write(u",");
        commaPending_ = false;
    }

  private:
    friend struct detail::ListRun;
    void putInteger(bool negative, std::uint64_t magnitude);
    void putDouble(double value);
    template <std::size_t limit, class Format>
    void putToken(Format format);
    void endToken() noexcept {
        commaPending_ = true;
        justClosed_ = false;
        atStart_ = false;
    }

    UnitSink sink_;
    bool commaPending_ = false; ///< an element of the current list is complete
    bool justClosed_ = false;   ///< "}" was written last
    bool atStart_ = true;       ///< nothing has been written
};

} // namespace core
