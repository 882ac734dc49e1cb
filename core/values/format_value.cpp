// SPDX-License-Identifier: Apache-2.0
#include <core/locales/errors.h>
#include <core/locales/format.h>
#include <core/strings/trim.h>
#include <core/values/format_value.h>

namespace core {

wstring format_value(const Value& value, wstring_view format) {
    switch (value.kind()) {
    case ValueKind::number:
        return format_number(*value.asNumeric(), format);
    case ValueKind::date:
        return format_date(*value.asDate(), format);
    case ValueKind::boolean:
        return format_bool(value.isTrue(), format);
    case ValueKind::undefined:
    case ValueKind::null:
        return format_nothing(format);
    default:
        if (!trim_all(format).empty())
            throw_error<CtorException>(messages::kNoFormatOfType, {value.type().presentation()});
        return value.presentation();
    }
}

} // namespace core
