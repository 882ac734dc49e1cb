// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/exception_object.h>
#include <core/script/errors.h>

namespace core::script {
namespace {

const SCOM_ExceptionEntry<Error> kErrorEntry("ErrorObject");

} // namespace
} // namespace core::script
