// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/values/ivalue.h>

#include <cstdint>

namespace core {

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
