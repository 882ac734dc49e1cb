// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/exception_object.h>
#include <core/runtime/threads/errors.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<ThreadException> kThreadException("ThreadExceptionObject");

} // namespace
} // namespace core
