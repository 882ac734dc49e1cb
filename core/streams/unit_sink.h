// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/text_buffer.h>

#include <algorithm>
#include <array>
#include <ostream>

namespace core::detail {

/// Where units of text go: the buffer of an output stream, past the stream's own machinery. A buffer that
/// takes less than it is given makes the stream bad, and a stream that is not good takes nothing more. What a
/// buffer throws passes through.
class UnitSink {
  public:
    explicit UnitSink(wostream& out) : UnitSink(out, dynamic_cast<TextBuffer*>(out.rdbuf())) {}
    /// A sink over `out`; `runs` is its buffer if that is a TextBuffer, else null.
    UnitSink(wostream& out, TextBuffer* runs) noexcept : out_(out), runs_(runs) {}

    void write(wstring_view units) {
        if (!out_.good())
            return;
        if (runs_ != nullptr && runs_->hasRoom(units.size()))
            runs_->wroteTo(std::copy(units.begin(), units.end(), runs_->writeBegin()));
        else
            writePlain(units);
    }
    /// Writes what `format` writes, up to `limit` units: it is given where they go and returns their end.
    template <std::size_t limit, class Format>
    void format(Format format) {
        if (formatInPlace(limit, format) || !out_.good())
            return;
        std::array<wchar, limit> units;
        writePlain({units.data(), format(units.data())});
    }
    /// The same, if the buffer has room for `limit` units and `format` does not give up by returning null;
    /// else nothing is written and the answer is false.
    template <class Format>
    [[nodiscard]] bool formatInPlace(std::size_t limit, Format format) {
        if (runs_ == nullptr || !runs_->hasRoom(limit) || !out_.good())
            return false;
        wchar* const end = format(runs_->writeBegin());
        if (end != nullptr)
            runs_->wroteTo(end);
        return end != nullptr;
    }

  private:
    void writePlain(wstring_view units) {
        const auto size = static_cast<std::streamsize>(units.size());
        if (out_.rdbuf()->sputn(units.data(), size) != size)
            out_.setstate(std::ios_base::badbit);
    }

    wostream& out_; // good only while it has a buffer
    TextBuffer* runs_;
};

} // namespace core::detail
