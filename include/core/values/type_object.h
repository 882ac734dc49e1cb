// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/class_entry.h>
#include <core/runtime/unknown.h>
#include <core/strings/term.h>
#include <core/values/type.h>

namespace core {

/// Everything there is to know of a type, as data at one place in its class's source file.
struct TypeInfo {
    GUID id;                            ///< minted once, never changed
    GUID valueClass = kNullGuid;        ///< the class of the type's objects; null for primitive types
    NamePair names;                     ///< the name by which scripts know the type
    const char* presentation = nullptr; ///< message id of what the user reads; null for the script's name
    std::int32_t code = Type::object;   ///< a Type::Code
    /// Makes a value from a script's arguments, whose number is within the bounds; null when scripts cannot.
    GenericValue (*construct)(std::span<GenericValue> arguments) = nullptr;
    IType::Arguments arguments = {-1, -1}; ///< how many arguments `construct` takes
};

/// The type object of a TypeInfo; lives as long as the library, so counting does nothing.
class CORE_API TypeObject final : public IUnknownImpl<TypeObject, IType> {
  public:
    constexpr explicit TypeObject(const TypeInfo& info) noexcept : info_(info) {}

    std::int32_t code() const noexcept override { return info_.code; }
    const GUID& id() const noexcept override { return info_.id; }
    const GUID& valueClass() const noexcept override { return info_.valueClass; }
    const wchar* name(int alias) const noexcept override { return term_string(info_.names, alias); }
    wstring presentation() const override;
    Arguments arguments() const noexcept override { return info_.arguments; }
    GenericValue construct(std::span<GenericValue> arguments) override;

  private:
    const TypeInfo& info_;
};

/// Declares a type, as a static object of the source file of its class: the one type object, and its
/// registration as a script class under the type's id. `info` is a static TypeInfo.
template <const TypeInfo& info>
class TypeEntry {
  public:
    explicit TypeEntry(const char* name) noexcept {
        entry_.record = detail::class_record<TypeEntry>(info.id, name, true, nullptr);
        declare_class(entry_);
    }
    TypeEntry(const TypeEntry&) = delete;
    TypeEntry& operator=(const TypeEntry&) = delete;

    /// The type object, borrowed.
    [[nodiscard]] static IType* instance() noexcept {
        static constinit TypeObject object(info);
        return &object;
    }

  private:
    ClassEntry entry_;
};

} // namespace core
