// SPDX-License-Identifier: Apache-2.0
#include "core/documents/text_manager_impl.h"

#include <core/documents/errors.h>
#include <core/documents/text_manager.h>

#include <algorithm>
#include <utility>

namespace core {

using detail::Edits;
using detail::EditStep;
using detail::PieceTree;

TextManager::TextManager(const TextManagerOptions& options)
    : impl_(std::make_unique<Impl>(*this, options.unicodeEnds)) {}

TextManager::TextManager(wstring_view text, const TextManagerOptions& options) : TextManager(options) {
    assign(text);
}

TextManager::~TextManager() = default;

TextSnapshot TextManager::text() const noexcept {
    return impl_->text.snapshot();
}

void TextManager::assign(wstring_view text) {
    impl_->assign(impl_->text.store(text));
}

void TextManager::assign(const TextSnapshot& text) {
    if (text.hasUnicodeEnds() == impl_->text.hasUnicodeEnds()) {
        // A node that has two holders is never changed.
        impl_->assign(PieceTree(detail::NodeRef::share(const_cast<detail::PieceNode*>(text.root()))));
        return;
    }
    PieceTree units; // stored again, because the ends are counted when units are stored
    for (std::uint64_t at = 0; at < text.size();) {
        const wstring_view chunk = text.chunk(at);
        units = units.followedBy(impl_->text.store(chunk));
        at += chunk.size();
    }
    impl_->assign(std::move(units));
}

void TextManager::replace(TextRange range, wstring_view text) {
    impl_->requireRange(range);
    if (range.empty() && text.empty())
        return;
    if (range.empty() && text.size() <= detail::EditedText::kShort) {
        impl_->insertShort(range.begin, text);
        return;
    }
    if (text.empty() && range.size() <= 2 && impl_->eraseCharacter(range))
        return;
    EditStep step{.kind = impl_->kindOf(range.begin, range.size(), text)};
    step.edits.push_back({range.begin, range.size(), impl_->text.store(text), {}});
    impl_->make(std::move(step));
}

void TextManager::replace(std::span<const TextReplacement> replacements) {
    Edits edits;
    edits.reserve(replacements.size());
    for (const TextReplacement& one : replacements) {
        impl_->requireRange(one.range);
        if (!one.range.empty() || !one.text.empty())
            edits.push_back({one.range.begin, one.range.size(), impl_->text.store(one.text), {}});
    }
    impl_->makeTogether(std::move(edits));
}

namespace {

/// The end for a line that is put in front of line `line`: that of the nearest line in front that has one.
[[nodiscard]] wstring_view end_near(const TextSnapshot& text, std::uint64_t line) {
    LineEnd end = text.lineEnd(line > 0 ? line - 1 : 0);
    if (end == LineEnd::none && line > 1) // the last line has none
        end = text.lineEnd(line - 2);
    return line_end_text(end == LineEnd::none ? LineEnd::lf : end);
}

} // namespace

void TextManager::insertLine(std::uint64_t line, wstring_view text) {
    const TextSnapshot now = this->text();
    wstring units(text);
    if (line == now.lineCount()) {
        units.insert(0, end_near(now, line));
        insert(now.size(), units);
    } else {
        const std::uint64_t start = now.lineStart(line);
        units += end_near(now, line);
        insert(start, units);
    }
}

void TextManager::replaceLine(std::uint64_t line, wstring_view text) {
    replace(this->text().lineRange(line), text);
}

void TextManager::removeLines(std::uint64_t line, std::uint64_t count) {
    if (count == 0)
        return;
    const TextSnapshot now = text();
    TextRange range = now.wholeLineRange(line);
    const bool last = count >= now.lineCount() - line;
    range.end = last ? now.size() : now.lineStart(line + count);
    if (last && line > 0) // what is left ends without an end
        range.begin = now.lineRange(line - 1).end;
    remove(range);
}

std::size_t TextManager::replaceAll(const TextQuery& query, wstring_view replacement) {
    TextSearch search(text(), query);
    const PieceTree plain = query.kind == TextQueryKind::regex ? PieceTree() : impl_->text.store(replacement);
    Edits edits;
    while (const auto match = search.next()) {
        PieceTree units =
            query.kind == TextQueryKind::regex ? impl_->text.store(search.expand(replacement)) : plain;
        if (!match->empty() || units.size() != 0)
            edits.push_back({match->begin, match->size(), std::move(units), {}});
    }
    const std::size_t count = edits.size();
    closeStep();
    impl_->makeTogether(std::move(edits));
    return count;
}

std::size_t TextManager::convertLineEnds(LineEnd end) {
    if (end == LineEnd::none)
        throw_error<DocumentException>(messages::kTextNoLineEnd);
    const TextSnapshot now = text();
    const PieceTree units = impl_->text.store(line_end_text(end));
    Edits edits;
    for (std::uint64_t line = 0; line + 1 < now.lineCount(); ++line) {
        const std::uint64_t from = now.lineRange(line).end;
        const LineEnd old = now.lineEnd(line);
        if (old != end)
            edits.push_back({from, line_end_text(old).size(), units, {}});
    }
    const std::size_t count = edits.size();
    impl_->makeTogether(std::move(edits));
    return count;
}

bool TextManager::undo() {
    return impl_->restore(true);
}

bool TextManager::redo() {
    return impl_->restore(false);
}

std::size_t TextManager::undoCount() const noexcept {
    return impl_->history.undoCount();
}

std::size_t TextManager::redoCount() const noexcept {
    return impl_->history.redoCount();
}

std::size_t TextManager::undoLimit() const noexcept {
    return impl_->history.limit();
}

void TextManager::setUndoLimit(std::size_t steps) noexcept {
    impl_->history.setLimit(steps);
}

void TextManager::closeStep() noexcept {
    impl_->history.closeStep();
}

void TextManager::beginGroup() noexcept {
    impl_->history.beginGroup();
}

void TextManager::endGroup() {
    if (!impl_->history.isGroupOpen())
        throw_error<DocumentException>(messages::kTextNoGroup);
    impl_->history.endGroup();
}

TextEditGroup::~TextEditGroup() {
    if (text_.isGroupOpen())
        text_.impl_->history.endGroup();
}

bool TextManager::isGroupOpen() const noexcept {
    return impl_->history.isGroupOpen();
}

void TextManager::clearSteps() {
    impl_->requireNoGroup();
    impl_->history.clear();
}

void TextManager::markSaved() {
    impl_->requireNoGroup();
    impl_->history.markSaved();
}

bool TextManager::isModified() const noexcept {
    return impl_->history.isModified();
}

} // namespace core
