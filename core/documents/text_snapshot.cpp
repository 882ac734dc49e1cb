// SPDX-License-Identifier: Apache-2.0
#include "core/documents/piece_search.h"

#include <core/documents/errors.h>
#include <core/documents/text_snapshot.h>
#include <core/strings/integer_text.h>

#include <algorithm>
#include <array>
#include <utility>

namespace core {

TextSnapshot::TextSnapshot(const detail::PieceNode* root, bool unicodeEnds) noexcept
    : root_(root), unicodeEnds_(unicodeEnds) {
    if (root_ != nullptr)
        root_->hold();
}

TextSnapshot::TextSnapshot(const TextSnapshot& other) noexcept
    : TextSnapshot(other.root_, other.unicodeEnds_) {}

TextSnapshot::TextSnapshot(TextSnapshot&& other) noexcept
    : root_(std::exchange(other.root_, nullptr)), unicodeEnds_(other.unicodeEnds_) {}

TextSnapshot& TextSnapshot::operator=(TextSnapshot other) noexcept {
    std::swap(root_, other.root_);
    unicodeEnds_ = other.unicodeEnds_;
    return *this;
}

TextSnapshot::~TextSnapshot() {
    if (root_ != nullptr)
        root_->release();
}

void TextSnapshot::requireOffset(std::uint64_t offset) const {
    if (offset > size())
        throw_error<DocumentException>(messages::kTextOffset, {string_intto(offset), string_intto(size())});
}

void TextSnapshot::requireRange(TextRange range) const {
    if (range.begin > range.end)
        throw_error<DocumentException>(messages::kTextRange,
                                       {string_intto(range.begin), string_intto(range.end)});
    requireOffset(range.end);
}

void TextSnapshot::requireLine(std::uint64_t line) const {
    if (line >= lineCount())
        throw_error<DocumentException>(messages::kTextLine,
                                       {string_intto(line + 1), string_intto(lineCount())});
}

std::uint64_t TextSnapshot::size() const noexcept {
    return root_ != nullptr ? root_->sum().units : 0;
}

wchar TextSnapshot::unit(std::uint64_t offset) const {
    requireRange({offset, offset + 1});
    return run_at(root_, offset).from(offset).front();
}

wstring TextSnapshot::text(TextRange range) const {
    requireRange(range);
    wstring text;
    text.reserve(static_cast<std::size_t>(std::min<std::uint64_t>(range.size(), text.max_size())));
    for (std::uint64_t at = range.begin; at < range.end;) {
        const wstring_view units = chunk(at).substr(
            0, static_cast<std::size_t>(std::min<std::uint64_t>(range.end - at, wstring_view::npos)));
        text += units;
        at += units.size();
    }
    return text;
}

wstring_view TextSnapshot::chunk(std::uint64_t offset) const {
    requireOffset(offset);
    return run_at(root_, offset).from(offset);
}

std::uint64_t TextSnapshot::lineCount() const noexcept {
    return root_ != nullptr ? root_->sum().ends + 1 : 1;
}

/// The offset of the first unit of the line's end; the end of the text for the last line.
std::uint64_t TextSnapshot::endAt(std::uint64_t line) const noexcept {
    return line + 1 < lineCount() ? detail::find_end(root_, line).offset : size();
}

/// The end that begins at an offset.
LineEnd TextSnapshot::kindAt(std::uint64_t end) const noexcept {
    if (end == size())
        return LineEnd::none;
    const detail::UnitRun run = run_at(root_, end);
    const auto at = static_cast<std::size_t>(end - run.offset);
    switch (run.text[at]) {
    case u'\n':
        return LineEnd::lf;
    case u'\u2028':
        return LineEnd::line;
    case u'\u2029':
        return LineEnd::paragraph;
    default:
        break;
    }
    const wstring_view next =
        at + 1 < run.text.size() ? run.text.substr(at + 1) : run_at(root_, end + 1).text;
    return !next.empty() && next.front() == u'\n' ? LineEnd::crlf : LineEnd::cr;
}

std::uint64_t TextSnapshot::lineStart(std::uint64_t line) const {
    requireLine(line);
    if (line == 0)
        return 0;
    const detail::FoundEnd end = detail::find_end(root_, line - 1);
    return end.offset + end.count;
}

TextRange TextSnapshot::lineRange(std::uint64_t line) const {
    return {lineStart(line), endAt(line)};
}

TextRange TextSnapshot::wholeLineRange(std::uint64_t line) const {
    const std::uint64_t begin = lineStart(line);
    const std::uint64_t end = endAt(line);
    return {begin, end + line_end_text(kindAt(end)).size()};
}

LineEnd TextSnapshot::lineEnd(std::uint64_t line) const {
    requireLine(line);
    return kindAt(endAt(line));
}

std::uint64_t TextSnapshot::lineOf(std::uint64_t offset) const {
    requireOffset(offset);
    return offset == size() ? lineCount() - 1 : detail::line_of(root_, offset);
}

TextPosition TextSnapshot::position(std::uint64_t offset) const {
    const std::uint64_t line = lineOf(offset);
    return {line, offset - lineStart(line)};
}

std::uint64_t TextSnapshot::offset(TextPosition position) const {
    const TextRange line = lineRange(position.line);
    return line.begin + std::min(position.column, line.size());
}

LineEnd TextSnapshot::commonLineEnd() const {
    std::array<std::uint64_t, 6> counts{};
    for (std::uint64_t line = 0; line + 1 < lineCount(); ++line)
        ++counts[static_cast<std::size_t>(lineEnd(line))];
    counts[static_cast<std::size_t>(LineEnd::none)] = 0;
    const auto most = std::max_element(counts.begin() + 1, counts.end());
    return *most == 0 ? LineEnd::lf : static_cast<LineEnd>(most - counts.begin());
}

bool operator==(const TextSnapshot& left, const TextSnapshot& right) noexcept {
    if (left.root_ == right.root_)
        return true;
    if (left.size() != right.size())
        return false;
    detail::UnitRun a;
    detail::UnitRun b;
    for (std::uint64_t at = 0; at < left.size();) {
        if (at >= a.offset + a.text.size())
            a = run_at(left.root_, at);
        if (at >= b.offset + b.text.size())
            b = run_at(right.root_, at);
        const wstring_view first = a.from(at);
        const wstring_view second = b.from(at);
        const std::size_t count = std::min(first.size(), second.size());
        if (first.substr(0, count) != second.substr(0, count))
            return false;
        at += count;
    }
    return true;
}

} // namespace core
