// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/errors.h>

/// The failures of type descriptions.
namespace core {

/// Types that a provider of type descriptions could not name.
class CORE_API TypeDomainPatternProviderException
    : public BasicException<TypeDomainPatternProviderException> {
  public:
    /// The class id of TypeDomainPatternProviderExceptionObject.
    static constexpr GUID kClassId = "04fbed05-9f33-47ac-bf0a-fea914fea601"_guid;
    using BasicException::BasicException;
};

/// The error object of TypeDomainPatternProviderException.
using TypeDomainPatternProviderExceptionObject = IExceptionObjectImpl<TypeDomainPatternProviderException>;

} // namespace core
