// SPDX-License-Identifier: Apache-2.0
#include "core/streams/ends_line.h"
#include "core/streams/text_source.h"

#include <core/runtime/errors.h>
#include <core/streams/text_reader.h>

#include <algorithm>
#include <utility>

namespace core {

struct TextReader::State {
    State(ByteReader read, wstring name, const TextReaderOptions& options)
        : source(std::move(read), std::move(name), options), unicodeEnds(options.unicodeEnds) {}

    bool look() {
        if (atHand.empty())
            atHand = source.next();
        return !atHand.empty();
    }
    /// The part of what is at hand before the next line end.
    [[nodiscard]] std::size_t toLineEnd(wstring_view text) const noexcept {
        const wchar* const end = text.data() + text.size();
        const wchar* const found = unicodeEnds ? detail::find_unit<detail::EndsUnicodeLine>(text.data(), end)
                                               : detail::find_unit<detail::EndsLine>(text.data(), end);
        return static_cast<std::size_t>(found - text.data());
    }
    void take(std::size_t count) noexcept {
        position += count;
        atHand.remove_prefix(count);
    }
    /// Takes units and counts the lines that end in them.
    void takeLines(std::size_t count) noexcept {
        const wstring_view taken = atHand.substr(0, count);
        for (std::size_t at = toLineEnd(taken); at < taken.size();
             at += 1 + toLineEnd(taken.substr(at + 1))) {
            const bool isSecond = taken[at] == u'\n' && (at > 0 ? taken[at - 1] == u'\r' : endedWithCr);
            line += isSecond ? 0U : 1U;
        }
        if (!taken.empty())
            endedWithCr = taken.back() == u'\r';
        take(count);
    }
    /// Takes the line end at hand, which may be in two parts of the text.
    LineEnd takeEnd() {
        const wchar unit = atHand.front();
        take(1);
        ++line;
        if (unit == u'\n')
            return LineEnd::lf;
        if (unit != u'\r')
            return unit == 0x2028 ? LineEnd::line : LineEnd::paragraph;
        try {
            if (!look() || atHand.front() != u'\n')
                return LineEnd::cr;
        } catch (const ConverterException&) { // it comes again when the next line is read
            return LineEnd::cr;
        }
        take(1);
        return LineEnd::crlf;
    }

    detail::TextSource source;
    bool unicodeEnds;
    wstring_view atHand; // in the source
    LineEnd lineEnd = LineEnd::none;
    bool endedWithCr = false;
    std::uint64_t line = 1;
    std::uint64_t position = 0;
};

TextReader::TextReader(ByteReader read, wstring name, const TextReaderOptions& options)
    : state_(std::make_unique<State>(std::move(read), std::move(name), options)) {}
TextReader::TextReader(const InterfacePtr<IFile>& file, const TextReaderOptions& options)
    : TextReader([file](std::span<std::byte> bytes) { return file->read(bytes.data(), bytes.size()); },
                 file->url(), options) {}
TextReader::~TextReader() = default;
TextReader::TextReader(TextReader&&) noexcept = default;
TextReader& TextReader::operator=(TextReader&&) noexcept = default;

bool TextReader::readLine(wstring& line) {
    State& state = *state_;
    line.clear();
    if (!state.look())
        return false;
    state.lineEnd = LineEnd::none;
    state.endedWithCr = false;
    while (state.look()) {
        const std::size_t length = state.toLineEnd(state.atHand);
        line.append(state.atHand.substr(0, length));
        state.take(length);
        if (!state.atHand.empty()) {
            state.lineEnd = state.takeEnd();
            break;
        }
    }
    return true;
}

LineEnd TextReader::lineEnd() const noexcept {
    return state_->lineEnd;
}

bool TextReader::read(wstring& text, std::size_t count) {
    text.clear();
    while (text.size() < count) {
        const wstring_view units = look().substr(0, count - text.size());
        if (units.empty())
            break;
        text.append(units);
        consume(units.size());
    }
    if (!text.empty() && (text.back() & 0xFC00) == 0xD800)
        if (const wstring_view units = look(); !units.empty() && (units.front() & 0xFC00) == 0xDC00) {
            text.push_back(units.front());
            consume(1);
        }
    return !text.empty();
}

wstring TextReader::readAll() {
    wstring text;
    for (wstring_view units; !(units = look()).empty(); consume(units.size()))
        text.append(units);
    return text;
}

wstring_view TextReader::look() {
    state_->look();
    return state_->atHand;
}

void TextReader::consume(std::size_t count) noexcept {
    state_->takeLines(std::min(count, state_->atHand.size()));
}

std::uint64_t TextReader::line() const noexcept {
    return state_->line;
}
std::uint64_t TextReader::position() const noexcept {
    return state_->position;
}
std::uint64_t TextReader::bytesRead() const noexcept {
    return state_->source.bytesRead();
}
std::uint64_t TextReader::faults() const noexcept {
    return state_->source.faults();
}
std::uint64_t TextReader::firstFault() const noexcept {
    return state_->source.firstFault();
}
const DetectedEncoding& TextReader::encoding() {
    return state_->source.encoding();
}

} // namespace core
