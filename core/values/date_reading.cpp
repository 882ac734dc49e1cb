// SPDX-License-Identifier: Apache-2.0
#include <core/strings/trim.h>
#include <core/values/date_reading.h>

namespace core {

std::optional<Date> date_reading(const Value& value) {
    Date date;
    if (value.getDate(date))
        return date;
    const wstring_view* const text = value.asString();
    const wstring_view day = text != nullptr ? trim_all(*text) : wstring_view();
    constexpr std::size_t kDigits = 8;
    if (day.size() != kDigits)
        return {};
    const wstring moment = wstring(day) + u"000000";
    const wchar* end = nullptr;
    date = Date::fromString(moment, &end);
    return end == moment.data() + moment.size() ? std::optional(date) : std::nullopt;
}

} // namespace core
