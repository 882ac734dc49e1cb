// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/types/type_domain_pattern.h>
#include <core/values/generic_value.h>

namespace core {

/// A type description at work: a pattern, and what it makes of values. It is compared as the pattern is.
/// Threads: several readers or one writer.
class CORE_API TypeDomain : private TypeDomainPattern {
  public:
    using TypeDomainPattern::TypeDomainPattern;
    /// Makes a description that admits every value.
    TypeDomain() = default;
    /// Makes a description of a pattern.
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
    /// Admits from now on what either of the two admits. Throws only std::bad_alloc.
    void merge(const TypeDomain& other) { TypeDomainPattern::merge(other); }
    /// Returns the pattern, valid as long as the description.
    [[nodiscard]] const TypeDomainPattern& pattern() const noexcept { return *this; }
    using TypeDomainPattern::hash;
    /// Says whether the patterns are equal.
    friend bool operator==(const TypeDomain& a, const TypeDomain& b) noexcept {
        return a.pattern() == b.pattern();
    }

    // defaults
    /// Returns the type of the set when it is the only one, else that of Undefined. Throws TypeException when
    /// the only type is not registered.
    [[nodiscard]] Type defaultType() const;
    /// Returns what is stored where nothing is given. When the set holds one type alone that is false, 0, the
    /// empty string filled up to its fixed length, the empty date, the type of Undefined, or Null. In every
    /// other case it is Undefined. Throws ConverterException where StringQualifiers::adjust() does.
    [[nodiscard]] GenericValue defaultValue() const;

    // adjust
    /// Says whether the value is of one of the types and its qualifiers leave it as it is. Costs next to
    /// nothing.
    [[nodiscard]] bool fits(const Value& value) const noexcept;
    /// Returns the value itself when it fits, and a value of one of the types adjusted to its qualifiers. Any
    /// other value is converted to Number, Date, String or Boolean, the first of them that is in the set and
    /// of which the value has a reading, and then adjusted. Without such a reading, and for Undefined and
    /// Null, the default value is returned. Throws what the qualifiers throw.
    [[nodiscard]] GenericValue adjust(GenericValue value) const {
        return fits(value) ? std::move(value) : adjusted(value);
    }

    /// Returns the text of a value with all the fraction digits that the description gives a Number, up to a
    /// thousand: 1.20 where two are kept, and with those parts of a Date that it keeps. Any other value, and
    /// a Number of a process that has set a format for numbers, has its presentation. Throws what the
    /// presentation throws.
    [[nodiscard]] wstring presentation(const Value& value) const;

    /// Says whether the value is of one of the types, whatever their qualifiers say, or is the default value:
    /// every value that adjust() returned is. A reader of stored values asks this. It cannot ask fits(),
    /// because rounding carries a number past its qualifiers: 99.996 in four digits, two of them behind the
    /// point, is stored as 100.
    [[nodiscard]] bool canHold(const Value& value) const;

  private:
    [[nodiscard]] GenericValue adjusted(const Value& value) const;
    [[nodiscard]] GenericValue converted(const Value& value) const;
};

/// Writes the pattern. Throws as TypeDomainPattern::serialize() does.
inline void to_stream(ListOutStream& out, const TypeDomain& domain) {
    domain.pattern().serialize(out);
}
/// Reads a pattern. Throws as TypeDomainPattern::deserialize() does; the description is then unchanged.
inline void from_stream(ListInStream& in, TypeDomain& domain) {
    TypeDomainPattern pattern;
    pattern.deserialize(in);
    domain = TypeDomain(std::move(pattern));
}

} // namespace core
