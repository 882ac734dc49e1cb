// SPDX-License-Identifier: Apache-2.0
#include "core/streams/converters.h"

#include <algorithm>

namespace core::detail {
namespace {

/// UTF-16 in one of the two orders of bytes. Halves of pairs that stand alone do not fit.
class Utf16Decoder final : public ByteDecoder {
  public:
    explicit Utf16Decoder(bool isBigEndian) noexcept : first_(isBigEndian ? 8 : 0), second_(8 - first_) {}

    bool run(const std::uint8_t*& at, const std::uint8_t* end, wchar*& out, const wchar* outEnd, bool last,
             ByteFault& fault) override {
        while (end - at >= 2 && outEnd - out >= std::ptrdiff_t{kRoom}) {
            const wchar unit = unitAt(at);
            if ((unit & 0xF800) != 0xD800) {
                *out++ = unit;
                at += 2;
                continue;
            }
            if (unit < 0xDC00 && end - at < 4 && !last)
                return false;
            if (unit >= 0xDC00 || end - at < 4 || (unitAt(at + 2) & 0xFC00) != 0xDC00)
                return fail(at, at + 2, fault);
            *out++ = unit;
            *out++ = unitAt(at + 2);
            at += 4;
        }
        return end - at == 1 && last && outEnd - out >= std::ptrdiff_t{kRoom} && fail(at, end, fault);
    }

  private:
    [[nodiscard]] wchar unitAt(const std::uint8_t* at) const noexcept {
        return static_cast<wchar>(at[0] << first_ | at[1] << second_);
    }
    static bool fail(const std::uint8_t*& at, const std::uint8_t* end, ByteFault& fault) noexcept {
        fault.size = static_cast<std::size_t>(end - at);
        std::copy(at, end, fault.bytes.begin());
        at = end;
        return true;
    }

    int first_;  // where the bits of the first byte stand
    int second_; // and those of the second
};

class Utf16Encoder final : public UnitEncoder {
  public:
    explicit Utf16Encoder(bool isBigEndian) noexcept : first_(isBigEndian ? 8 : 0), second_(8 - first_) {}

    bool run(const wchar*& at, const wchar* end, std::uint8_t*& out, const std::uint8_t* outEnd, bool last,
             UnitFault& fault) override {
        while (at != end && outEnd - out >= std::ptrdiff_t{kRoom}) {
            const wchar* const begin = at;
            if (const int result = take_character(at, end, last, fault.character); result != 1)
                return result < 0;
            for (const wchar* unit = begin; unit != at; ++unit) {
                *out++ = static_cast<std::uint8_t>(*unit >> first_);
                *out++ = static_cast<std::uint8_t>(*unit >> second_);
            }
        }
        return false;
    }

  private:
    int first_;
    int second_;
};

} // namespace

std::unique_ptr<ByteDecoder> make_utf16_decoder(bool isBigEndian) {
    return std::make_unique<Utf16Decoder>(isBigEndian);
}

std::unique_ptr<UnitEncoder> make_utf16_encoder(bool isBigEndian) {
    return std::make_unique<Utf16Encoder>(isBigEndian);
}

} // namespace core::detail
