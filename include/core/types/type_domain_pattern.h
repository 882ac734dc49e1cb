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
/// A value type. Equal are patterns with equal sets and, for those of the three types that are in
/// the set, equal qualifiers; qualifiers of other types are kept but count for nothing. Threads:
/// several readers or one writer.
class CORE_API TypeDomainPattern {
  public:
    TypeDomainPattern() = default;
    explicit TypeDomainPattern(const GUID& type) { addType(type); }
    explicit TypeDomainPattern(std::span<const GUID> types) { addTypes(types); }
    TypeDomainPattern(std::initializer_list<GUID> types) { addTypes({types.begin(), types.size()}); }

    // modify
    void addType(const GUID& type);
    void addTypes(std::span<const GUID> types);
    /// Admits from now on what either of the two admits: the union of both sets, and qualifiers merged where
    /// both have the type.
    void merge(const TypeDomainPattern& other);
    void setNumericQualifiers(const NumericQualifiers& qualifiers) noexcept { numeric_ = qualifiers; }
    void setStringQualifiers(const StringQualifiers& qualifiers) noexcept { string_ = qualifiers; }
    void setDateQualifiers(const DateQualifiers& qualifiers) noexcept { date_ = qualifiers; }

    // inspect
    /// Whether the set is empty, which admits every value.
    [[nodiscard]] bool isEmpty() const noexcept { return primitives_ == 0 && others_.empty(); }
    /// How many types are in the set.
    [[nodiscard]] std::size_t size() const noexcept;
    [[nodiscard]] bool containsType(const GUID& type) const noexcept;
    /// The same for the type of a primitive kind.
    [[nodiscard]] bool containsType(ValueKind kind) const noexcept { return (primitives_ & bit(kind)) != 0; }
    /// The types of primitive kinds in the order of ValueKind, then all others by id.
    [[nodiscard]] std::vector<GUID> types() const;
    [[nodiscard]] const NumericQualifiers& numericQualifiers() const noexcept { return numeric_; }
    [[nodiscard]] const StringQualifiers& stringQualifiers() const noexcept { return string_; }
    [[nodiscard]] const DateQualifiers& dateQualifiers() const noexcept { return date_; }

    // compare
    [[nodiscard]] bool operator==(const TypeDomainPattern& other) const noexcept;
    [[nodiscard]] std::int32_t hash() const noexcept;
    /// Whether `other` admits, unchanged, whatever this pattern does.
    [[nodiscard]] bool isSubset(const TypeDomainPattern& other) const noexcept;

    // write and read
    /// As docs/type-descriptions.md lays down. Equal patterns write equal text.
    void serialize(ListOutStream& out) const;
    /// ListStreamException for text that was never written; the pattern is then unchanged.
    void deserialize(ListInStream& in);

  protected:
    /// The same for the type of an object: types of primitive kinds are not looked at.
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
