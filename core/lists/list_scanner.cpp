// SPDX-License-Identifier: Apache-2.0
#include "core/lists/bare_token.h"
#include "core/lists/unit_scan.h"
#include "core/runtime/hex_digit.h"

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

ListScanner::ListScanner(wistream& in) : source_(in), bare_(new BareToken) {}
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
    const int unit = source_.peek();
    if (depth_ == 0)
        return unit == kEnd ? set(Token::endOfText, Phase::ended) : fail(Expected::endOfText);
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
    switch (const int unit = source_.peek()) {
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
        *bare_ = BareToken();
        return scanBare();
    }
}

/// Takes as many units as stand for themselves and fit.
void ListScanner::scanRun() {
    TextBuffer* const runs = source_.runs();
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
        const int unit = source_.take();
        if (unit == kEnd)
            return fail(Expected::quote);
        auto stored = static_cast<wchar>(unit);
        consumed({&stored, 1});
        if (unit == u'"') {
            if (source_.peek() == u'"') {
                consume();
            } else if (source_.peek() != u'\\') {
                return set(Token::string, Phase::afterElement);
            } else {
                consume();
                wchar digits[4];
                for (wchar& digit : digits) {
                    const int next = source_.peek();
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
    for (int unit = source_.peek(); !ends_bare(unit); unit = source_.peek()) {
        if (size_ == kPieceUnits)
            return set(Token::bare, Phase::inBare);
        if (!bare_->take(static_cast<wchar>(unit)))
            return fail(Expected::bareToken);
        piece_[size_++] = static_cast<wchar>(unit);
        consume();
    }
    return bare_->complete() ? set(Token::bare, Phase::afterElement) : fail(Expected::bareToken);
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
    for (int unit = source_.peek(); unit != kEnd && is_space(static_cast<wchar>(unit)); unit = source_.peek())
        consume();
}

/// Consumes the unit that peek() has shown.
void ListScanner::consume() {
    const auto unit = static_cast<wchar>(source_.peek());
    source_.skip();
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
