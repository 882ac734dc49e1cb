// SPDX-License-Identifier: Apache-2.0
#include <core/dates/errors.h>
#include <core/runtime/exception_object.h>
#include <core/runtime/utf8.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<TimeZoneException> kTimeZoneException("TimeZoneExceptionObject");

} // namespace

TimeZoneException::TimeZoneException(const std::string& zone, IExceptionObject* cause)
    : BasicException(message_text(messages::kUnknownTimeZone, {from_utf8(zone)}), cause),
      zone_(from_utf8(zone)) {
    setMessage(messages::kUnknownTimeZone, {&zone_, 1});
}

} // namespace core
