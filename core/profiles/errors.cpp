// SPDX-License-Identifier: Apache-2.0
#include <core/profiles/errors.h>
#include <core/runtime/exception_object.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<ProfileException> kProfileException("ProfileExceptionObject");

} // namespace
} // namespace core
