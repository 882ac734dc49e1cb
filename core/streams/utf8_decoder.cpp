// SPDX-License-Identifier: Apache-2.0
#include "core/streams/converters.h"
#include "core/streams/utf8_blocks.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>

namespace core::detail {
namespace {

/// A character of three bytes at `at`; 0 for anything else.
std::uint32_t three_bytes(const std::uint8_t* at) noexcept {
    if ((at[0] & 0xF0) != 0xE0 || (at[1] & 0xC0) != 0x80 || (at[2] & 0xC0) != 0x80)
        return 0;
    const std::uint32_t character = (at[0] & 0x0FU) << 12 | (at[1] & 0x3FU) << 6 | (at[2] & 0x3FU);
    return character < 0x800 || (character & 0xF800) == 0xD800 ? 0 : character;
}

class Utf8Decoder final : public ByteDecoder {
  public:
    bool run(const std::uint8_t*& at, const std::uint8_t* end, wchar*& out, const wchar* outEnd, bool last,
             ByteFault& fault) override {
        while (at != end && outEnd - out >= std::ptrdiff_t{kRoom}) {
            // No byte makes more than one unit, so up to here no room has to be asked for.
            const std::uint8_t* const safe = at + std::min(end - at, outEnd - out);
            decode_short(at, safe, out);
            for (std::uint32_t character = 0; safe - at >= 3 && (character = three_bytes(at)) != 0; at += 3)
                *out++ = static_cast<wchar>(character);
            if (at == end || outEnd - out < std::ptrdiff_t{kRoom})
                break;
            if (const int result = takeOne(at, end, out, last, fault); result != 1)
                return result < 0;
        }
        return false;
    }

  private:
    /// 1 for a character, 0 for one that is cut, -1 for what does not fit.
    static int takeOne(const std::uint8_t*& at, const std::uint8_t* end, wchar*& out, bool last,
                       ByteFault& fault) {
        const auto size = static_cast<std::int32_t>(std::min<std::ptrdiff_t>(end - at, 4));
        std::int32_t taken = 0;
        UChar32 character = 0;
        U8_NEXT(at, taken, size, character);
        if (character < 0) {
            if (!last && taken == size && U8_IS_LEAD(at[0]) && size <= U8_COUNT_TRAIL_BYTES(at[0]))
                return 0;
            fault.size = static_cast<std::size_t>(taken);
            std::copy_n(at, taken, fault.bytes.begin());
            at += taken;
            return -1;
        }
        at += taken;
        std::size_t length = 0;
        U16_APPEND_UNSAFE(out, length, character);
        out += length;
        return 1;
    }
};

} // namespace

std::unique_ptr<ByteDecoder> make_utf8_decoder() {
    return std::make_unique<Utf8Decoder>();
}

} // namespace core::detail
