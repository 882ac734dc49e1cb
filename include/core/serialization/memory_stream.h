// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/serialization/text_buffer.h>

#include <concepts>
#include <istream>
#include <ostream>
#include <string>

/// Streams over text in memory, which is neither copied in nor out.
namespace core {

namespace detail {

class MemoryInBuffer final : public TextBuffer {
  public:
    explicit MemoryInBuffer(wstring_view text) {
        auto* const begin = const_cast<wchar*>(text.data()); // the get area is never written
        setg(begin, begin, begin + text.size());
    }
};

class CORE_API MemoryOutBuffer final : public TextBuffer {
  public:
    [[nodiscard]] wstring take();

  protected:
    int_type overflow(int_type unit) override;
    std::streamsize xsputn(const wchar* units, std::streamsize count) override;

  private:
    void grow(std::size_t more);
    [[nodiscard]] std::size_t used() const noexcept {
        return text_.empty() ? 0 : static_cast<std::size_t>(pptr() - text_.data());
    }

    wstring text_; // written up to pptr(), room behind
};

} // namespace detail

/// Reads a text that outlives the stream.
class MemoryInStream : public wistream {
  public:
    explicit MemoryInStream(wstring_view text) : wistream(nullptr), buffer_(text) { rdbuf(&buffer_); }
    template <std::same_as<wstring> Temporary>
    explicit MemoryInStream(Temporary&&) = delete; // it would not outlive the stream

  private:
    detail::MemoryInBuffer buffer_;
};

/// Writes a text that grows in memory. Running out of memory throws std::bad_alloc out of the writers.
class MemoryOutStream : public wostream {
  public:
    MemoryOutStream() : wostream(nullptr) { rdbuf(&buffer_); }

    /// The text written so far; the stream is empty again.
    [[nodiscard]] wstring take() { return buffer_.take(); }

  private:
    detail::MemoryOutBuffer buffer_;
};

} // namespace core
