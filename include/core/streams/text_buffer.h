// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <limits>
#include <streambuf>

namespace core {

/// A stream buffer whose areas are open to the readers and writers of brace lists, so that these work on
/// whole runs of units in place. Streams on other buffers work too, a unit or a piece at a time.
///
/// A derived buffer overrides underflow() to read, and overflow() to write. overflow(eof) makes room and
/// writes nothing. One thread at a time.
class CORE_API TextBuffer : public std::basic_streambuf<wchar> {
  public:
    /// Returns the first unit at hand; borrowed until the next read.
    [[nodiscard]] const wchar* readBegin() const noexcept { return gptr(); }
    /// Returns the end of the units at hand; equal to readBegin() before fill() and at the end of the text.
    [[nodiscard]] const wchar* readEnd() const noexcept { return egptr(); }
    /// Returns the units at hand; borrowed until the next read.
    [[nodiscard]] wstring_view atHand() const noexcept { return {gptr(), egptr()}; }
    /// Brings at least one unit to hand. Returns false at the end of the text; throws what the source throws.
    [[nodiscard]] bool fill() {
        if (gptr() == egptr())
            static_cast<void>(underflow());
        return gptr() != egptr();
    }
    /// Consumes the units at hand before `end`, which lies in [readBegin(), readEnd()].
    void readTo(const wchar* end) noexcept { setg(eback(), gptr() + (end - gptr()), egptr()); }

    /// Returns where the next unit is to be written; borrowed until the next write.
    [[nodiscard]] wchar* writeBegin() const noexcept { return pptr(); }
    /// Returns whether `units` units fit behind writeBegin().
    [[nodiscard]] bool hasRoom(std::size_t units) const noexcept {
        return static_cast<std::size_t>(epptr() - pptr()) >= units;
    }
    /// Makes the units that were stored from writeBegin() up to `end` part of the text.
    void wroteTo(wchar* end) noexcept {
        constexpr auto kMost = std::numeric_limits<int>::max(); // what pbump takes
        while (end - pptr() > kMost)
            pbump(kMost);
        pbump(static_cast<int>(end - pptr()));
    }

  protected:
    /// Makes a buffer without areas.
    TextBuffer() = default;
    /// Reads up to `count` units and returns how many there were. U+FFFF is read as it is; the standard
    /// library's own function may replace it, as it passes units through the type of its mark of the end.
    std::streamsize xsgetn(wchar* units, std::streamsize count) override;
    /// Writes `count` units and returns how many were taken. U+FFFF is written as it is, as above.
    std::streamsize xsputn(const wchar* units, std::streamsize count) override;
};

} // namespace core
