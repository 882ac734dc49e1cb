// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/exception_object.h>
#include <core/types/errors.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<TypeDomainPatternProviderException>
    kTypeDomainPatternProviderException("TypeDomainPatternProviderExceptionObject");

} // namespace
} // namespace core
