// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/lists/run_read.h"
#include "core/streams/unit_sink.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>

#include <cstddef>

namespace core::detail {

/// The ways into readers and writers for what is read or written in one piece: a token, or a whole list that
/// holds no list. Where the units at hand or the room do not suffice nothing happens, and the answer is
/// false: the caller goes token by token then.
struct ListRun {
    /// Returns what writes the compact form, or null in text.
    [[nodiscard]] static CompactWriter* compact(const ListOutStream& out) noexcept { return out.compact_; }
    /// Returns what reads the compact form, or null in text.
    [[nodiscard]] static CompactReader* compact(const ListInStream& in) noexcept { return in.compact_; }

    /// `read` is given the units at hand, behind the gap if there is to be one, and returns the end of what
    /// it read, or null.
    template <class Read>
    static bool read(ListInStream& in, bool gap, Read read) {
        TextBuffer* const runs = in.runs_;
        if (runs == nullptr)
            return false;
        const wchar* const end = runs->readEnd();
        const wchar* at = runs->readBegin();
        if (gap)
            at = run_gap(at, end, in.commaExpected_);
        if (at == nullptr || (at = read(at, end)) == nullptr)
            return false;
        runs->readTo(at);
        return true;
    }

    /// Reads an element.
    template <class Read>
    [[nodiscard]] static bool get(ListInStream& in, Read read) {
        const bool done = ListRun::read(in, true, read);
        in.commaExpected_ = in.commaExpected_ || done;
        return done;
    }

    /// Writes a list. `format` is given where its content goes, up to `limit` units, and
    /// returns the end of it, or null.
    template <class Format>
    [[nodiscard]] static bool putList(ListOutStream& out, std::size_t limit, Format format) {
        constexpr std::size_t kAround = 4;
        const bool written = out.sink().formatInPlace(limit + kAround, [&](wchar* at) -> wchar* {
            if (out.commaPending_)
                *at++ = u',';
            if (!out.atStart_)
                *at++ = u'\n';
            *at++ = u'{';
            if ((at = format(at)) != nullptr)
                *at++ = u'}';
            return at;
        });
        if (written) {
            out.endToken();
            out.justClosed_ = true;
        }
        return written;
    }
};

} // namespace core::detail
