// SPDX-License-Identifier: Apache-2.0
#include "core/lists/malformed.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/presentation/border.h>
#include <core/runtime/exception.h>
#include <core/strings/integer_text.h>

namespace core {
namespace {

constexpr const char* kLines[] = {"IDS_LINE_NONE",   "IDS_LINE_SOLID",    "IDS_LINE_DOTTED",
                                  "IDS_LINE_DASHED", "IDS_LINE_DASH_DOT", "IDS_LINE_DASH_DOT_DOT",
                                  "IDS_LINE_DOUBLE"};
constexpr const char* kBorders[] = {"IDS_BORDER_AUTO", "IDS_BORDER_LINES", "IDS_BORDER_RAISED",
                                    "IDS_BORDER_SUNKEN", "IDS_BORDER_ROUNDED"};

} // namespace

wstring LumLine::presentation() const {
    wstring text = message_text(kLines[static_cast<std::size_t>(kind)]);
    if (!isVisible())
        return text;
    text.append(u", ").append(string_intto(width));
    if (!color.isAutomatic())
        text.append(u", ").append(color.presentation());
    return text;
}

wstring LumBorder::presentation() const {
    wstring text = message_text(kBorders[static_cast<std::size_t>(kind)]);
    if (kind != BorderKind::automatic && isUniform())
        text.append(u": ").append(sides[0].presentation());
    return text;
}

void to_stream(ListOutStream& out, const LumLine& line) {
    out.putBeginOfList();
    out.put(static_cast<std::int32_t>(line.kind));
    out.put(line.width);
    to_stream(out, line.color);
    out.putEndOfList();
}

void from_stream(ListInStream& in, LumLine& line) {
    LumLine read;
    std::int32_t kind = 0;
    in.getBeginOfList();
    in.get(kind);
    in.get(read.width);
    from_stream(in, read.color);
    in.getEndOfList();
    read.kind = static_cast<LineKind>(kind);
    if (!read.isValid())
        throw_malformed();
    line = read;
}

void to_stream(ListOutStream& out, const LumBorder& border) {
    out.putBeginOfList();
    out.put(static_cast<std::int32_t>(border.kind));
    for (const LumLine& line : border.sides)
        to_stream(out, line);
    out.putEndOfList();
}

void from_stream(ListInStream& in, LumBorder& border) {
    LumBorder read;
    std::int32_t kind = 0;
    in.getBeginOfList();
    in.get(kind);
    for (LumLine& line : read.sides)
        from_stream(in, line);
    in.getEndOfList();
    read.kind = static_cast<BorderKind>(kind);
    if (!read.isValid())
        throw_malformed();
    border = read;
}

} // namespace core
