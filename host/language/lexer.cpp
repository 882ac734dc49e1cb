// SPDX-License-Identifier: Apache-2.0
#include "host/language/lexer.h"

#include <core/strings/char_class.h>

#include <algorithm>
#include <utility>

namespace core::script {
namespace {

constexpr wchar kByteOrderMark = 0xFEFF;

bool starts_name(wchar c) noexcept {
    return is_alpha(c) || c == u'_';
}

bool continues_name(wchar c) noexcept {
    return is_alnum(c) || c == u'_';
}

/// One line end, of one or two units.
std::size_t skip_line_end(wstring_view text, std::size_t at) noexcept {
    return at + (text.substr(at, 2) == u"\r\n" ? 2 : 1);
}

std::size_t skip_spaces(wstring_view text, std::size_t at) noexcept {
    while (at < text.size() && is_space(text[at]) && !is_line_end(text[at]))
        ++at;
    return at;
}

} // namespace

Lexer::Lexer(wstring_view text, More more) : text_(text), more_(std::move(more)) {
    if (at(0) == kByteOrderMark)
        at_ = 1;
    if (text_.substr(at_, 2) == u"#!") { // what runs the file, for the system
        while (at_ < text_.size() && !is_line_end(text_[at_]))
            ++at_;
    }
}

bool Lexer::extend() {
    const std::size_t size = text_.size();
    if (more_)
        text_ = more_();
    return text_.size() > size;
}

Span Lexer::since(std::size_t begin) const noexcept {
    return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(at_ - begin)};
}

Token Lexer::next() {
    skip_blanks();
    if (at_ == text_.size())
        return {TokenKind::end, since(at_)};
    const wchar c = text_[at_];
    if (starts_name(c)) {
        const std::size_t begin = at_;
        while (continues_name(at(at_)))
            ++at_;
        return {keyword(text_.substr(begin, at_ - begin)), since(begin)};
    }
    if (is_ascii_digit(c))
        return number();
    if (c == u'"')
        return string();
    if (c == u'\'')
        return date();
    return sign();
}

Token Lexer::peek() {
    const std::size_t here = at_;
    const Token token = next();
    at_ = here;
    return token;
}

void Lexer::skip_blanks() {
    while (at_ < text_.size()) {
        if (is_space(text_[at_])) {
            ++at_;
        } else if (text_.substr(at_, 2) == u"//") {
            while (at_ < text_.size() && !is_line_end(text_[at_]))
                ++at_;
        } else {
            return;
        }
    }
}

Token Lexer::number() {
    const std::size_t begin = at_;
    const auto digits = [this] {
        while (is_ascii_digit(at(at_)))
            ++at_;
    };
    digits();
    if (at(at_) == u'.' && is_ascii_digit(at(at_ + 1))) {
        ++at_;
        digits();
    }
    if (continues_name(at(at_))) {
        while (continues_name(at(at_)))
            ++at_;
        fail_at(since(begin), "IDS_SCRIPT_BAD_NUMBER");
    }
    return {TokenKind::number, since(begin)};
}

Token Lexer::string() {
    const std::size_t begin = at_++;
    for (;;) {
        const wchar c = at(at_);
        if (at_ == text_.size() || is_line_end(c)) {
            // The string may go on in a later line, behind a "|".
            const Span opening = since(begin);
            do {
                at_ = skip_spaces(text_, at_);
                while (at_ < text_.size() && is_line_end(text_[at_]))
                    at_ = skip_spaces(text_, skip_line_end(text_, at_));
            } while (at_ == text_.size() && extend());
            if (at(at_) != u'|')
                fail_at(opening, "IDS_SCRIPT_OPEN_STRING");
        } else if (c == u'"') {
            ++at_;
            if (at(at_) != u'"')
                return {TokenKind::string, since(begin)};
        }
        ++at_;
    }
}

Token Lexer::date() {
    const std::size_t begin = at_++;
    const std::size_t digits = at_;
    while (is_ascii_digit(at(at_)))
        ++at_;
    const std::size_t count = at_ - digits;
    const bool closed = at(at_) == u'\'';
    if (closed)
        ++at_;
    if (!closed || (count != 8 && count != 14))
        fail_at(since(begin), "IDS_SCRIPT_BAD_DATE");
    return {TokenKind::date, since(begin)};
}

Token Lexer::sign() {
    const std::size_t begin = at_;
    const wchar c = text_[at_++];
    const wchar following = at(at_);
    const auto is = [&](TokenKind kind) { return Token{kind, since(begin)}; };
    const auto longer = [&](TokenKind kind) {
        ++at_;
        return is(kind);
    };
    switch (c) {
    case u'(':
        return is(TokenKind::open);
    case u')':
        return is(TokenKind::close);
    case u'[':
        return is(TokenKind::openBracket);
    case u']':
        return is(TokenKind::closeBracket);
    case u',':
        return is(TokenKind::comma);
    case u'.':
        return is(TokenKind::dot);
    case u';':
        return is(TokenKind::semicolon);
    case u'+':
        return is(TokenKind::plus);
    case u'-':
        return is(TokenKind::minus);
    case u'*':
        return is(TokenKind::times);
    case u'/':
        return is(TokenKind::divide);
    case u'%':
        return is(TokenKind::modulo);
    case u'=':
        return is(TokenKind::equal);
    case u'<':
        if (following == u'>')
            return longer(TokenKind::notEqual);
        return following == u'=' ? longer(TokenKind::lessEqual) : is(TokenKind::less);
    case u'>':
        return following == u'=' ? longer(TokenKind::greaterEqual) : is(TokenKind::greater);
    default:
        if (c >= 0xD800 && c <= 0xDBFF && following >= 0xDC00 && following <= 0xDFFF)
            ++at_; // both halves of the character
        fail_at(since(begin), "IDS_SCRIPT_BAD_CHARACTER");
    }
}

wstring string_value(wstring_view token) {
    const wstring_view text = token.substr(1, token.size() - 2);
    wstring value;
    value.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        if (is_line_end(text[i])) {
            while (i < text.size() && is_line_end(text[i]))
                i = skip_spaces(text, skip_line_end(text, i));
            ++i; // the "|"
            value += u'\n';
        } else {
            i += text[i] == u'"' ? 2U : 1U;
            value += text[i - 1];
        }
    }
    return value;
}

} // namespace core::script
