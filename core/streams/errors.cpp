// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/exception_object.h>
#include <core/streams/errors.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<FileStreamException> kFileStreamException("FileStreamExceptionObject");

} // namespace
} // namespace core
