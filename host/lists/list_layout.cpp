// SPDX-License-Identifier: Apache-2.0
#include "host/lists/list_layout.h"

#include <core/streams/text_file.h>

#include <algorithm>

namespace host {
namespace {

// Lists may be nested thousands deep: without an end of the indentation a small text would make a huge one.
constexpr std::size_t kMaxIndentedDepth = 64;

constexpr core::wstring_view kBlanks = u"                "; // 16

} // namespace

core::wostream& ListLayout::element() {
    separate();
    last_ = Last::element;
    return out_;
}

void ListLayout::open() {
    separate();
    if (last_ != Last::nothing)
        newLine();
    core::put_text(out_, {&style_.open, 1});
    ++depth_;
    last_ = Last::open;
}

void ListLayout::close() {
    --depth_;
    if (last_ == Last::close)
        newLine();
    core::put_text(out_, {&style_.close, 1});
    last_ = Last::close;
}

void ListLayout::finish() {
    core::put_text(out_, u"\n");
}

void ListLayout::separate() {
    if (last_ == Last::element || last_ == Last::close)
        core::put_text(out_, u",");
}

void ListLayout::newLine() {
    core::put_text(out_, u"\n");
    std::size_t blanks = std::min(depth_, kMaxIndentedDepth) * style_.indent;
    for (; blanks > kBlanks.size(); blanks -= kBlanks.size())
        core::put_text(out_, kBlanks);
    core::put_text(out_, kBlanks.substr(0, blanks));
}

} // namespace host
