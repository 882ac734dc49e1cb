// SPDX-License-Identifier: Apache-2.0
#include "host/lists/list_text.h"

#include <core/lists/list_scanner.h>
#include <core/lists/token.h>
#include <core/streams/memory_stream.h>
#include <core/strings/char_class.h>

#include <algorithm>

namespace host {

using namespace core;

void write_list_characters(UnitSink& sink, wstring_view text) {
    const auto special = [](wchar c) { return c == u'"' || (c >= 0xD800 && c <= 0xDFFF); };
    while (!text.empty()) {
        const auto plain =
            static_cast<std::size_t>(std::find_if(text.begin(), text.end(), special) - text.begin());
        sink.write(text.substr(0, plain));
        if (plain == text.size())
            return;
        if (text[plain] == u'"') {
            sink.write(u"\"\"");
        } else {
            wchar escape[6] = {u'"', u'\\'};
            escape_char(text[plain], escape + 2);
            sink.write({escape, 6});
        }
        text.remove_prefix(plain + 1);
    }
}

bool is_list_token(wstring_view text) {
    if (text.empty() || is_space(text.front()) || is_space(text.back()))
        return false;
    MemoryInStream in(text);
    ListScanner scanner(in);
    while (scanner.next() == ListScanner::Token::bare && !scanner.isWhole()) {
    }
    return scanner.token() == ListScanner::Token::bare && scanner.next() == ListScanner::Token::endOfText;
}

} // namespace host
