// SPDX-License-Identifier: Apache-2.0
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/presentation/rect.h>

namespace core {

void to_stream(ListOutStream& out, const Rect& rect) {
    out.putBeginOfList();
    for (const std::int32_t edge : {rect.left, rect.top, rect.right, rect.bottom})
        out.put(edge);
    out.putEndOfList();
}

void from_stream(ListInStream& in, Rect& rect) {
    Rect read;
    in.getBeginOfList();
    for (std::int32_t* const edge : {&read.left, &read.top, &read.right, &read.bottom})
        in.get(*edge);
    in.getEndOfList();
    rect = read;
}

} // namespace core
