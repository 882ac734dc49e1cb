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
    const std::size_t count =
        read_(std::span(bytes_).subspan(size_, std::min(atOnce_, bytes_.size() - size_)));
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

/// Looks at what is at hand for the encoding: the same bytes, however few a source brings at a time. Where
/// letters that could tell it begin in the second half, only what stands before them is taken, so that more
/// of them are at hand the next time.
DetectedEncoding TextSource::examine() {
    readAtLeast(bytes_.size());
    usable_ = size_;
    const auto tells = [](std::byte byte) {
        return byte >= std::byte{0x80} || byte == std::byte{0} || byte == std::byte{0x1B};
    };
    const auto plain = static_cast<std::size_t>(std::ranges::find_if(left(), tells) - left().begin());
    if (!hasEnded_ && plain > size_ / 2)
        usable_ = plain;
    return detect_encoding(left(), hasEnded_ && usable_ == size_);
}

void TextSource::begin() {
    if (given_) {
        const auto mark = given_->mark();
        readAtLeast(mark.size());
        usable_ = size_;
        const bool isMarked =
            !mark.empty() && size_ >= mark.size() && std::equal(mark.begin(), mark.end(), bytes_.begin());
        used_ = isMarked ? mark.size() : 0;
        decode({*given_, 100, used_});
        return;
    }
    const DetectedEncoding found = examine();
    used_ = found.markSize;
    decode(found);
}

/// Replaces what has been decoded. While all has been ASCII, each block is looked at for other bytes.
void TextSource::readBlock() {
    before_ += usable_;
    size_ = static_cast<std::size_t>(
        std::copy(bytes_.data() + usable_, bytes_.data() + size_, bytes_.data()) - bytes_.data());
    used_ = 0;
    if (isDecided_) {
        readOn();
        usable_ = size_;
        return;
    }
    DetectedEncoding found = examine();
    found.markSize = 0; // it does not stand in front
    if (!found.isAscii)
        decode(found);
}

wstring_view TextSource::next() {
    if (!decoder_)
        begin();
    for (;;) {
        if (used_ == usable_ && !(hasEnded_ && usable_ == size_))
            readBlock();
        const bool isLast = hasEnded_ && usable_ == size_;
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
