// SPDX-License-Identifier: Apache-2.0
#include "host/exchange/files/recoded.h"

#include <memory>
#include <utility>

namespace host {

core::ByteReader in_utf8(core::ByteReader bytes, core::wstring_view name,
                         std::optional<core::Encoding> encoding) {
    if (encoding == core::Encoding())
        return bytes;
    struct Recoder {
        core::TextReader reader;
        core::Encoder encoder;
    };
    const core::wstring text(name);
    const std::shared_ptr<Recoder> recoder(new Recoder{
        core::TextReader(std::move(bytes), text, {.encoding = encoding}), core::Encoder({}, {}, text)});
    return [recoder](std::span<std::byte> into) {
        for (;;) {
            const core::wstring_view units = recoder->reader.look();
            const core::ConvertStep step = recoder->encoder.encode(units, into, units.empty());
            recoder->reader.consume(step.taken);
            if (step.made != 0 || units.empty() || into.empty())
                return step.made;
        }
    };
}

} // namespace host
