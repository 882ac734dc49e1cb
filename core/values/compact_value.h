// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/lists/compact_reader.h"
#include "core/lists/compact_writer.h"

#include <core/values/generic_value.h>

/// Primitive values in the compact form: one token each, which tells the kind.
namespace core::detail {

/// Writes a primitive value; returns false, with nothing written, for an object.
[[nodiscard]] inline bool put_compact(CompactWriter& out, const Value& value) {
    switch (value.kind()) {
    case ValueKind::undefined:
        out.putToken(CompactToken::undefined);
        break;
    case ValueKind::null:
        out.putToken(CompactToken::null);
        break;
    case ValueKind::boolean:
        out.putBoolean(value.isTrue());
        break;
    case ValueKind::number:
        if (const auto whole = value.asSmallWhole())
            out.putWhole(*whole);
        else
            out.putNumber(*value.asNumeric());
        break;
    case ValueKind::string:
        out.putText(*value.asString());
        break;
    case ValueKind::date:
        out.putDate(*value.asDate());
        break;
    case ValueKind::type:
        out.putToken(CompactToken::type);
        out.putId(value.asType()->id());
        break;
    case ValueKind::object:
        return false;
    }
    return true;
}

/// Reads a primitive value; returns false, with nothing read, where an object begins. Throws
/// ListStreamException for any other token.
[[nodiscard]] inline bool get_compact(CompactReader& in, GenericValue& value) {
    const int token = in.peek();
    if (const auto whole = in.takeWhole()) {
        value = whole->isSmall() ? GenericValue(whole->small()) : GenericValue(whole->number());
        return true;
    }
    if (token >= static_cast<int>(CompactToken::shortString) && token < static_cast<int>(CompactToken::end)) {
        value = GenericValue(in.getText());
        return true;
    }
    switch (static_cast<CompactToken>(token)) {
    case CompactToken::undefined:
        static_cast<void>(in.take());
        value = {};
        break;
    case CompactToken::null:
        static_cast<void>(in.take());
        value = Value::null();
        break;
    case CompactToken::no:
    case CompactToken::yes:
        value = GenericValue(in.getBoolean());
        break;
    case CompactToken::decimal:
    case CompactToken::digits:
        value = GenericValue(in.getNumber());
        break;
    case CompactToken::narrowString:
    case CompactToken::wideString:
        value = GenericValue(in.getText());
        break;
    case CompactToken::days:
    case CompactToken::seconds:
    case CompactToken::ticks:
        value = GenericValue(in.getDate());
        break;
    case CompactToken::type: {
        static_cast<void>(in.take());
        const GUID id = in.getId();
        value = GenericValue(id == kNullGuid ? Type() : Type(id)); // a Type may be none
        break;
    }
    case CompactToken::object:
        return false;
    default:
        in.fail();
    }
    return true;
}

} // namespace core::detail
