// SPDX-License-Identifier: Apache-2.0
#include "host/lists/list_layout.h"

#include <algorithm>

namespace host {
namespace {

// Lists may be nested thousands deep: without an end of the indentation a small text would make a huge one.
constexpr std::size_t kMaxIndentedDepth = 64;

constexpr core::wstring_view kBlanks = u"                "; // 16

} // namespace

core::UnitSink& ListLayout::element() {
    separate();
    last_ = Last::element;
    return sink_;
}

void ListLayout::open() {
    separate();
    if (last_ != Last::nothing)
        newLine();
    sink_.write({&style_.open, 1});
    ++depth_;
    last_ = Last::open;
}

void ListLayout::close() {
    --depth_;
    if (last_ == Last::close)
        newLine();
    sink_.write({&style_.close, 1});
    last_ = Last::close;
}

void ListLayout::finish() {
    sink_.write(u"\n");
}

void ListLayout::separate() {
    if (last_ == Last::element || last_ == Last::close)
        sink_.write(u",");
}

void ListLayout::newLine() {
    sink_.write(u"\n");
    std::size_t blanks = std::min(depth_, kMaxIndentedDepth) * style_.indent;
    for (; blanks > kBlanks.size(); blanks -= kBlanks.size())
        sink_.write(kBlanks);
    sink_.write(kBlanks.substr(0, blanks));
}

} // namespace host
