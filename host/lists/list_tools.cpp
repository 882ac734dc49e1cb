// SPDX-License-Identifier: Apache-2.0
#include "host/lists/list_tools.h"

#include "host/lists/list_layout.h"

#include <core/exchange/json_text.h>
#include <core/lists/errors.h>
#include <core/lists/token.h>
#include <core/runtime/utf8.h>
#include <core/streams/text_file.h>
#include <core/strings/integer_text.h>

#include <algorithm>

namespace host {

using namespace core;

namespace {

using Token = ListScanner::Token;

/// Lays a list out; `Elements` writes what is in it.
template <class Elements>
void transform(ListScanner& scanner, const std::string& name, ListLayout layout, Elements elements) {
    for (;;) {
        switch (scanner.next()) {
        case Token::beginOfList:
            layout.open();
            break;
        case Token::endOfList:
            layout.close();
            break;
        case Token::string:
            elements.string(scanner, layout, name);
            break;
        case Token::bare:
            elements.bare(scanner, layout, name);
            break;
        case Token::endOfText:
            return layout.finish();
        case Token::error:
            throw_malformed(scanner, name);
        }
    }
}

/// Hands over the pieces of a string or token, the one at hand first.
template <class Take>
void each_piece(ListScanner& scanner, const std::string& name, Take take) {
    for (;;) {
        take(scanner.text());
        if (scanner.isWhole())
            return;
        if (scanner.next() == Token::error)
            throw_malformed(scanner, name);
    }
}

struct ListElements {
    static void string(ListScanner& scanner, ListLayout& layout, const std::string& name) {
        wostream& out = layout.element();
        put_text(out, u"\"");
        each_piece(scanner, name, [&](wstring_view piece) { put_characters(out, piece); });
        put_text(out, u"\"");
    }
    static void bare(ListScanner& scanner, ListLayout& layout, const std::string& name) {
        wostream& out = layout.element();
        each_piece(scanner, name, [&](wstring_view piece) { put_text(out, piece); });
    }
};

class JsonElements {
  public:
    void string(ListScanner& scanner, ListLayout& layout, const std::string& name) {
        wostream& out = layout.element();
        put_text(out, u"\"");
        each_piece(scanner, name, [&](wstring_view piece) {
            text_.clear();
            append_json_characters(text_, piece);
            put_text(out, text_);
        });
        put_text(out, u"\"");
    }
    void bare(ListScanner& scanner, ListLayout& layout, const std::string& name) {
        text_.clear();
        each_piece(scanner, name, [&](wstring_view piece) { text_ += piece; });
        wostream& out = layout.element();
        if (is_json_number(text_)) {
            put_text(out, text_);
        } else { // no character of a token needs an escape
            put_text(out, u"{\"token\": \"");
            put_text(out, text_);
            put_text(out, u"\"}");
        }
    }

  private:
    wstring text_;
};

} // namespace

void throw_malformed(const ListScanner& scanner, const std::string& name) {
    throw ListStreamException(from_utf8(name) + u':' + string_intto(scanner.place().line) + u':' +
                              string_intto(scanner.place().column) + u": " + scanner.message());
}

bool count_list(ListScanner& scanner, ListCounts& counts) {
    for (;;) {
        const Token token = scanner.next();
        counts.depth = std::max(counts.depth, scanner.depth());
        counts.lists += token == Token::beginOfList ? 1U : 0U;
        counts.strings += token == Token::string && scanner.isWhole() ? 1U : 0U;
        counts.tokens += token == Token::bare && scanner.isWhole() ? 1U : 0U;
        if (token == Token::endOfText || token == Token::error) {
            counts.units = scanner.place().offset;
            return token == Token::endOfText;
        }
    }
}

void format_list(ListScanner& scanner, const std::string& name, wostream& out, std::size_t indent) {
    transform(scanner, name, ListLayout(out, {u'{', u'}', indent}), ListElements());
}

void list_to_json(ListScanner& scanner, const std::string& name, wostream& out, std::size_t indent) {
    transform(scanner, name, ListLayout(out, {u'[', u']', indent}), JsonElements());
}

} // namespace host
