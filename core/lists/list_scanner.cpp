// SPDX-License-Identifier: Apache-2.0
#include "core/lists/bare_token.h"
#include "core/lists/unit_scan.h"
#include "core/runtime/hex_digit.h"
#include "core/streams/unit_source.h"

#include <core/lists/list_scanner.h>
#include <core/lists/token.h>
#include <core/runtime/exception.h>
#include <core/strings/char_class.h>
#include <core/strings/integer_text.h>

#include <algorithm>

namespace core {

using namespace detail;

namespace {

constexpr int kEnd = UnitSource::kEnd;

/// Whether a bare token ends before this unit.
bool ends_bare(int unit) noexcept {
    switch (unit) {
    case kEnd:
    case u',':
    case u'{':
    case u'}':
    case u'"':
        return true;
    default:
        return is_space(static_cast<wchar>(unit));
    }
}

} // namespace

/// What the scanner reads from, and the form of the bare token at hand.
struct ListScanner::Input {
    explicit Input(wistream& in) : source(in) {}

    UnitSource source;
    BareToken bare;
};

// Constants that a program takes by reference: a library of Windows exports those that are defined.
constexpr std::uint32_t ListScanner::kMaxDepth;
constexpr std::size_t ListScanner::kPieceUnits;

ListScanner::ListScanner(wistream& in) : input_(new Input(in)) {}
ListScanner::~ListScanner() = default;

ListScanner::Token ListScanner::next() {
    size_ = 0;
    switch (phase_) {
    case Phase::inString:
        return scanString();
    case Phase::inBare:
        return scanBare();
    case Phase::ended:
        return token_;
    default:
        break;
    }
    skipSpaces();
    place_ = here();
    return phase_ == Phase::afterElement ? scanAfterElement() : scanElement();
}

ListScanner::Token ListScanner::scanAfterElement() {
    const int unit = input_->source.peek();
    if (depth_ == 0) // U+FFFF does not end a text: what follows it would be dropped without a word
        return input_->source.isExhausted() ? set(Token::endOfText, Phase::ended) : fail(Expected::endOfText);
    if (unit == u'}') {
        consume();
        --depth_;
        return set(Token::endOfList, Phase::afterElement);
    }
    if (unit != u',')
        return fail(Expected::separator);
    consume();
    skipSpaces();
    place_ = here();
    phase_ = Phase::element;
    return scanElement();
}

ListScanner::Token ListScanner::scanElement() {
    switch (const int unit = input_->source.peek()) {
    case u'{':
        if (depth_ == kMaxDepth)
            return fail(Expected::lessDepth);
        consume();
        ++depth_;
        return set(Token::beginOfList, Phase::first);
    case u'}':
        if (phase_ != Phase::first)
            return fail(Expected::element);
        consume();
        --depth_;
        return set(Token::endOfList, Phase::afterElement);
    case u'"':
        consume();
        return scanString();
    default:
        if (ends_bare(unit))
            return fail(Expected::element);
        input_->bare = BareToken();
        return scanBare();
    }
}

/// Takes as many units as stand for themselves and fit.
void ListScanner::scanRun() {
    TextBuffer* const runs = input_->source.runs();
    if (runs == nullptr || !runs->fill())
        return;
    const wstring_view run = runs->atHand().substr(0, kPieceUnits - size_);
    const wchar* const end = find_unit<EndsPlainRead>(run.data(), run.data() + run.size());
    const wstring_view plain(run.data(), static_cast<std::size_t>(end - run.data()));
    std::copy(plain.begin(), plain.end(), piece_.begin() + static_cast<std::ptrdiff_t>(size_));
    size_ += plain.size();
    consumed(plain);
    runs->readTo(end);
}

ListScanner::Token ListScanner::scanString() {
    for (;;) {
        scanRun();
        if (size_ == kPieceUnits)
            return set(Token::string, Phase::inString);
        const int unit = input_->source.take();
        if (unit == kEnd)
            return fail(Expected::quote);
        auto stored = static_cast<wchar>(unit);
        consumed({&stored, 1});
        if (unit == u'"') {
            if (input_->source.peek() == u'"') {
                consume();
            } else if (input_->source.peek() != u'\\') {
                return set(Token::string, Phase::afterElement);
            } else {
                consume();
                wchar digits[4];
                for (wchar& digit : digits) {
                    const int next = input_->source.peek();
                    if (next == kEnd || hex_digit(static_cast<wchar>(next)) < 0)
                        return fail(Expected::hexDigit);
                    digit = static_cast<wchar>(next);
                    consume();
                }
                stored = unescape_char(digits);
            }
        }
        piece_[size_++] = stored;
    }
}

ListScanner::Token ListScanner::scanBare() {
    for (int unit = input_->source.peek(); !ends_bare(unit); unit = input_->source.peek()) {
        if (size_ == kPieceUnits)
            return set(Token::bare, Phase::inBare);
        if (!input_->bare.take(static_cast<wchar>(unit)))
            return fail(Expected::bareToken);
        piece_[size_++] = static_cast<wchar>(unit);
        consume();
    }
    return input_->bare.complete() ? set(Token::bare, Phase::afterElement) : fail(Expected::bareToken);
}

ListScanner::Token ListScanner::set(Token token, Phase phase) noexcept {
    phase_ = phase;
    return token_ = token;
}

ListScanner::Token ListScanner::fail(Expected expected) noexcept {
    expected_ = expected;
    place_ = here();
    size_ = 0;
    return set(Token::error, Phase::ended);
}

void ListScanner::skipSpaces() {
    for (int unit = input_->source.peek(); unit != kEnd && is_space(static_cast<wchar>(unit));
         unit = input_->source.peek())
        consume();
}

/// Consumes the unit that peek() has shown.
void ListScanner::consume() {
    const auto unit = static_cast<wchar>(input_->source.peek());
    input_->source.skip();
    consumed({&unit, 1});
}

void ListScanner::consumed(wstring_view units) noexcept {
    const wchar* const end = units.data() + units.size();
    for (const wchar* at = units.data(); (at = std::find(at, end, u'\n')) != end;) {
        ++at;
        ++line_;
        lineStart_ = offset_ + static_cast<std::size_t>(at - units.data());
    }
    offset_ += units.size();
}

wstring ListScanner::message() const {
    switch (expected_) {
    case Expected::element:
        return message_text("IDS_LIST_EXPECTED_ELEMENT");
    case Expected::separator:
        return message_text("IDS_LIST_EXPECTED_SEPARATOR");
    case Expected::endOfText:
        return message_text("IDS_LIST_EXPECTED_END");
    case Expected::quote:
        return message_text("IDS_LIST_EXPECTED_QUOTE");
    case Expected::hexDigit:
        return message_text("IDS_LIST_EXPECTED_HEX_DIGIT");
    case Expected::bareToken:
        return message_text("IDS_LIST_EXPECTED_TOKEN");
    case Expected::lessDepth:
        return message_text("IDS_LIST_TOO_DEEP", {string_intto(kMaxDepth)});
    }
    return {};
}

} // namespace core
