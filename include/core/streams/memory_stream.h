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

/// The buffer of a MemoryInStream.
class MemoryInBuffer final : public TextBuffer {
  public:
    /// Reads `text`, which is borrowed as long as the buffer lives.
    explicit MemoryInBuffer(wstring_view text) {
        auto* const begin = const_cast<wchar*>(text.data()); // the get area is never written
        setg(begin, begin, begin + text.size());
    }
};

/// The buffer of a MemoryOutStream. It keeps what is written in pieces, so that nothing moves while the text
/// grows.
class CORE_API MemoryOutBuffer final : public TextBuffer {
  public:
    /// Makes an empty buffer; a small text needs no further memory.
    MemoryOutBuffer() { reset(); }
    /// Returns the text written so far and empties the buffer. Throws std::bad_alloc; the buffer is then
    /// unchanged.
    [[nodiscard]] wstring take();

  protected:
    /// Goes on in a new piece, with `unit` as its first unit unless that is eof. Throws std::bad_alloc.
    int_type overflow(int_type unit) override;

  private:
    static constexpr std::size_t kPiece = std::size_t{32} * 1024;

    void reset() noexcept { setp(first_.data(), first_.data() + first_.size()); }

    std::array<wchar, 512> first_; // all that a small text needs
    std::vector<std::unique_ptr<wchar[]>> more_;
};

} // namespace detail

/// Reads a text in memory. One thread at a time.
class MemoryInStream : public wistream {
  public:
    /// Reads `text`, which is borrowed as long as the stream lives.
    explicit MemoryInStream(wstring_view text) : wistream(nullptr), buffer_(text) { rdbuf(&buffer_); }
    /// Refuses a temporary, which would die before the stream.
    template <std::same_as<wstring> Temporary>
    explicit MemoryInStream(Temporary&&) = delete;

  private:
    detail::MemoryInBuffer buffer_;
};

/// Writes a text that grows in memory. When memory runs out, the writers of brace lists throw std::bad_alloc.
/// One thread at a time.
class MemoryOutStream : public wostream {
  public:
    /// Makes a stream that holds no text.
    MemoryOutStream() : wostream(nullptr) { rdbuf(&buffer_); }

    /// Returns the text written so far and empties the stream. Throws std::bad_alloc; the text is then still
    /// there.
    [[nodiscard]] wstring take() { return buffer_.take(); }

  private:
    detail::MemoryOutBuffer buffer_;
};

} // namespace core
