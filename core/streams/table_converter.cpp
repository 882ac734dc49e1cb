// SPDX-License-Identifier: Apache-2.0
#include "core/streams/converters.h"

#include <algorithm>

namespace core::detail {
namespace {

/// A page with one byte a character.
class TableDecoder final : public ByteDecoder {
  public:
    explicit TableDecoder(const PageTable& table) noexcept : table_(table) {}

    bool run(const std::uint8_t*& at, const std::uint8_t* end, wchar*& out, const wchar* outEnd, bool,
             ByteFault& fault) override {
        std::ptrdiff_t left = std::min(end - at, outEnd - out);
        constexpr std::ptrdiff_t kStep = 32;
        for (; left >= kStep; left -= kStep, at += kStep, out += kStep) {
            for (std::ptrdiff_t i = 0; i < kStep; ++i)
                out[i] = table_.units[at[i]];
            if (table_.hasHoles && std::find(out, out + kStep, PageTable::kNoUnit) != out + kStep)
                break;
        }
        for (; left > 0; --left) {
            const wchar unit = table_.units[*at++];
            if (unit == PageTable::kNoUnit) {
                fault.bytes[0] = at[-1];
                fault.size = 1;
                return true;
            }
            *out++ = unit;
        }
        return false;
    }

  private:
    const PageTable& table_;
};

class TableEncoder final : public UnitEncoder {
  public:
    explicit TableEncoder(const PageTable& table) noexcept : table_(table) {}

    bool run(const wchar*& at, const wchar* end, std::uint8_t*& out, const std::uint8_t* outEnd, bool last,
             UnitFault& fault) override {
        for (std::ptrdiff_t left = std::min(end - at, outEnd - out); left > 0; --left) {
            const std::uint8_t byte = table_.byteOf(*at);
            if (table_.units[byte] != *at || *at == PageTable::kNoUnit)
                return take_character(at, end, last, fault.character) != 0;
            *out++ = byte;
            ++at;
        }
        return false;
    }

  private:
    const PageTable& table_;
};

} // namespace

std::unique_ptr<ByteDecoder> make_table_decoder(const PageTable& table) {
    return std::make_unique<TableDecoder>(table);
}

std::unique_ptr<UnitEncoder> make_table_encoder(const PageTable& table) {
    return std::make_unique<TableEncoder>(table);
}

} // namespace core::detail
