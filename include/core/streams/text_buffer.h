// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <streambuf>

namespace core {

/// A stream buffer whose areas are open to the readers and writers of brace lists, so that these work on runs
/// of units in place. Streams on other buffers are read and written, too, a unit or a piece at a time.
class CORE_API TextBuffer : public std::basic_streambuf<wchar> {
  public:
    /// The units at hand: [readBegin, readEnd). Empty before fill() and at the end.
    [[nodiscard]] const wchar* readBegin() const noexcept { return gptr(); }
    [[nodiscard]] const wchar* readEnd() const noexcept { return egptr(); }
    [[nodiscard]] wstring_view atHand() const noexcept { return {gptr(), egptr()}; }
    /// Brings at least one unit to hand. False at the end of the text.
    [[nodiscard]] bool fill() {
        if (gptr() == egptr())
            static_cast<void>(underflow());
        return gptr() != egptr();
    }
    /// Consumes the units at hand before `position`.
    void readTo(const wchar* position) noexcept { setg(eback(), gptr() + (position - gptr()), egptr()); }

    /// The room for units to be written: [writeBegin, writeEnd).
    [[nodiscard]] wchar* writeBegin() const noexcept { return pptr(); }
    [[nodiscard]] bool hasRoom(std::size_t units) const noexcept {
        return static_cast<std::size_t>(epptr() - pptr()) >= units;
    }
    /// Makes what was put into the room before `position` part of the text.
    void wroteTo(wchar* position) noexcept { setp(position, epptr()); }

  protected:
    TextBuffer() = default;
    /// Reads U+FFFF as it is; the standard library's own, which goes through the type of
    /// its mark of the end, may not.
    std::streamsize xsgetn(wchar* units, std::streamsize count) override;
};

} // namespace core
