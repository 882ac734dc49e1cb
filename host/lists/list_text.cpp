// SPDX-License-Identifier: Apache-2.0
#include "host/lists/list_text.h"

#include <core/lists/list_scanner.h>
#include <core/streams/memory_stream.h>
#include <core/strings/char_class.h>

namespace host {

using namespace core;

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
