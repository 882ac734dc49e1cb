// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/streams/code_page.h"

#include <core/runtime/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace core::detail {

/// Bytes that are not text.
struct ByteFault {
    std::array<std::uint8_t, 32> bytes{};
    std::size_t size = 0;
    std::size_t ahead = 0; // bytes behind them that were taken, too, and are still to be decoded
};

/// Decodes one encoding. What a run leaves it is given again, with more behind it.
class ByteDecoder {
  public:
    /// No unit is made while there is room for fewer than this, so that every character fits.
    static constexpr std::size_t kRoom = 16;

    virtual ~ByteDecoder() = default;
    ByteDecoder() = default;
    ByteDecoder(const ByteDecoder&) = delete;
    ByteDecoder& operator=(const ByteDecoder&) = delete;

    /// Moves `at` behind the bytes that it has decoded to `out`, and `out` behind the units. Returns true at
    /// bytes that do not fit: they are stored in `fault` and `at` is behind them. Otherwise either fewer than
    /// kRoom units of room are left, or all bytes are taken except for a character that is cut at the end;
    /// with `last` that does not fit, either.
    virtual bool run(const std::uint8_t*& at, const std::uint8_t* end, wchar*& out, const wchar* outEnd,
                     bool last, ByteFault& fault) = 0;
};

/// A unit that stands alone as half of a pair, or a character that the encoding does not have.
struct UnitFault {
    std::uint32_t character = 0;
};

/// Encodes one encoding. What a run leaves it is given again, with more behind it.
class UnitEncoder {
  public:
    /// No byte is made while there is room for fewer than this, so that every character fits.
    static constexpr std::size_t kRoom = 32;

    virtual ~UnitEncoder() = default;
    UnitEncoder() = default;
    UnitEncoder(const UnitEncoder&) = delete;
    UnitEncoder& operator=(const UnitEncoder&) = delete;

    /// As ByteDecoder::run(), in the other direction.
    virtual bool run(const wchar*& at, const wchar* end, std::uint8_t*& out, const std::uint8_t* outEnd,
                     bool last, UnitFault& fault) = 0;
};

/// The decoder of a page. Throws ConverterException when ICU cannot open it.
[[nodiscard]] std::unique_ptr<ByteDecoder> make_decoder(const CodePage& page);
/// The encoder of a page. Throws ConverterException when ICU cannot open it.
[[nodiscard]] std::unique_ptr<UnitEncoder> make_encoder(const CodePage& page);

// utf8_decoder.cpp, utf8_encoder.cpp, utf16_converter.cpp, table_converter.cpp, icu_converter.cpp
[[nodiscard]] std::unique_ptr<ByteDecoder> make_utf8_decoder();
[[nodiscard]] std::unique_ptr<UnitEncoder> make_utf8_encoder();
[[nodiscard]] std::unique_ptr<ByteDecoder> make_utf16_decoder(bool isBigEndian);
[[nodiscard]] std::unique_ptr<UnitEncoder> make_utf16_encoder(bool isBigEndian);
[[nodiscard]] std::unique_ptr<ByteDecoder> make_table_decoder(const PageTable& table);
[[nodiscard]] std::unique_ptr<UnitEncoder> make_table_encoder(const PageTable& table);
[[nodiscard]] std::unique_ptr<ByteDecoder> make_icu_decoder(const CodePage& page);
[[nodiscard]] std::unique_ptr<UnitEncoder> make_icu_encoder(const CodePage& page);

/// What the encoders share: takes the character at `at`. Returns 1 when it was taken whole, 0 when its second
/// half is still to come, -1 when it is half of a pair, which `character` then is.
template <class Unit>
[[nodiscard]] inline int take_character(const Unit*& at, const Unit* end, bool last,
                                        std::uint32_t& character) noexcept {
    character = *at;
    if ((character & 0xF800) != 0xD800) {
        ++at;
        return 1;
    }
    const bool leads = character < 0xDC00;
    if (leads && end - at == 1 && !last)
        return 0;
    ++at;
    if (!leads || at == end || (*at & 0xFC00) != 0xDC00)
        return -1;
    character = 0x10000 + ((character & 0x3FF) << 10) + (*at & 0x3FFU);
    ++at;
    return 1;
}

} // namespace core::detail
