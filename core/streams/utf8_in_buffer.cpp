// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/errors.h>
#include <core/streams/errors.h>
#include <core/streams/text_file.h>
#include <core/strings/integer_text.h>

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace core::detail {

struct Utf8InBuffer::Block {
    static constexpr std::size_t kSize = std::size_t{64} << 10;

    std::uint8_t bytes[kSize];
    wchar units[kSize];       // a byte makes one unit at the most
    std::size_t size = 0;     // of the bytes at hand
    std::size_t used = 0;     // of those, decoded
    std::uint64_t before = 0; // bytes of the text before this block
    bool ended = false;
};

Utf8InBuffer::Utf8InBuffer(ByteReader read, wstring name)
    : read_(std::move(read)), name_(std::move(name)), block_(new Block) {}

Utf8InBuffer::~Utf8InBuffer() = default;

/// Keeps the beginning of a character that the last block has cut, and reads on.
/// False at the end of the text.
bool Utf8InBuffer::readBlock() {
    Block& block = *block_;
    block.before += block.used;
    block.size -= block.used;
    std::memmove(block.bytes, block.bytes + block.used, block.size);
    block.used = 0;
    // The cut character, and in the first block a byte order mark, must be there whole.
    constexpr std::size_t kEnough = 4;
    while (block.size < kEnough && !block.ended) {
        const std::size_t count = read_(std::as_writable_bytes(std::span(block.bytes).subspan(block.size)));
        block.ended = count == 0;
        block.size += count;
    }
    constexpr std::uint8_t kMark[] = {0xEF, 0xBB, 0xBF};
    if (block.before == 0 && block.size >= std::size(kMark) &&
        std::equal(std::begin(kMark), std::end(kMark), block.bytes))
        block.used = std::size(kMark);
    return block.size != block.used;
}

void Utf8InBuffer::decode() {
    Block& block = *block_;
    const std::uint8_t* const bytes = block.bytes;
    std::size_t end = block.size;
    if (!block.ended)
        U8_TRUNCATE_IF_INCOMPLETE(bytes, block.used, end);
    std::size_t at = block.used;
    wchar* out = block.units;
    while (at != end) {
        constexpr std::size_t kStep = 16;
        std::uint64_t words[2];
        while (end - at >= kStep) {
            std::memcpy(words, bytes + at, kStep);
            if (((words[0] | words[1]) & 0x8080808080808080U) != 0)
                break;
            std::copy_n(bytes + at, kStep, out);
            at += kStep;
            out += kStep;
        }
        if (at == end)
            break;
        const std::size_t begin = at;
        UChar32 character = 0;
        U8_NEXT(bytes, at, end, character);
        if (character < 0) {
            if (out != block.units) { // first what stands before it
                at = begin;
                break;
            }
            throw_error<ConverterException>(messages::kTextNotUtf8,
                                            {name_, string_intto(block.before + begin)});
        }
        std::size_t length = 0;
        U16_APPEND_UNSAFE(out, length, character);
        out += length;
    }
    block.used = at;
    setg(block.units, block.units, out);
}

Utf8InBuffer::int_type Utf8InBuffer::underflow() {
    const Block& block = *block_;
    while (gptr() == egptr()) {
        if ((block.used == block.size || !block.ended) && !readBlock())
            return traits_type::eof();
        decode();
    }
    return traits_type::to_int_type(*gptr());
}

} // namespace core::detail
