// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/lists/token.h>
#include <core/numbers/numeric.h>
#include <core/runtime/guid.h>
#include <core/streams/unit_source.h>

namespace core {

namespace detail {
struct ListRun;
}

/// Reads nested data from a brace list, in the order in which it was written, and demands the commas.
///
/// Whatever does not fit throws ListStreamException, which tells no place: a missing comma or brace, a bad
/// token, a string cut short. The stream is then left where the failing step stopped, and the reader is not
/// meant to be used further. The stream must outlive the reader. One thread at a time.
class CORE_API ListInStream {
  public:
    explicit ListInStream(wistream& in) : in_(in), source_(in) {}
    ListInStream(const ListInStream&) = delete;
    ListInStream& operator=(const ListInStream&) = delete;

    void getBeginOfList();
    /// The next character but white space must be "}".
    void getEndOfList();
    /// Whether the list goes on: consumes the "," if there is one.
    [[nodiscard]] bool getComma();
    /// Skips what is left of the current list, up to its "}", which stays: additions of a newer writer. Takes
    /// any depth. An escape ends the string that it stands in; what follows counts as a bare token.
    void skipListContent();

    void get(bool& value);
    template <ListInteger T>
    void get(T& value) {
        value = static_cast<T>(getInteger(std::is_signed_v<detail::ListNumber<T>>));
    }
    void get(float& value);
    void get(double& value);
    void get(GUID& id);
    void get(Numeric& number);
    void get(Date& date);
    void get(wstring& text);
    /// Into a buffer of `size` units, the terminator's among them.
    void get(wchar* buffer, std::uint32_t size);
    /// A string that must equal `expected`: a tag or keyword. Null expects nothing in particular.
    void get(wstring& text, const wchar* expected);
    void get(wstring& text, const wstring& expected);

  protected:
    /// What stands before an element: white space, and a comma where one is due.
    void skipGap();

  private:
    friend struct detail::ListRun;
    template <class InRun, class Read>
    void getToken(InRun inRun, Read read);
    void require(bool read) {
        if (!read)
            fail();
    }
    [[noreturn]] static void fail();
    [[nodiscard]] std::uint64_t getInteger(bool withSign);
    void skipString();
    void skipBare();

    wistream& in_;
    UnitSource source_;
    bool commaExpected_ = false; ///< an element or a "}" was read last
};

} // namespace core
