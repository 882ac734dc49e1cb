// SPDX-License-Identifier: Apache-2.0
#include <core/persistence/errors.h>
#include <core/runtime/exception_object.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<VersionException> kVersionException("VersionExceptionObject");

} // namespace
} // namespace core
