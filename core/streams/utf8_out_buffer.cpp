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

struct Utf8OutBuffer::Block {
    static constexpr std::size_t kSize = std::size_t{16} * 1024;

    wchar units[kSize];
    std::uint8_t bytes[3 * kSize];
    std::uint64_t before = 0; // bytes written before this block
};

Utf8OutBuffer::Utf8OutBuffer(ByteWriter write, wstring name)
    : write_(std::move(write)), name_(std::move(name)), block_(new Block) {
    setp(block_->units, block_->units + Block::kSize);
}

Utf8OutBuffer::~Utf8OutBuffer() = default;

void Utf8OutBuffer::encode(bool last) {
    Block& block = *block_;
    const wchar* at = block.units;
    const wchar* const end = writeBegin();
    std::uint8_t* out = block.bytes;
    while (at != end) {
        if (*at < 0x80) {
            *out++ = static_cast<std::uint8_t>(*at++);
            continue;
        }
        UChar32 character = *at++;
        if (U16_IS_SURROGATE(character)) {
            if (U16_IS_SURROGATE_LEAD(character) && at == end && !last) {
                --at; // its other half is still to come
                break;
            }
            if (!U16_IS_SURROGATE_LEAD(character) || at == end || !U16_IS_TRAIL(*at)) {
                const auto offset = block.before + static_cast<std::size_t>(out - block.bytes);
                throw_error<ConverterException>(messages::kTextNotUtf16, {name_, string_intto(offset)});
            }
            character = U16_GET_SUPPLEMENTARY(character, *at);
            ++at;
        }
        std::size_t length = 0;
        U8_APPEND_UNSAFE(out, length, character);
        out += length;
    }
    const auto size = static_cast<std::size_t>(out - block.bytes);
    write_(std::as_bytes(std::span(block.bytes, size)));
    block.before += size;
    const auto left = static_cast<std::size_t>(end - at);
    std::copy_n(at, left, block.units);
    setp(block.units + left, block.units + Block::kSize);
}

void Utf8OutBuffer::write(bool last) {
    if (error_ != nullptr)
        std::rethrow_exception(error_);
    try {
        encode(last);
    } catch (...) {
        error_ = std::current_exception();
        throw;
    }
}

Utf8OutBuffer::int_type Utf8OutBuffer::overflow(int_type unit) {
    write(false);
    if (!traits_type::eq_int_type(unit, traits_type::eof())) {
        *writeBegin() = traits_type::to_char_type(unit);
        wroteTo(writeBegin() + 1);
    }
    return traits_type::not_eof(unit);
}

int Utf8OutBuffer::sync() {
    write(false);
    return 0;
}

void Utf8OutBuffer::finish() {
    write(true);
}

} // namespace core::detail
