// SPDX-License-Identifier: Apache-2.0
#include "core/streams/text_source.h"

#include <algorithm>
#include <utility>

namespace core::detail {

TextSource::TextSource(ByteReader read, wstring name, const TextReaderOptions& options)
    : read_(std::move(read)), name_(std::move(name)), given_(options.encoding), action_(options.action),
      atOnce_(given_ ? std::max<std::size_t>(options.bufferSize, 1) : kSample) {
    constexpr std::size_t kMark = 4;
    bytes_.resize(std::max(atOnce_, kMark));
    units_.resize(std::max<std::size_t>(options.bufferSize, 1));
}

/// Reads once, behind what is at hand.
void TextSource::readOn() {
    const std::size_t count = read_(std::span(bytes_).subspan(size_, std::min(atOnce_, bytes_.size() - size_)));
    hasEnded_ = count == 0;
    size_ += count;
}

void TextSource::readAtLeast(std::size_t count) {
    while (size_ < count && !hasEnded_)
        readOn();
}

void TextSource::decode(const DetectedEncoding& found) {
    detected_ = found;
    isDecided_ = !found.isAscii;
    decoder_.emplace(found.encoding, action_, name_, before_ + used_);
}

/// The same bytes are looked at for the encoding however few a source brings at a time.
void TextSource::begin() {
    if (given_) {
        const auto mark = given_->mark();
        readAtLeast(mark.size());
        const bool isMarked = !mark.empty() && size_ >= mark.size() &&
                              std::equal(mark.begin(), mark.end(), bytes_.begin());
        used_ = isMarked ? mark.size() : 0;
        decode({*given_, 100, used_});
        return;
    }
    readAtLeast(bytes_.size());
    const DetectedEncoding found = detect_encoding(left(), hasEnded_);
    used_ = found.markSize;
    decode(found);
}

/// Replaces what has been decoded. While all has been ASCII, each block is looked at for other bytes.
void TextSource::readBlock() {
    before_ += size_;
    size_ = used_ = 0;
    if (isDecided_)
        return readOn();
    readAtLeast(bytes_.size());
    DetectedEncoding found = detect_encoding(left(), hasEnded_);
    found.markSize = 0; // it does not stand in front
    if (!found.isAscii)
        decode(found);
}

wstring_view TextSource::next() {
    if (!decoder_)
        begin();
    for (;;) {
        if (used_ == size_ && !hasEnded_)
            readBlock();
        const bool isLast = hasEnded_;
        const ConvertStep step = decoder_->decode(left(), units_, isLast);
        used_ += step.taken;
        if (step.made != 0)
            return {units_.data(), step.made};
        if (isLast && step.taken == 0)
            return {};
    }
}

const DetectedEncoding& TextSource::encoding() {
    if (!decoder_)
        begin();
    return detected_;
}

} // namespace core::detail
