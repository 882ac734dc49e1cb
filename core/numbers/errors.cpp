// SPDX-License-Identifier: Apache-2.0
#include <core/numbers/errors.h>
#include <core/runtime/exception_object.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<NumericException> kNumericException("NumericExceptionObject");

const char* message_id(NumericException::Error error) noexcept {
    switch (error) {
    case NumericException::Error::divideByZero:
        return messages::kDivideByZero;
    case NumericException::Error::negativePower:
        return messages::kNegativePower;
    case NumericException::Error::overflow:
        return messages::kNumericOverflow;
    case NumericException::Error::notANumber:
        return messages::kNotANumber;
    case NumericException::Error::none:
        break;
    }
    return "";
}

} // namespace

NumericException::NumericException(Error error, IExceptionObject* cause)
    : BasicException(message_text(message_id(error)), cause), error_(error) {
    setMessage(message_id(error), {});
}

} // namespace core
