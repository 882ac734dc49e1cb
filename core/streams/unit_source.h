// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/text_buffer.h>
#include <core/strings/char_class.h>

#include <istream>

namespace core::detail {

/// The units of an input stream, one ahead and no further. They come from the stream's buffer, past the
/// stream's own machinery. U+FFFF ends the text, as streams of char16_t have it.
///
/// A stream that has failed, or has no buffer, has no units. What a buffer throws passes through. Copies
/// read from the same buffer.
class UnitSource {
  public:
    using Buffer = std::basic_streambuf<wchar>;

    static constexpr int kEnd = -1;
    static constexpr wchar kEndUnit = 0xFFFF;

    explicit UnitSource(wistream& in)
        : buffer_(in.fail() ? nullptr : in.rdbuf()), runs_(dynamic_cast<TextBuffer*>(buffer_)) {}
    /// A source over `buffer`, which may be null; `runs` is the same buffer if it is a TextBuffer, else null.
    UnitSource(Buffer* buffer, TextBuffer* runs) noexcept : buffer_(buffer), runs_(runs) {}

    /// The next unit, which stays, or kEnd.
    [[nodiscard]] int peek() {
        const int unit = look();
        return unit == kEndUnit ? kEnd : unit;
    }
    /// Whether no unit follows, not even U+FFFF.
    [[nodiscard]] bool isExhausted() { return look() == kEnd; }
    /// Consumes the unit that peek() has shown; it was not kEnd.
    void skip() {
        if (runs_ != nullptr)
            runs_->readTo(runs_->readBegin() + 1);
        else
            buffer_->sbumpc();
    }
    /// Consumes the next unit if it is `unit`.
    [[nodiscard]] bool skipIf(wchar unit) {
        if (peek() != unit)
            return false;
        skip();
        return true;
    }
    /// Consumes and returns the next unit, or kEnd.
    [[nodiscard]] int take() {
        const int unit = peek();
        if (unit != kEnd)
            skip();
        return unit;
    }
    /// Consumes white space.
    void skipSpaces() {
        for (int unit = peek(); unit != kEnd && is_space(static_cast<wchar>(unit)); unit = peek())
            skip();
    }
    /// The buffer, if runs can be read from it in place; else null.
    [[nodiscard]] TextBuffer* runs() const noexcept { return runs_; }
    /// The buffer; null if the stream had failed or had none.
    [[nodiscard]] Buffer* buffer() const noexcept { return buffer_; }

  private:
    using Traits = wistream::traits_type;

    /// Names the protected get area of a buffer, so that a unit in it can be looked at without being taken.
    struct Area : Buffer {
        using Buffer::egptr;
        using Buffer::gptr;
    };

    /// The next unit as it is stored, or kEnd.
    [[nodiscard]] int look() {
        if (runs_ == nullptr)
            return lookPlain();
        return runs_->readBegin() != runs_->readEnd() || runs_->fill() ? *runs_->readBegin() : kEnd;
    }
    [[nodiscard]] int lookPlain() {
        if (buffer_ == nullptr)
            return kEnd;
        const auto unit = buffer_->sgetc();
        // Some libraries report a stored U+FFFF as U+FFFD, some as their mark of the end. The area tells.
        const wchar* const stored = (buffer_->*&Area::gptr)();
        if (stored != (buffer_->*&Area::egptr)())
            return *stored;
        return Traits::eq_int_type(unit, Traits::eof()) ? kEnd : Traits::to_char_type(unit);
    }

    Buffer* buffer_;
    TextBuffer* runs_;
};

} // namespace core::detail
