// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstdint>
#include <memory>
#include <string_view>

namespace core {

/// Told what a JSON text holds, in its order. Texts are UTF-8, with escapes resolved, and valid during the
/// call only. A ContextException refuses what was told.
class JsonEvents {
  public:
    virtual ~JsonEvents() = default;

    /// Null.
    virtual void onNull() = 0;
    /// A Boolean.
    virtual void onBoolean(bool value) = 0;
    /// The number as it is written, whole.
    virtual void onNumber(std::string_view text) = 0;
    /// A string, in as many pieces as it came in.
    virtual void onString(std::string_view piece, bool isLast) = 0;
    /// A member's name, whole; its value follows.
    virtual void onName(std::string_view name) = 0;
    /// The elements of an array follow.
    virtual void onArrayBegin() = 0;
    /// The innermost array ends.
    virtual void onArrayEnd() = 0;
    /// The members of an object follow, each as its name and its value.
    virtual void onObjectBegin() = 0;
    /// The innermost object ends.
    virtual void onObjectEnd() = 0;
};

/// Reads one JSON text in UTF-8, with or without a byte order mark, given in pieces of any size. Memory grows
/// with nesting and with the longest number or name, not with the text.
///
/// Every function throws ContextException for malformed text and for what an event refuses, with line and
/// column, and for nesting too deep; the reader is not to be used further. What else an event throws passes
/// through.
class CORE_API JsonReader {
  public:
    /// Tells `events`, which are borrowed, what stands in a text that is nested at most `maxDepth` deep;
    /// messages call its first line `firstLine`, and the text `name`, if that is not empty.
    JsonReader(JsonEvents& events, std::size_t maxDepth, std::uint64_t firstLine = 1, wstring_view name = {});
    JsonReader(const JsonReader&) = delete;
    JsonReader& operator=(const JsonReader&) = delete;
    ~JsonReader();

    /// Reads the next piece of the text. Throws as said above.
    void read(std::string_view piece);
    /// Ends the text. Throws as said above, also for a text that is not whole.
    void finish();

  private:
    class Parser;

    [[nodiscard]] std::string_view behindMark(std::string_view piece);
    void advance(std::string_view read) noexcept;
    [[noreturn]] void fail(const char* reason) const;

    std::unique_ptr<Parser> parser_;
    std::size_t maxDepth_;
    wstring name_;
    std::size_t mark_ = 0; ///< bytes of a byte order mark that were read; all of them where none can follow
    std::uint64_t line_ = 1;
    std::uint64_t column_ = 1; ///< in characters
};

} // namespace core
