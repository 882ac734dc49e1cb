// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/memory_stream.h>
#include <core/streams/text_buffer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <istream>
#include <memory>
#include <sstream>
#include <string>

namespace core::test {

/// Shows a text in runs of a few units, so that every token is cut somewhere.
class DripBuffer : public TextBuffer {
  public:
    DripBuffer(wstring text, std::size_t run) : text_(std::move(text)), run_(run) {}

  protected:
    int_type underflow() override {
        const std::size_t count = std::min(run_, text_.size() - next_);
        wchar* const begin = text_.data() + next_;
        setg(begin, begin, begin + count);
        next_ += count;
        return count == 0 ? traits_type::eof() : traits_type::to_int_type(*begin);
    }

  private:
    wstring text_;
    std::size_t run_;
    std::size_t next_ = 0;
};

/// Keeps no units at hand: each look and each read is a call of its own, and nothing can be put back.
class UnbufferedIn : public std::basic_streambuf<wchar> {
  public:
    explicit UnbufferedIn(wstring text) : text_(std::move(text)) {}

  protected:
    int_type underflow() override {
        return next_ == text_.size() ? traits_type::eof() : traits_type::to_int_type(text_[next_]);
    }
    int_type uflow() override {
        return next_ == text_.size() ? traits_type::eof() : traits_type::to_int_type(text_[next_++]);
    }

  private:
    wstring text_;
    std::size_t next_ = 0;
};

/// What a stream still holds.
inline wstring rest_of(wistream& in) {
    wstring rest;
    wchar unit = 0;
    while (in.rdbuf()->sgetn(&unit, 1) == 1)
        rest.push_back(unit);
    return rest;
}

/// Calls `check(stream)` with the text in memory, in runs of one and of three units, on a stream of the
/// standard library, and unbuffered. Unbuffered streams cannot show U+FFFF, so they are left out where it
/// occurs.
template <class Check>
void on_every_stream(const wstring& text, Check check) {
    {
        SCOPED_TRACE("in memory");
        MemoryInStream stream(text);
        check(static_cast<wistream&>(stream));
    }
    for (const std::size_t run : {std::size_t{1}, std::size_t{3}}) {
        SCOPED_TRACE(run);
        DripBuffer buffer(text, run);
        wistream stream(&buffer);
        check(stream);
    }
    {
        SCOPED_TRACE("standard");
        std::basic_istringstream<wchar> stream(text);
        check(static_cast<wistream&>(stream));
    }
    if (text.find(u'\xFFFF') == wstring::npos) {
        SCOPED_TRACE("unbuffered");
        UnbufferedIn buffer(text);
        wistream stream(&buffer);
        check(stream);
    }
}

} // namespace core::test
