// SPDX-License-Identifier: Apache-2.0
#include <core/lists/errors.h>
#include <core/runtime/exception_object.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<ListStreamException> kListStreamException("ListStreamExceptionObject");

} // namespace
} // namespace core
