// SPDX-License-Identifier: Apache-2.0
#include "host/language/source.h"

#include <core/values/errors.h>

#include <algorithm>
#include <utility>

namespace core::script {

namespace {

void require_size(std::size_t size) {
    if (size > Source::kMaxSize)
        throw_error<ContextException>("IDS_SCRIPT_TOO_LARGE");
}

} // namespace

Source::Source(wstring name, wstring text) : name_(std::move(name)), text_(std::move(text)) {
    require_size(text_.size());
}

void Source::append(wstring_view line) {
    require_size(text_.size() + line.size() + 1);
    text_.append(line).append(u"\n");
}

Position Source::position(std::uint32_t offset) const noexcept {
    Position position;
    const std::size_t end = std::min<std::size_t>(offset, text_.size());
    for (std::size_t i = 0; i < end; ++i) {
        const wchar c = text_[i];
        if (c == u'\n' || (c == u'\r' && !(i + 1 < text_.size() && text_[i + 1] == u'\n'))) {
            ++position.line;
            position.column = 1;
        } else if (c != u'\r' && !(c >= 0xDC00 && c <= 0xDFFF)) {
            ++position.column;
        }
    }
    return position;
}

Span Source::line_at(std::uint32_t offset) const noexcept {
    std::size_t begin = std::min<std::size_t>(offset, text_.size());
    std::size_t end = begin;
    while (begin > 0 && !is_line_end(text_[begin - 1]))
        --begin;
    while (end < text_.size() && !is_line_end(text_[end]))
        ++end;
    return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end - begin)};
}

} // namespace core::script
