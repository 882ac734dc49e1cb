// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/lists/token.h>
#include <core/numbers/numeric.h>
#include <core/runtime/guid.h>

#include <cstddef>
#include <streambuf>
#include <vector>

namespace core {

class TextBuffer;

namespace detail {
class CompactReader;
class UnitSource;
struct ListRun;
} // namespace detail

/// Reads nested data from a brace list, in the order in which it was written, and demands the commas; or from
/// the compact form, where a storage says so.
///
/// Each `get` skips white space and the comma that is due, and reads one element. Whatever does not fit (a
/// missing comma or brace, a bad token, a string cut short) throws ListStreamException, which tells a
/// place in the compact form alone. The stream then stands where the failing step stopped, and the reader is
/// not to be used further. What the stream's buffer throws passes through. A stream that has failed has no
/// text. One thread at a time.
class CORE_API ListInStream {
  public:
    /// Reads from `in`, which must outlive the reader.
    explicit ListInStream(wistream& in);
    /// Reads the compact form, for the storages of the library. `in` must outlive the reader.
    explicit ListInStream(detail::CompactReader& in) noexcept : compact_(&in) {}
    ListInStream(const ListInStream&) = delete;
    ListInStream& operator=(const ListInStream&) = delete;

    /// Reads the "{" of an element that is a list. Throws ListStreamException if another unit follows.
    void getBeginOfList();
    /// Reads the "}" of the current list. Throws ListStreamException if another unit follows.
    void getEndOfList();
    /// Consumes the next "," and returns true; returns false if another unit follows. In the compact form it
    /// returns whether another element follows.
    [[nodiscard]] bool getComma();
    /// Skips what is left of the current list, up to its "}", which stays: additions of a newer writer. Takes
    /// any depth. An escape ends the string that it stands in; what follows it counts as a bare token. Throws
    /// ListStreamException when a list inside does not end.
    void skipListContent();

    /// Reads a Boolean, "0" or "1".
    void get(bool& value);
    /// Reads an integer. A number that does not fit `T` wraps.
    template <ListInteger T>
    void get(T& value) {
        value = static_cast<T>(getInteger(std::is_signed_v<detail::ListNumber<T>>));
    }
    /// Reads a floating-point number of any length, with a sign of either kind. A failure sets the stream's
    /// fail bit.
    void get(float& value);
    /// Reads a floating-point number of up to 31 units.
    void get(double& value);
    /// Reads a GUID of 36 units, without braces.
    void get(GUID& id);
    /// Reads a decimal number.
    void get(Numeric& number);
    /// Reads a date of fourteen digits.
    void get(Date& date);
    /// Reads a string of any length.
    void get(wstring& text);
    /// Reads bytes that putBytes() wrote.
    void get(std::vector<std::byte>& bytes);
    /// Reads a string into a buffer of `size` units, one of which is the terminator's. A longer string
    /// throws.
    void get(wchar* buffer, std::uint32_t size);
    /// Reads a string that must equal `expected`, such as a tag. Null `expected` allows every string.
    void get(wstring& text, const wchar* expected);
    /// Reads a string that must equal `expected`.
    void get(wstring& text, const wstring& expected);

  protected:
    /// Skips what stands before an element: white space, and a comma where one is due. Throws if that is
    /// missing.
    void skipGap();

  private:
    friend struct detail::ListRun;
    template <class InRun, class Read>
    void getToken(InRun inRun, Read read);
    [[nodiscard]] detail::UnitSource source() const noexcept;
    [[nodiscard]] std::uint64_t getInteger(bool withSign);
    void skipString();
    void skipBare();

    wistream* in_ = nullptr;                        // null in the compact form
    std::basic_streambuf<wchar>* buffer_ = nullptr; // null when there is nothing to read
    TextBuffer* runs_ = nullptr;                    // the same, if runs can be read from it in place
    detail::CompactReader* compact_ = nullptr;      // null in text
    bool commaExpected_ = false;                    // an element or a "}" was read last
};

} // namespace core
