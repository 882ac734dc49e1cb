// SPDX-License-Identifier: Apache-2.0
#include <core/locales/errors.h>
#include <core/runtime/exception_object.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<LocaleException> kLocaleException("LocaleExceptionObject");

} // namespace
} // namespace core
