// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/text_buffer.h>
#include <core/strings/char_class.h>

#include <istream>

namespace core {

/// The units of an input stream, one ahead and no further, taken past the stream's own machinery from its
/// buffer. U+FFFF is the end of the text, as streams of char16_t have it.
///
/// A stream that has failed, or has no buffer, has no units. What a buffer throws passes through.
class UnitSource {
  public:
    static constexpr int kEnd = -1;
    static constexpr wchar kEndUnit = 0xFFFF;

    explicit UnitSource(wistream& in)
        : plain_(in.fail() ? nullptr : in.rdbuf()), runs_(dynamic_cast<TextBuffer*>(plain_)) {}

    /// The next unit, which stays, or kEnd.
    [[nodiscard]] int peek() {
        if (runs_ == nullptr)
            return peekPlain();
        if (runs_->readBegin() == runs_->readEnd() && !runs_->fill())
            return kEnd;
        const wchar unit = *runs_->readBegin();
        return unit == kEndUnit ? kEnd : unit;
    }
    /// Consumes the unit that peek() has shown; it was not kEnd.
    void skip() {
        if (runs_ != nullptr)
            runs_->readTo(runs_->readBegin() + 1);
        else
            plain_->sbumpc();
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
    void skipSpaces() {
        for (int unit = peek(); unit != kEnd && is_space(static_cast<wchar>(unit)); unit = peek())
            skip();
    }
    /// The buffer, if runs can be read from it in place; else null.
    [[nodiscard]] TextBuffer* runs() const noexcept { return runs_; }

  private:
    using Traits = wistream::traits_type;

    [[nodiscard]] int peekPlain() {
        if (plain_ == nullptr)
            return kEnd;
        const auto unit = plain_->sgetc();
        if (Traits::eq_int_type(unit, Traits::eof()))
            return kEnd;
        wchar stored = Traits::to_char_type(unit);
        if (stored == 0xFFFD) {
            // Some libraries report U+FFFF so, lest it be taken for their mark of the end:
            // look at what is stored.
            plain_->sgetn(&stored, 1);
            plain_->sungetc();
        }
        return stored == kEndUnit ? kEnd : stored;
    }

    std::basic_streambuf<wchar>* plain_;
    TextBuffer* runs_;
};

} // namespace core
