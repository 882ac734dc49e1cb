// SPDX-License-Identifier: Apache-2.0
#include <core/files/errors.h>
#include <core/files/url.h>
#include <core/runtime/exception_object.h>
#include <core/runtime/utf8.h>

#include <system_error>

namespace core {
namespace {

const SCOM_ExceptionEntry<FileException> kFileException("FileExceptionObject");

} // namespace

void throw_file_error(const char* id, const wstring& url, int systemError, IExceptionObject* cause) {
    // Unlike strerror(), the category's text may be asked for on any thread.
    const wstring reason = from_utf8(std::system_category().message(systemError));
    const wstring shown = shown_url(url);
    throw_with_message(FileException(message_text(id, {shown, reason}), url, systemError, cause), id,
                       {shown, reason});
}

} // namespace core
