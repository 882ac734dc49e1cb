// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/types/type_domain.h>

namespace core {

/// A value bound to a type description: whatever is stored is adjusted to it first. An operation that throws
/// leaves value and description as they were. Threads: as a value.
class CORE_API TypedValue {
  public:
    /// Undefined, with a description that admits everything.
    TypedValue() = default;
    /// The default value of the description.
    explicit TypedValue(TypeDomain domain) { setDomain(std::move(domain)); }

    // modify
    /// Binds to another description and starts anew with its default value.
    void setDomain(TypeDomain domain);
    /// Binds to another description and keeps the value, adjusted to it.
    void changeDomain(TypeDomain domain);
    void setDefaultValue() { value_ = domain_.defaultValue(); }
    void setIValue(IValue* value) { setValue(GenericValue(value)); }
    void setValue(GenericValue value) { value_ = domain_.adjust(std::move(value)); }

    // inspect
    [[nodiscard]] const TypeDomain& typeDomain() const noexcept { return domain_; }
    [[nodiscard]] const GenericValue& value() const noexcept { return value_; }
    [[nodiscard]] InterfacePtr<IValue> getIValue() const { return value_.getIValue(); }

  private:
    TypeDomain domain_;
    GenericValue value_;
};

} // namespace core
