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

std::streamsize TextBuffer::xsputn(const wchar* units, std::streamsize count) {
    std::streamsize done = 0;
    while (done < count) {
        if (pptr() == epptr() && traits_type::eq_int_type(overflow(traits_type::eof()), traits_type::eof()))
            break;
        if (pptr() == epptr()) // a buffer without room takes single units
            return done + std::basic_streambuf<wchar>::xsputn(units + done, count - done);
        const auto part = std::min<std::streamsize>(count - done, epptr() - pptr());
        wroteTo(std::copy_n(units + done, part, pptr()));
        done += part;
    }
    return done;
}

} // namespace core
