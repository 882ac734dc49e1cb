// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/serialization/text_buffer.h>

#include <algorithm>
#include <array>
#include <ostream>

namespace core {

/// Where units of text go: the buffer of an output stream, past the stream's own machinery. A buffer that
/// takes less than it is given makes the stream bad, and a stream that is not good takes nothing more. What a
/// buffer throws passes through.
class UnitSink {
  public:
    explicit UnitSink(wostream& out) : out_(out), runs_(dynamic_cast<TextBuffer*>(out.rdbuf())) {}

    [[nodiscard]] wostream& stream() const noexcept { return out_; }

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
        if (!out_.good())
            return;
        if (runs_ != nullptr && runs_->hasRoom(limit)) {
            runs_->wroteTo(format(runs_->writeBegin()));
            return;
        }
        std::array<wchar, limit> units;
        writePlain({units.data(), format(units.data())});
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

} // namespace core
