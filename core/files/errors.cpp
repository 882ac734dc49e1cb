// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/system_reason.h"

#include <core/files/errors.h>
#include <core/files/url.h>
#include <core/runtime/exception_object.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<FileException> kFileException("FileExceptionObject");

} // namespace

void throw_file_error(const char* id, const wstring& url, int systemError, IExceptionObject* cause) {
    const wstring reason = system_reason(systemError);
    const wstring shown = shown_url(url);
    throw_with_message(FileException(message_text(id, {shown, reason}), url, systemError, cause), id,
                       {shown, reason});
}

} // namespace core
