// SPDX-License-Identifier: Apache-2.0
// Any text as a brace list. What the scanner accepts is written again and must scan to the same, by runs and
// unit by unit; the reader takes what it can and stops, whatever it is asked for.
#include <core/lists.h>
#include <core/lists/errors.h>
#include <core/runtime/utf8.h>

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string_view>

namespace {

using namespace core;

/// Scans a text and writes what comes; empty when it is malformed.
wstring rewritten(wistream& in, ListScanner::Place& error) {
    ListScanner scanner(in);
    MemoryOutStream memory;
    ListOutStream out(memory);
    wstring token;
    for (;;) {
        switch (scanner.next()) {
        case ListScanner::Token::beginOfList:
            out.putBeginOfList();
            break;
        case ListScanner::Token::endOfList:
            out.putEndOfList();
            break;
        case ListScanner::Token::string:
        case ListScanner::Token::bare:
            token += scanner.text();
            if (scanner.isWhole()) {
                scanner.token() == ListScanner::Token::string ? out.put(token) : out.putBare(token);
                token.clear();
            }
            break;
        case ListScanner::Token::error:
            error = scanner.place();
            return {};
        case ListScanner::Token::endOfText:
            return memory.take();
        }
    }
}

void require(bool holds) {
    if (!holds)
        std::abort();
}

/// Asks for one thing after the other, as the bytes say.
void read(wistream& stream, std::string_view script) {
    ListInStream in(stream);
    wstring text;
    wchar buffer[8];
    bool flag = false;
    float real = 0;
    double number = 0;
    std::int64_t integer = 0;
    Numeric decimal;
    Date date;
    GUID id;
    try {
        for (const char step : script) {
            switch (static_cast<unsigned char>(step) % 12) {
            case 0:
                in.getBeginOfList();
                break;
            case 1:
                in.getEndOfList();
                break;
            case 2:
                static_cast<void>(in.getComma());
                break;
            case 3:
                in.skipListContent();
                break;
            case 4:
                in.get(text);
                break;
            case 5:
                in.get(buffer, 8);
                break;
            case 6:
                in.get(flag);
                break;
            case 7:
                in.get(integer);
                break;
            case 8:
                in.get(number);
                break;
            case 9:
                in.get(real);
                break;
            case 10:
                in.get(decimal);
                break;
            default:
                in.get(date);
                in.get(id);
            }
        }
    } catch (const ListStreamException&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const wstring text = from_utf8(bytes);
    ListScanner::Place place;
    ListScanner::Place slow_place;
    MemoryInStream in(text);
    std::basic_istringstream<wchar> plain(text);
    const wstring once = rewritten(in, place);
    require(once == rewritten(plain, slow_place));
    require(place.offset == slow_place.offset && place.line == slow_place.line);
    require(place.offset <= text.size());
    if (!once.empty()) {
        MemoryInStream again(once);
        require(rewritten(again, place) == once);
        MemoryInStream skipped(once);
        if (once.front() == u'{') {
            ListInStream list(skipped);
            list.getBeginOfList();
            if (once.find(u"\"\\") == wstring::npos) { // the skip does not know escapes
                list.skipListContent();
                list.getEndOfList();
            }
        }
    }
    MemoryInStream read_stream(text);
    read(read_stream, bytes.substr(0, 200));
    return 0;
}
