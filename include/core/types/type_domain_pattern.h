// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/guid.h>
#include <core/types/qualifiers.h>
#include <core/values/value.h>

#include <initializer_list>
#include <span>
#include <vector>

namespace core {

/// A set of types, by id, with qualifiers for Number, String and Date. The empty set stands for every value.
///
/// Patterns are equal when their sets are and, for those of the three types that are in the set, their
/// qualifiers are; qualifiers of other types are kept but count for nothing. Operations that change a pattern
/// throw only std::bad_alloc, and the pattern is then unchanged. Threads: several readers or one
/// writer.
class CORE_API TypeDomainPattern {
  public:
    /// Makes the empty set.
    TypeDomainPattern() = default;
    /// Makes the set of one type.
    explicit TypeDomainPattern(const GUID& type) { addType(type); }
    /// Makes a set of types; a type may be given twice.
    explicit TypeDomainPattern(std::span<const GUID> types) { addTypes(types); }
    /// Makes a set of types; a type may be given twice.
    TypeDomainPattern(std::initializer_list<GUID> types) { addTypes({types.begin(), types.size()}); }

    // modify
    /// Adds a type; one that is in the set already changes nothing.
    void addType(const GUID& type);
    /// Adds types, all or none; those that are in the set already change nothing.
    void addTypes(std::span<const GUID> types);
    /// Admits from now on what either of the two admits: the union of both sets, and qualifiers merged where
    /// both have the type.
    void merge(const TypeDomainPattern& other);
    /// Sets the qualifiers of Number, whether or not it is in the set.
    void setNumericQualifiers(const NumericQualifiers& qualifiers) noexcept { numeric_ = qualifiers; }
    /// Sets the qualifiers of String, whether or not it is in the set.
    void setStringQualifiers(const StringQualifiers& qualifiers) noexcept { string_ = qualifiers; }
    /// Sets the qualifiers of Date, whether or not it is in the set.
    void setDateQualifiers(const DateQualifiers& qualifiers) noexcept { date_ = qualifiers; }

    // inspect
    /// Says whether the set is empty, which admits every value.
    [[nodiscard]] bool isEmpty() const noexcept { return primitives_ == 0 && others_.empty(); }
    /// Returns how many types are in the set.
    [[nodiscard]] std::size_t size() const noexcept;
    /// Says whether a type is in the set; the empty set contains none.
    [[nodiscard]] bool containsType(const GUID& type) const noexcept;
    /// Says whether the type of a primitive kind is in the set; `object` never is.
    [[nodiscard]] bool containsType(ValueKind kind) const noexcept { return (primitives_ & bit(kind)) != 0; }
    /// Returns the ids of the types: primitive kinds in the order of ValueKind, then all others by id.
    [[nodiscard]] std::vector<GUID> types() const;
    /// Returns the qualifiers of Number, valid until they are set.
    [[nodiscard]] const NumericQualifiers& numericQualifiers() const noexcept { return numeric_; }
    /// Returns the qualifiers of String, valid until they are set.
    [[nodiscard]] const StringQualifiers& stringQualifiers() const noexcept { return string_; }
    /// Returns the qualifiers of Date, valid until they are set.
    [[nodiscard]] const DateQualifiers& dateQualifiers() const noexcept { return date_; }

    // compare
    /// Says whether the sets, and the qualifiers that count, are equal.
    [[nodiscard]] bool operator==(const TypeDomainPattern& other) const noexcept;
    /// Returns a hash; equal patterns have equal ones.
    [[nodiscard]] std::int32_t hash() const noexcept;
    /// Says whether `other` admits, unchanged, whatever this pattern does.
    [[nodiscard]] bool isSubset(const TypeDomainPattern& other) const noexcept;

    // write and read
    /// Writes the pattern as docs/type-descriptions.md describes. Equal patterns write equal text. Throws
    /// what the stream throws.
    void serialize(ListOutStream& out) const;
    /// Reads a pattern in place of this one. Throws ListStreamException for text that is not a pattern's; the
    /// pattern is then unchanged.
    void deserialize(ListInStream& in);

  protected:
    /// Says whether the type of an object is in the set; types of primitive kinds are not looked at.
    [[nodiscard]] bool containsObjectType(const GUID& type) const noexcept;

  private:
    static constexpr std::uint32_t bit(ValueKind kind) noexcept {
        return kind < ValueKind::object ? 1U << static_cast<unsigned>(kind) : 0U;
    }

    std::uint32_t primitives_ = 0; // a bit for each kind
    std::vector<GUID> others_;     // in order, each once
    NumericQualifiers numeric_;
    StringQualifiers string_;
    DateQualifiers date_;
};

} // namespace core
