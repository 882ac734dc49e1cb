// SPDX-License-Identifier: Apache-2.0
#include "core/locales/cached_format.h"
#include "core/locales/numeric_layout.h"

#include <core/locales/numeric_format.h>
#include <core/locales/settings.h>
#include <core/strings/trim.h>

namespace core {

NumericFormat::NumericFormat(wstring_view format) : layout_(numeric_layout(format, nullptr)) {}

NumericFormat::NumericFormat(wstring_view format, const Locale& locale)
    : layout_(numeric_layout(format, &locale)) {}

void NumericFormat::format(const Numeric& number, wstring& text) const {
    if (layout_ != nullptr) {
        layout_->write(number, text);
        return;
    }
    wchar buffer[64];
    const std::size_t length = number.toString(buffer, std::size(buffer));
    if (length <= std::size(buffer))
        text.assign(buffer, length);
    else
        text = number.toString();
}

wstring NumericFormat::format(const Numeric& number) const {
    wstring text;
    format(number, text);
    return text;
}

bool NumericFormat::parse(wstring_view text, Numeric& number, const wchar** end) const {
    const wchar* stop = text.data();
    Numeric read;
    bool found = false;
    if (layout_ == nullptr) {
        read = Numeric::fromString(text, &stop);
        found = stop != text.data();
    } else {
        const wstring_view start = trim_left(text);
        if (const auto length = layout_->read(start, read)) {
            stop = start.data() + *length;
            found = true;
        }
    }
    if (end != nullptr)
        *end = stop;
    if (found)
        number = std::move(read);
    return found;
}

const NumericFormat& default_numeric_format() {
    // Nearly every process keeps the plain form, and every text of a number comes through here.
    static const NumericFormat plain;
    const wstring& format = current_settings().part<FormatSettings>().numericFormat;
    return format.empty() ? plain : cached_format<NumericFormat>(format);
}

} // namespace core
