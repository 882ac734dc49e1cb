// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/values/ivalue.h>

#include <cstdint>

namespace core {

/// The ids of the primitive types.
inline constexpr GUID kUndefinedType = "ee8d3e7c-f930-4a76-8aad-4ff9083a6ea6"_guid;
inline constexpr GUID kNullType = "af40a278-63bc-478e-91a8-19e0d16b10b5"_guid;
inline constexpr GUID kBooleanType = "5d4125ad-f6e7-4313-be32-f71d0ab60915"_guid;
inline constexpr GUID kNumberType = "b0be78f2-0ee6-4d31-a3bb-77dd32ba5bec"_guid;
inline constexpr GUID kStringType = "9b6abf8b-0173-48e5-b0a0-83b21fcf63c5"_guid;
inline constexpr GUID kDateType = "aae38c48-a877-411c-a6d3-fbaa1f83c4bd"_guid;
inline constexpr GUID kTypeType = "d47d59f8-73f0-481c-8b5e-f6384c0a4804"_guid;

/// A type, or none. Refers to the one type object of that type; equality is that of the type.
class CORE_API Type {
  public:
    /// The types that have a code of their own.
    enum Code : std::int32_t {
        undefined = 0,
        null = 1,
        boolean = 2,
        number = 3,
        string = 4,
        date = 5,
        type = 1000,
        object = -1 ///< what the type of every other value answers
    };

    /// No type.
    Type() = default;
    explicit Type(IType* type) noexcept : type_(type) {}
    /// The primitive type with a code; no type for a code that is none.
    explicit Type(Code code) noexcept;
    /// The registered type with an id. TypeException ("IDS_TYPEERROR_TYPENOTDEFINED") when there is none.
    explicit Type(const GUID& id);
    /// The registered type with a name in either language, in any case. TypeException as above.
    explicit Type(wstring_view name);

    [[nodiscard]] bool isDefined() const noexcept { return type_ != nullptr; }
    /// The code, or `object` when it has none or there is no type.
    [[nodiscard]] Code code() const noexcept;
    /// The type's id, or the null id.
    [[nodiscard]] const GUID& id() const noexcept { return type_ != nullptr ? type_->id() : kNullGuid; }
    /// The name in the language of `alias`, or null.
    [[nodiscard]] const wchar* name(int alias) const noexcept {
        return type_ != nullptr ? type_->name(alias) : nullptr;
    }
    [[nodiscard]] wstring presentation() const {
        return type_ != nullptr ? type_->presentation() : wstring();
    }
    /// The type object, borrowed; null for no type.
    [[nodiscard]] IType* get() const noexcept { return type_; }

    friend bool operator==(const Type&, const Type&) = default;

  private:
    IType* type_ = nullptr; // type objects live as long as the library
};

} // namespace core
