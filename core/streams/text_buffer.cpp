// SPDX-License-Identifier: Apache-2.0
#include <core/streams/text_buffer.h>

#include <algorithm>

namespace core {

std::streamsize TextBuffer::xsgetn(wchar* units, std::streamsize count) {
    std::streamsize done = 0;
    while (done < count && fill()) {
        const auto part = std::min<std::streamsize>(count - done, readEnd() - readBegin());
        std::copy_n(readBegin(), part, units + done);
        readTo(readBegin() + part);
        done += part;
    }
    return done;
}

} // namespace core
