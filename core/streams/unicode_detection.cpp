// SPDX-License-Identifier: Apache-2.0
#include "core/streams/unicode_detection.h"

#include <core/streams/converter.h>

#include <algorithm>
#include <array>

namespace core::detail {
namespace {

/// How a text looks in an encoding: units of everyday text beside such as hardly any text has.
struct Look {
    std::size_t plain = 0;   // ASCII that is printed, blanks and line ends
    std::size_t others = 0;  // all other units
    std::size_t strange = 0; // controls, what stands for no character
};

/// Nothing when the bytes are not text in the encoding.
std::optional<Look> look_as(Encoding encoding, std::span<const std::byte> bytes, bool isWhole) {
    Decoder decoder(encoding, CodingErrorAction::replace);
    Look look;
    std::array<wchar, 1024> units;
    for (ConvertStep step{1, 0}; step.taken + step.made != 0;) {
        step = decoder.decode(bytes, units, isWhole);
        bytes = bytes.subspan(step.taken);
        if (decoder.faults() != 0)
            return std::nullopt;
        for (const wchar unit : std::span(units).first(step.made)) {
            const bool isPlain = (unit >= 0x20 && unit < 0x7F) || (unit >= 0x09 && unit <= 0x0D);
            const bool isStrange =
                !isPlain && (unit < 0xA0 || unit >= 0xFFFE || (unit >= 0xE000 && unit < 0xF900));
            ++(isPlain ? look.plain : isStrange ? look.strange : look.others);
        }
    }
    return look;
}

} // namespace

bool is_utf8(std::span<const std::byte> bytes, bool isWhole) {
    return look_as(Encoding(), bytes, isWhole).has_value();
}

std::optional<DetectedEncoding> detect_wide_units(std::span<const std::byte> bytes, bool isWhole) {
    // Wide units of ASCII are UTF-8, too, but with as many zeros as letters.
    if (const auto look = look_as(Encoding(), bytes, isWhole);
        look && look->strange <= (look->plain + look->others) / 4)
        return DetectedEncoding{.certainty = 60};
    DetectedEncoding best;
    std::size_t most = 0;
    // Bytes that are UTF-32 are hardly ever anything else; as UTF-16 they are full of zeros, which are
    // strange.
    for (const char16_t* const name : {u"UTF-32LE", u"UTF-32BE", u"UTF-16LE", u"UTF-16BE"}) {
        const Encoding encoding(name);
        const auto look = look_as(encoding, bytes, isWhole);
        if (!look || look->strange > (look->plain + look->others) / 50 || look->plain <= most)
            continue;
        most = look->plain;
        best = {encoding, 95};
        if (wstring_view(name).starts_with(u"UTF-32"))
            break;
    }
    return most != 0 ? std::optional(best) : std::nullopt;
}

} // namespace core::detail
