// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/exception_object.h>
#include <core/values/errors.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<TypeException> kTypeException("TypeExceptionObject");
const SCOM_ExceptionEntry<ContextException> kContextException("ContextExceptionObject");
const SCOM_ExceptionEntry<ValueIsFilledException> kValueIsFilledException("ValueIsFilledExceptionObject");
const SCOM_ExceptionEntry<ComparatorException> kComparatorException("ComparatorExceptionObject");

} // namespace
} // namespace core
