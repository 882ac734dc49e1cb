// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/values/ivalue.h>

#include <cstdint>

namespace core {

/// The id of the type Undefined.
inline constexpr GUID kUndefinedType = "ee8d3e7c-f930-4a76-8aad-4ff9083a6ea6"_guid;
/// The id of the type Null.
inline constexpr GUID kNullType = "af40a278-63bc-478e-91a8-19e0d16b10b5"_guid;
/// The id of the type Boolean.
inline constexpr GUID kBooleanType = "5d4125ad-f6e7-4313-be32-f71d0ab60915"_guid;
/// The id of the type Number.
inline constexpr GUID kNumberType = "b0be78f2-0ee6-4d31-a3bb-77dd32ba5bec"_guid;
/// The id of the type String.
inline constexpr GUID kStringType = "9b6abf8b-0173-48e5-b0a0-83b21fcf63c5"_guid;
/// The id of the type Date.
inline constexpr GUID kDateType = "aae38c48-a877-411c-a6d3-fbaa1f83c4bd"_guid;
/// The id of the type Type.
inline constexpr GUID kTypeType = "d47d59f8-73f0-481c-8b5e-f6384c0a4804"_guid;

/// A type, or none. Refers to the one type object of that type; equality is that of the type.
class CORE_API Type {
  public:
    /// The types that have a code of their own.
    enum Code : std::int32_t {
        undefined = 0, ///< Undefined
        null = 1,      ///< Null
        boolean = 2,   ///< Boolean
        number = 3,    ///< Number
        string = 4,    ///< String
        date = 5,      ///< Date
        type = 1000,   ///< Type
        object = -1    ///< every other type
    };

    /// Holds no type.
    Type() = default;
    /// Holds the type of a type object; null means no type.
    explicit Type(IType* typeObject) noexcept : type_(typeObject) {}
    /// Holds the primitive type with a code; no type for a number that is not such a code.
    explicit Type(Code code) noexcept;
    /// Holds the registered type with an id. Throws TypeException ("IDS_TYPEERROR_TYPENOTDEFINED") if no type
    /// has it.
    explicit Type(const GUID& id);
    /// Holds the registered type with a name in either language, in any case. Throws TypeException as above.
    explicit Type(wstring_view name);

    /// Returns whether there is a type.
    [[nodiscard]] bool isDefined() const noexcept { return type_ != nullptr; }
    /// Returns the code; `object` when the type has none or there is no type.
    [[nodiscard]] Code code() const noexcept;
    /// Returns the type's id; the null id for no type.
    [[nodiscard]] const GUID& id() const noexcept { return type_ != nullptr ? type_->id() : kNullGuid; }
    /// Returns the name in the language of `alias` (0 English, 1 Russian), or null.
    [[nodiscard]] const wchar* name(int alias) const noexcept {
        return type_ != nullptr ? type_->name(alias) : nullptr;
    }
    /// Returns what the user reads; empty for no type.
    [[nodiscard]] wstring presentation() const {
        return type_ != nullptr ? type_->presentation() : wstring();
    }
    /// Returns the type object, borrowed as long as its module is loaded; null for no type.
    [[nodiscard]] IType* get() const noexcept { return type_; }

    /// Returns whether both are the same type, or both none.
    friend bool operator==(const Type&, const Type&) = default;

  private:
    IType* type_ = nullptr; // borrowed from the module of the type
};

} // namespace core
