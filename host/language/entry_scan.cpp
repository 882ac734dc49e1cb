// SPDX-License-Identifier: Apache-2.0
#include "host/language/entry_scan.h"

#include "host/language/lexer.h"

#include <core/strings/trim.h>

namespace host::script {
namespace {

constexpr std::size_t kSmall = 4096; // an entry is parsed with each of its first lines

/// By how much a token changes the nesting.
int step(TokenKind kind) {
    switch (kind) {
    case TokenKind::open:
    case TokenKind::openBracket:
    case TokenKind::keyIf:
    case TokenKind::keyFor:
    case TokenKind::keyWhile:
        return 1;
    case TokenKind::close:
    case TokenKind::closeBracket:
    case TokenKind::keyEndIf:
    case TokenKind::keyEndDo:
        return -1;
    default:
        return 0;
    }
}

/// Whether nothing needs to follow the token.
bool can_end(TokenKind kind) {
    switch (kind) {
    case TokenKind::name:
    case TokenKind::number:
    case TokenKind::string:
    case TokenKind::date:
    case TokenKind::close:
    case TokenKind::closeBracket:
    case TokenKind::semicolon:
    case TokenKind::keyEndIf:
    case TokenKind::keyEndDo:
    case TokenKind::keyBreak:
    case TokenKind::keyContinue:
    case TokenKind::keyTrue:
    case TokenKind::keyFalse:
    case TokenKind::keyUndefined:
    case TokenKind::keyNull:
        return true;
    default:
        return false;
    }
}

} // namespace

bool EntryScan::mayBeComplete(core::wstring_view entry) {
    const core::wstring_view line = entry.substr(seen_);
    seen_ = entry.size();
    const bool isTime = seen_ <= kSmall || seen_ >= 2 * tried_;
    bool isWhole = false;
    if (!inString_ || !staysInString(line)) {
        try {
            inString_ = false;
            Lexer lexer(entry.substr(scanned_));
            const std::size_t base = scanned_;
            for (Token token = lexer.next(); token.kind != TokenKind::end; token = lexer.next()) {
                follow(token);
                scanned_ = base + token.span.end();
            }
            scanned_ = seen_;
            isWhole = nesting_ <= 0 && can_end(last_);
        } catch (const ScriptError& error) {
            inString_ = error.incomplete();
            isWhole = !inString_; // that is an error, to be shown
        }
    }
    if (isTime || isWhole)
        tried_ = seen_;
    return isTime || isWhole;
}

/// A line of a string that has no quotes but doubled ones, or a blank line.
bool EntryScan::staysInString(core::wstring_view line) const {
    line = core::trim_all(line);
    if (line.empty())
        return true;
    if (line.front() != u'|' || line.find_first_of(u"\r\n") != core::wstring_view::npos)
        return false;
    for (std::size_t quote = 0; (quote = line.find(u'"', quote)) != core::wstring_view::npos; quote += 2)
        if (line.substr(quote, 2) != u"\"\"")
            return false;
    return true;
}

void EntryScan::follow(const Token& token) {
    const bool isWord = last_ == TokenKind::dot || last_ == TokenKind::keyNew; // a name, whatever it says
    last_ = isWord && is_keyword(token.kind) ? TokenKind::name : token.kind;
    nesting_ += step(last_);
}

} // namespace host::script
