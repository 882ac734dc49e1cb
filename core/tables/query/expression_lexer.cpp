// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/expression_lexer.h"

#include "core/tables/query/expression_errors.h"

#include <core/strings/char_class.h>
#include <core/strings/integer_text.h>

namespace core {
namespace {

bool starts_name(wchar unit) noexcept {
    return is_alpha(unit) || unit == u'_';
}

bool continues_name(wchar unit) noexcept {
    return is_alnum(unit) || unit == u'_';
}

} // namespace

ExpressionLexer::ExpressionLexer(wstring_view text) : text_(text) {
    if (text.size() > kExpressionLength)
        fail_expression({}, messages::kExpressionLength, {string_intto(kExpressionLength)});
}

ExpressionToken ExpressionLexer::next() {
    skipBlanks();
    ExpressionToken token{.place = place()};
    if (at_ == text_.size())
        return token;
    const wchar first = text_[at_];
    if (starts_name(first)) {
        token.kind = ExpressionTokenKind::name;
        token.text = word();
        token.word = expression_word(token.text);
    } else if (is_ascii_digit(first)) {
        token.kind = ExpressionTokenKind::number;
        token.text = number(token.place);
    } else if (first == u'"' || first == u'\'' || first == u'[') {
        token.kind = first == u'"'   ? ExpressionTokenKind::text
                     : first == u'[' ? ExpressionTokenKind::name
                                     : ExpressionTokenKind::date;
        token.text = quoted(token.place, first == u'[' ? u']' : first);
    } else if (first == u'&' && starts_name(at(at_ + 1))) {
        ++at_;
        token.kind = ExpressionTokenKind::parameter;
        token.text = word();
    } else {
        token.kind = ExpressionTokenKind::sign;
        token.text = sign(token.place);
    }
    return token;
}

/// The column counts characters, a pair of surrogates as one.
ExpressionPlace ExpressionLexer::place() noexcept {
    for (; counted_ < at_; ++counted_)
        column_ += (text_[counted_] & 0xFC00U) != 0xDC00U ? 1 : 0;
    return {line_, column_};
}

void ExpressionLexer::beginLine(std::size_t offset) noexcept {
    ++line_;
    counted_ = offset;
    column_ = 1;
}

void ExpressionLexer::skipBlanks() noexcept {
    while (at_ < text_.size() && is_space(text_[at_])) {
        const bool ends = text_[at_] == u'\n' || (text_[at_] == u'\r' && at(at_ + 1) != u'\n');
        ++at_;
        if (ends)
            beginLine(at_);
    }
}

wstring_view ExpressionLexer::word() noexcept {
    const std::size_t begin = at_;
    while (continues_name(at(at_)))
        ++at_;
    return text_.substr(begin, at_ - begin);
}

/// What stands up to `end`, which may be doubled to stand for itself.
wstring_view ExpressionLexer::quoted(ExpressionPlace begin, wchar end) {
    const std::size_t first = ++at_;
    for (;; ++at_) {
        if (at_ == text_.size())
            fail_expression(begin, messages::kExpressionOpen, {wstring(1, end)});
        if (text_[at_] == u'\n')
            beginLine(at_ + 1);
        if (text_[at_] != end)
            continue;
        if (end != u'"' || at(at_ + 1) != end)
            break;
        ++at_;
    }
    return text_.substr(first, at_++ - first);
}

wstring_view ExpressionLexer::number(ExpressionPlace begin) {
    const std::size_t first = at_;
    const auto digits = [this] {
        while (is_ascii_digit(at(at_)))
            ++at_;
    };
    digits();
    if (at(at_) == u'.' && is_ascii_digit(at(at_ + 1))) {
        ++at_;
        digits();
    }
    if (continues_name(at(at_)))
        fail_expression(begin, messages::kExpressionNumber);
    return text_.substr(first, at_ - first);
}

wstring_view ExpressionLexer::sign(ExpressionPlace begin) {
    constexpr wstring_view kSigns = u"()+-*/%=<>,";
    const wchar first = text_[at_];
    std::size_t length = 1;
    if ((first == u'<' && (at(at_ + 1) == u'>' || at(at_ + 1) == u'=')) ||
        (first == u'>' && at(at_ + 1) == u'='))
        length = 2;
    if (kSigns.find(first) == wstring_view::npos) {
        const bool pair = (first & 0xFC00U) == 0xD800U && (at(at_ + 1) & 0xFC00U) == 0xDC00U;
        fail_expression(begin, messages::kExpressionCharacter, {wstring(text_.substr(at_, pair ? 2 : 1))});
    }
    at_ += length;
    return text_.substr(at_ - length, length);
}

} // namespace core
