// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/text_buffer.h>

#include <array>
#include <concepts>
#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

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

/// Keeps what is written in pieces, so that nothing is moved while the text grows.
class CORE_API MemoryOutBuffer final : public TextBuffer {
  public:
    MemoryOutBuffer() { reset(); }
    [[nodiscard]] wstring take();

  protected:
    int_type overflow(int_type unit) override;

  private:
    static constexpr std::size_t kPiece = 32 * 1024;

    void reset() noexcept { setp(first_.data(), first_.data() + first_.size()); }

    std::array<wchar, 512> first_; // all that a small text needs
    std::vector<std::unique_ptr<wchar[]>> more_;
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
