// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/csv/csv_shape.h"

#include <core/streams/converter.h>
#include <core/streams/detection.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace core {
namespace {

/// Below this certainty an encoding is not believed: to read a text in a wrong one loses it in silence.
constexpr int kBelieved = 60;
/// How much of a text is looked at.
constexpr std::size_t kEncodingSample = std::size_t{64} << 10U;

ByteReader recoded(ByteReader bytes, wstring_view name, Encoding encoding) {
    struct Recoder {
        TextReader reader;
        Encoder encoder;
    };
    const wstring text(name);
    const std::shared_ptr<Recoder> recoder(
        new Recoder{TextReader(std::move(bytes), text, {.encoding = encoding}), Encoder({}, {}, text)});
    return [recoder](std::span<std::byte> into) {
        for (;;) {
            const wstring_view units = recoder->reader.look();
            const ConvertStep step = recoder->encoder.encode(units, into, units.empty());
            recoder->reader.consume(step.taken);
            if (step.made != 0 || units.empty() || into.empty())
                return step.made;
        }
    };
}

/// Brings some bytes that were read already, and then the others.
ByteReader with_first(std::vector<std::byte> first, ByteReader others) {
    return [first = std::move(first), others = std::move(others),
            at = std::size_t{0}](std::span<std::byte> into) mutable {
        if (at == first.size())
            return others(into);
        const std::size_t count = std::min(into.size(), first.size() - at);
        std::copy_n(first.begin() + static_cast<std::ptrdiff_t>(at), count, into.begin());
        at += count;
        return count;
    };
}

} // namespace

ByteReader in_utf8(ByteReader bytes, wstring_view name, std::optional<Encoding> encoding) {
    if (!encoding) {
        std::vector<std::byte> first(kEncodingSample);
        std::size_t size = 0;
        std::size_t got = 1;
        while (got != 0 && size < kEncodingSample)
            size += got = bytes(std::span(first).subspan(size));
        first.resize(size);
        const DetectedEncoding found = detect_encoding(first, got == 0);
        encoding = found.certainty >= kBelieved ? found.encoding : Encoding();
        bytes = with_first(std::move(first), std::move(bytes));
    }
    return *encoding == Encoding() ? bytes : recoded(std::move(bytes), name, *encoding);
}

} // namespace core
