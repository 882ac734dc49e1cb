// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/types/type_domain_pattern.h>
#include <core/values/generic_value.h>

namespace core {

/// A type description at work: a pattern, and what it makes of values. Equality and threads as the pattern.
class CORE_API TypeDomain : private TypeDomainPattern {
  public:
    using TypeDomainPattern::TypeDomainPattern;
    TypeDomain() = default;
    explicit TypeDomain(TypeDomainPattern pattern) noexcept : TypeDomainPattern(std::move(pattern)) {}

    using TypeDomainPattern::addType;
    using TypeDomainPattern::addTypes;
    using TypeDomainPattern::containsType;
    using TypeDomainPattern::dateQualifiers;
    using TypeDomainPattern::isEmpty;
    using TypeDomainPattern::numericQualifiers;
    using TypeDomainPattern::setDateQualifiers;
    using TypeDomainPattern::setNumericQualifiers;
    using TypeDomainPattern::setStringQualifiers;
    using TypeDomainPattern::stringQualifiers;
    using TypeDomainPattern::types;
    void merge(const TypeDomain& other) { TypeDomainPattern::merge(other); }
    [[nodiscard]] const TypeDomainPattern& pattern() const noexcept { return *this; }
    using TypeDomainPattern::hash;
    friend bool operator==(const TypeDomain& a, const TypeDomain& b) noexcept {
        return a.pattern() == b.pattern();
    }

    // defaults
    /// The type of the set when it is the only one, else that of Undefined. TypeException when
    /// that type is not registered.
    [[nodiscard]] Type defaultType() const;
    /// What is stored where there is nothing to store: false, 0, the empty string, the empty
    /// date, the type of Undefined, Null, each adjusted to its qualifiers, when theirs is the
    /// only type; Undefined otherwise.
    [[nodiscard]] GenericValue defaultValue() const;

    // adjust
    /// Says whether the value is of one of the types and its qualifiers leave it as it is. Costs next to
    /// nothing.
    [[nodiscard]] bool fits(const Value& value) const noexcept;
    /// Returns the value itself when it fits. A value of one of the types is adjusted to its qualifiers. Any
    /// other is converted to Number, Date, String or Boolean, the first of them that is in the set and
    /// of which the value has a reading, and adjusted; without one, and for Undefined and Null, it
    /// gives way to the default value.
    [[nodiscard]] GenericValue adjust(GenericValue value) const {
        return fits(value) ? std::move(value) : adjusted(value);
    }

    /// Says whether the value is of one of the types, whatever their qualifiers say, or is the default value:
    /// every value that adjust() returned is. A reader of stored values asks this. It cannot ask fits(),
    /// because rounding carries a number past its qualifiers: 99.996 in four digits, two of them behind the
    /// point, is stored as 100.
    [[nodiscard]] bool canHold(const Value& value) const;

  private:
    [[nodiscard]] GenericValue adjusted(const Value& value) const;
    [[nodiscard]] GenericValue converted(const Value& value) const;
};

/// The text of the pattern. Reading fails as TypeDomainPattern::deserialize does.
inline void to_stream(ListOutStream& out, const TypeDomain& domain) {
    domain.pattern().serialize(out);
}
inline void from_stream(ListInStream& in, TypeDomain& domain) {
    TypeDomainPattern pattern;
    pattern.deserialize(in);
    domain = TypeDomain(std::move(pattern));
}

} // namespace core
