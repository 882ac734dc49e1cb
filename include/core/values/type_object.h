// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/class_entry.h>
#include <core/runtime/live_counter.h>
#include <core/runtime/unknown.h>
#include <core/strings/term.h>
#include <core/values/type.h>
#include <core/values/value.h>

/// The halves of an object that scripts hold: its behaviour as a value, and its type.
namespace core {

/// The common base of value objects: no reading except an empty presentation, equal only to itself, hashed by
/// address. An object overrides what it does otherwise, and says its type.
class CORE_API IValueImpl : public IValue {
  public:
    /// Returns null: an object has no payload.
    const void* getDataPtr() const noexcept override { return nullptr; }
    /// Sets false and returns false.
    bool getBoolean(bool& out) const override;
    /// Sets zero and returns false.
    bool getNumeric(Numeric& out) const override;
    /// Sets the empty string and returns true.
    bool getString(wstring& out) const override;
    /// Sets the empty date and returns false.
    bool getDate(Date& out) const override;
    /// Returns whether `other` is this object.
    bool isEqual(const IValue* other) const noexcept override { return this == other; }
    /// Returns a hash of the object's address.
    std::int32_t hashCode() const noexcept override;

  protected:
    ~IValueImpl() = default;
};

/// Everything there is to know of a type, as data at one place in its class's source file.
struct TypeInfo {
    GUID id;                            ///< the type's id, minted once, never changed
    GUID valueClass = kNullGuid;        ///< the class of the type's objects; null for primitive types
    NamePair names;                     ///< the name by which scripts know the type
    const char* presentation = nullptr; ///< message id of what the user reads; null for the script's name
    std::int32_t code = Type::object;   ///< a Type::Code
    /// Makes a value from a script's arguments, whose count is within the bounds; null when scripts cannot.
    GenericValue (*construct)(std::span<GenericValue> arguments) = nullptr;
    IType::Arguments arguments = {-1, -1}; ///< how many arguments `construct` takes
    /// Where the presentation is found and who is asked for an unload: the module that declares the type.
    const ModuleAnchor* module = &module_anchor;
};

/// The type object of a TypeInfo. It lives as long as the module that declares it; references to it keep that
/// module loaded, and do nothing else.
class CORE_API TypeObject final : public IUnknownImpl<TypeObject, IType> {
  public:
    /// Describes `info`, which must live as long as the object.
    constexpr explicit TypeObject(const TypeInfo& info) noexcept
        : info_(info), held_(info.names.text[kEnglish], *info.module) {}

    /// Answers a query for IType.
    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override;
    /// Counts a holder when the type's module can be unloaded; returns 1.
    std::uint32_t AddRef() noexcept override {
        if (info_.module->leaves.load(std::memory_order_relaxed))
            held_.raise();
        return 1;
    }
    /// Undoes AddRef(); returns 1.
    std::uint32_t Release() noexcept override {
        if (info_.module->leaves.load(std::memory_order_relaxed))
            held_.lower();
        return 1;
    }

    /// Returns the code, or Type::object.
    std::int32_t code() const noexcept override { return info_.code; }
    /// Returns the type's id.
    const GUID& id() const noexcept override { return info_.id; }
    /// Returns the class id of the type's objects.
    const GUID& valueClass() const noexcept override { return info_.valueClass; }
    /// Returns the name in the language of `alias`, or null.
    const wchar* name(int alias) const noexcept override { return term_string(info_.names, alias); }
    /// Returns what the user reads.
    wstring presentation() const override;
    /// Returns how many arguments construct() takes.
    Arguments arguments() const noexcept override { return info_.arguments; }
    /// Returns a new value. Throws CtorException when scripts cannot make one or the count of arguments is
    /// wrong.
    GenericValue construct(std::span<GenericValue> arguments) override;

  private:
    const TypeInfo& info_;
    LiveCounter held_;
};

/// Declares a type, as a static object of the source file of its class: the one type object, and its
/// registration as a script class under the type's id. `info` is a static TypeInfo.
template <const TypeInfo& info>
class TypeEntry {
  public:
    /// Registers the type; `name` is the class's name in reports, a literal.
    explicit TypeEntry(const char* name) noexcept {
        entry_.record = detail::class_record<TypeEntry>(info.id, name, true, nullptr);
        declare_class(entry_);
    }
    TypeEntry(const TypeEntry&) = delete;
    TypeEntry& operator=(const TypeEntry&) = delete;

    /// Returns the type object, borrowed as long as its module is loaded.
    [[nodiscard]] static IType* instance() noexcept {
        static CORE_CONSTINIT TypeObject object(info);
        return &object;
    }

  private:
    ClassEntry entry_;
};

} // namespace core
