// SPDX-License-Identifier: Apache-2.0
#include <core/files/url.h>
#include <core/runtime/errors.h>
#include <core/runtime/exception_object.h>
#include <core/storage/errors.h>
#include <core/strings/integer_text.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<StorageException> kStorageException("StorageExceptionObject");

const char* message_id(StorageException::Kind kind) noexcept {
    switch (kind) {
    case StorageException::Kind::badFormat:
        return messages::kStorageBadFormat;
    case StorageException::Kind::isDestination:
        return messages::kStorageIsDestination;
    case StorageException::Kind::fileNotFound:
        return messages::kStorageFileNotFound;
    case StorageException::Kind::none:
        break;
    }
    return "";
}

} // namespace

StorageException::StorageException(Kind kind, const wstring& url, IExceptionObject* cause)
    : BasicException(message_text(message_id(kind)) + u" '" + shown_url(url) + u"'", cause), kind_(kind),
      url_(url) {
    const wstring shown = shown_url(url);
    setMessage(message_id(kind), {&shown, 1});
}

HexConvExc::HexConvExc() : ConverterException(message_text(messages::kStorageHexNumber)) {
    setMessage(messages::kStorageHexNumber, {});
}

ChainInFileExc::ChainInFileExc(std::uint64_t address)
    : StorageException(Kind::badFormat, wstring(),
                       message_text(messages::kStorageChain, {string_intto(address)})),
      address_(address) {
    const wstring where = string_intto(address);
    setMessage(messages::kStorageChain, {&where, 1});
}

} // namespace core
