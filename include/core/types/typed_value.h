// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/types/type_domain.h>

namespace core {

/// A value bound to a type description: every value is adjusted to the description before it is stored. An
/// operation that throws leaves value and description as they were. Threads: several readers or one writer.
class CORE_API TypedValue {
  public:
    /// Makes Undefined, with a description that admits everything.
    TypedValue() = default;
    /// Makes the default value of the description. Throws as setDomain() does.
    explicit TypedValue(TypeDomain domain) { setDomain(std::move(domain)); }

    // modify
    /// Binds to another description and takes its default value. Throws ConverterException where
    /// StringQualifiers::adjust() does.
    void setDomain(TypeDomain domain);
    /// Binds to another description and adjusts the value to it. Throws as TypeDomain::adjust() does.
    void changeDomain(TypeDomain domain);
    /// Stores the default value of the description. Throws as setDomain() does.
    void setDefaultValue() { value_ = domain_.defaultValue(); }
    /// Stores a value that is given as an object, a null pointer as Undefined. Throws as setValue() does.
    void setIValue(IValue* value) { setValue(GenericValue(value)); }
    /// Stores a value. Throws as TypeDomain::adjust() does.
    void setValue(GenericValue value) { value_ = domain_.adjust(std::move(value)); }

    // inspect
    /// Returns the description, valid until it is changed.
    [[nodiscard]] const TypeDomain& typeDomain() const noexcept { return domain_; }
    /// Returns the value, valid until it is changed.
    [[nodiscard]] const GenericValue& value() const noexcept { return value_; }
    /// Returns the value as an object, which may be made for that; never null.
    [[nodiscard]] InterfacePtr<IValue> getIValue() const { return value_.getIValue(); }

  private:
    TypeDomain domain_;
    GenericValue value_;
};

} // namespace core
