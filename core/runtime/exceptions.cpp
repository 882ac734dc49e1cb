// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/error.h>

namespace core {
namespace {

const char* message_id(NumericException::Error error) noexcept {
    switch (error) {
    case NumericException::Error::divideByZero:
        return "IDS_NUMERROR_DIVIDEBYZERO";
    case NumericException::Error::negativePower:
        return "IDS_NUMERROR_NEGATIVEPOW";
    case NumericException::Error::overflow:
        return "IDS_NUMERROR_OVERFLOW";
    case NumericException::Error::none:
        break;
    }
    return "";
}

const char* message_id(StorageException::Kind kind) {
    switch (kind) {
    case StorageException::Kind::badFormat:
        return "IDS_STERROR_BADFORMAT";
    case StorageException::Kind::isDestination:
        return "IDS_STERROR_ISDESTINATION";
    case StorageException::Kind::fileNotFound:
        return "IDS_STERROR_FILENOTFOUND";
    case StorageException::Kind::none:
        break;
    }
    return "";
}

} // namespace

NumericException::NumericException(Error error, IExceptionObject* cause)
    : BasicException(message_text(message_id(error)), cause), error_(error) {}

const char* NumericException::messageId() const noexcept {
    return message_id(error_);
}

StorageException::StorageException(Kind kind, const wstring& url, IExceptionObject* cause)
    : BasicException(message_text(message_id(kind)) + u" '" + url + u"'", cause), kind_(kind), url_(url) {}

} // namespace core
