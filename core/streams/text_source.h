// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/code_hold.h>
#include <core/streams/text_reader.h>

#include <optional>
#include <vector>

namespace core::detail {

/// The units of a text, as its bytes come: finds the encoding, skips the mark, decodes.
class TextSource {
  public:
    TextSource(ByteReader read, wstring name, const TextReaderOptions& options);

    /// The next units, borrowed until the next call; empty at the end. What stands before a fault comes
    /// first, and every later call throws.
    wstring_view next();
    const DetectedEncoding& encoding();
    [[nodiscard]] std::uint64_t bytesRead() const noexcept { return before_ + size_; }
    [[nodiscard]] std::uint64_t faults() const noexcept { return decoder_ ? decoder_->faults() : 0; }
    [[nodiscard]] std::uint64_t firstFault() const noexcept { return decoder_ ? decoder_->firstFault() : 0; }

  private:
    static constexpr std::size_t kSample = std::size_t{64} << 10;

    [[nodiscard]] std::span<const std::byte> left() const noexcept {
        return std::span(bytes_).first(usable_).subspan(used_);
    }
    void readOn();
    void readAtLeast(std::size_t count);
    void begin();
    DetectedEncoding examine();
    void readBlock();
    void decode(const DetectedEncoding& found);

    HeldFunction<ByteReader> read_;
    wstring name_;
    std::optional<Encoding> given_;
    CodingErrorAction action_;
    std::size_t atOnce_;           // bytes
    std::vector<std::byte> bytes_; // those at hand
    std::vector<wchar> units_;
    std::size_t size_ = 0;
    std::size_t usable_ = 0;   // of those, what the encoding that is known decodes
    std::size_t used_ = 0;     // and what has been decoded
    std::uint64_t before_ = 0; // bytes of the text before those at hand
    bool hasEnded_ = false;
    bool isDecided_ = false; // whether the encoding is known, and not only that it is like ASCII so far
    DetectedEncoding detected_;
    std::optional<Decoder> decoder_;
};

} // namespace core::detail
