// SPDX-License-Identifier: Apache-2.0
#include "host/lists/json_to_list.h"

#include "host/lists/list_text.h"

#include <core/lists/list_scanner.h>
#include <core/lists/token.h>
#include <core/runtime/utf8.h>
#include <core/streams/text_file.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>

namespace host {

using namespace core;

namespace {

[[noreturn]] void refuse(wstring_view what) {
    throw_error<ContextException>("IDS_HOST_LIST_NO_JSON", {wstring(what), u"{\"token\": \"+5\"}"});
}

} // namespace

void JsonToList::onNull() {
    refuse(u"null");
}

void JsonToList::onBoolean(bool value) {
    refuse(value ? u"true" : u"false");
}

void JsonToList::onNumber(std::string_view text) {
    refuseInObject();
    std::string number(text);
    if (const auto plus = number.find('+'); plus != std::string::npos)
        number.erase(plus, 1);
    token(number);
}

void JsonToList::onString(std::string_view piece, bool isLast) {
    if (object_ != Object::none) {
        token_ += piece;
        if (isLast) {
            token(token_);
            object_ = Object::complete;
        }
        return;
    }
    wostream& out = inString_ ? layout_.stream() : layout_.element();
    if (!inString_)
        put_text(out, u"\"");
    put_characters(out, from_utf8(piece));
    if (isLast)
        put_text(out, u"\"");
    inString_ = !isLast;
}

void JsonToList::onName(std::string_view name) {
    if (object_ != Object::begun || name != "token")
        refuse(u"{\"" + from_utf8(name) + u"\": …}");
    object_ = Object::named;
    token_.clear();
}

void JsonToList::onArrayBegin() {
    refuseInObject();
    if (layout_.depth() == ListScanner::kMaxDepth)
        throw_error<ContextException>("IDS_LIST_TOO_DEEP", {string_intto(ListScanner::kMaxDepth)});
    layout_.open();
}

void JsonToList::onObjectBegin() {
    refuseInObject();
    object_ = Object::begun;
}

void JsonToList::onObjectEnd() {
    if (object_ != Object::complete)
        refuse(u"{}");
    object_ = Object::none;
}

/// The one member of an object is a string.
void JsonToList::refuseInObject() const {
    if (object_ != Object::none)
        refuse(u"{\"token\": …}");
}

void JsonToList::token(std::string_view text) {
    const wstring units = from_utf8(text);
    if (!is_list_token(units))
        throw_error<ContextException>("IDS_HOST_LIST_NO_TOKEN", {units});
    put_text(layout_.element(), units);
}

} // namespace host
