// SPDX-License-Identifier: Apache-2.0
#include <core/documents/errors.h>
#include <core/runtime/exception_object.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<DocumentException> kDocumentException("DocumentExceptionObject");

} // namespace
} // namespace core
