// SPDX-License-Identifier: Apache-2.0
#include "core/streams/converters.h"
#include "core/streams/utf8_blocks.h"

#include <unicode/utf8.h>

#include <algorithm>

namespace core::detail {
namespace {

class Utf8Encoder final : public UnitEncoder {
  public:
    bool run(const wchar*& at, const wchar* end, std::uint8_t*& out, const std::uint8_t* outEnd, bool last,
             UnitFault& fault) override {
        while (at != end && outEnd - out >= std::ptrdiff_t{kRoom}) {
            // A unit makes three bytes at the most, so up to here no room has to be asked for.
            const wchar* const safe = at + std::min(end - at, (outEnd - out) / 3);
            encodeShort(at, safe, out);
            if (at == safe)
                continue;
            std::uint32_t character = 0;
            if (const int result = take_character(at, end, last, character); result != 1) {
                fault.character = character;
                return result < 0;
            }
            std::size_t length = 0;
            U8_APPEND_UNSAFE(out, length, character);
            out += length;
        }
        return false;
    }

  private:
    /// What takes up to three bytes, up to half of a pair.
    static void encodeShort(const wchar*& at, const wchar* end, std::uint8_t*& out) noexcept {
        while (at != end) {
            encode_short(at, end, out);
            // What stopped it, and some units behind that, one by one. Bytes could lie anywhere, also in the
            // pointers, so that these are copied to where nothing else leads.
            const wchar* from = at;
            const wchar* const some = from + std::min<std::ptrdiff_t>(end - from, 16);
            std::uint8_t* to = out;
            while (from != some && (*from & 0xF800) != 0xD800)
                to = encodeOne(*from++, to);
            at = from;
            out = to;
            if (from != some)
                return;
        }
    }
    static std::uint8_t* encodeOne(wchar unit, std::uint8_t* out) noexcept {
        if (unit >= 0x800) {
            out[0] = static_cast<std::uint8_t>(0xE0 | unit >> 12);
            out[1] = static_cast<std::uint8_t>(0x80 | (unit >> 6 & 0x3F));
            out[2] = static_cast<std::uint8_t>(0x80 | (unit & 0x3F));
            return out + 3;
        }
        if (unit < 0x80) {
            *out = static_cast<std::uint8_t>(unit);
            return out + 1;
        }
        out[0] = static_cast<std::uint8_t>(0xC0 | unit >> 6);
        out[1] = static_cast<std::uint8_t>(0x80 | (unit & 0x3F));
        return out + 2;
    }
};

} // namespace

std::unique_ptr<UnitEncoder> make_utf8_encoder() {
    return std::make_unique<Utf8Encoder>();
}

} // namespace core::detail
