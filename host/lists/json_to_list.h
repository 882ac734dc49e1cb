// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/lists/list_layout.h"

#include <core/exchange/json_reader.h>

#include <string>

namespace host {

/// Writes the brace list that a JSON text stands for, the inverse of list_to_json(): arrays are lists,
/// strings are strings, numbers are tokens as they stand except for a "+" in the exponent, and an object with
/// the one member "token" is the token that this is. ContextException for everything else.
class JsonToList : public core::JsonEvents {
  public:
    JsonToList(core::wostream& out, std::size_t indent) : layout_(out, {u'{', u'}', indent}) {}

    /// Ends the text, when the reader has finished.
    void finish() { layout_.finish(); }

    void onNull() override;
    void onBoolean(bool value) override;
    void onNumber(std::string_view text) override;
    void onString(std::string_view piece, bool isLast) override;
    void onName(std::string_view name) override;
    void onArrayBegin() override;
    void onArrayEnd() override { layout_.close(); }
    void onObjectBegin() override;
    void onObjectEnd() override;

  private:
    /// Where an object {"token": "..."} has got to.
    enum class Object : unsigned char { none, begun, named, complete };

    void refuseInObject() const;
    void token(std::string_view text);

    ListLayout layout_;
    Object object_ = Object::none;
    bool inString_ = false;
    std::string token_;
};

} // namespace host
