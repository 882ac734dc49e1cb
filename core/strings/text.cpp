// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/utf8.h>
#include <core/strings/errors.h>
#include <core/strings/integer_text.h>
#include <core/strings/text.h>

#include <algorithm>

namespace core {

Text::Text(std::string_view text) : converted_(from_utf8(text)), view_(converted_) {
    if (const std::string same = to_utf8(converted_); same != text) {
        const auto fault = std::mismatch(text.begin(), text.end(), same.begin(), same.end()).first;
        throw_error<ConverterException>(messages::kNotUtf8, {string_intto(fault - text.begin())});
    }
}

} // namespace core
