// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/type_info.h"

#include <core/strings/names.h>
#include <core/values/generic_value.h>

#include <memory>
#include <unordered_map>
#include <vector>

namespace core::com {

/// The members of an object of others: the numbers that scripts call them by, and the calls.
class ForeignMembers {
  public:
    /// A member that somebody has asked for.
    struct Member {
        wstring name; ///< as it was asked for
        DISPID id;    ///< the number that the object has for it
    };
    /// Members under the numbers that our side has for them.
    class Table {
      public:
        /// Returns the number of a name; -1 where none has it.
        [[nodiscard]] int find(wstring_view name) const;
        /// Adds a member and returns its number.
        int add(wstring_view name, DISPID id);
        /// Returns a member, borrowed until the object goes; null for a number out of range.
        [[nodiscard]] const Member* at(int number) const noexcept;
        /// Returns how many there are.
        [[nodiscard]] int count() const noexcept { return static_cast<int>(members_.size()); }

      private:
        std::vector<std::unique_ptr<Member>> members_;
        std::unordered_map<wstring, int, NocaseHash, NocaseEqual> numbers_;
    };

    /// Takes a reference to an object; null is the one that is nothing.
    explicit ForeignMembers(::IUnknown* object) noexcept
        : object_(ComPtr<::IUnknown>::query(object)), dispatch_(ComPtr<IDispatch>::query(object)),
          thread_(GetCurrentThreadId()) {}

    /// Returns the object, borrowed: the pointer that is the same for all interfaces of one object.
    [[nodiscard]] ::IUnknown* object() const noexcept { return object_.get(); }
    /// Returns the object as far as it has members, borrowed; null where it has none.
    [[nodiscard]] IDispatch* dispatch() const noexcept { return dispatch_.get(); }
    /// Returns whether the calling thread is the one that the object belongs to.
    [[nodiscard]] bool isHere() const noexcept { return thread_ == GetCurrentThreadId(); }
    /// Throws COMException (COM_WRONG_THREAD) on any other thread.
    void requireHere() const;
    /// Returns what the type library says.
    [[nodiscard]] const KnownMembers& known();
    /// Returns what the type library says of a member; null where it is silent.
    [[nodiscard]] const KnownMember* known(const Member* member);
    /// Returns the properties, with those of the type library.
    [[nodiscard]] const Table& properties();
    /// Returns the methods, with those of the type library.
    [[nodiscard]] const Table& methods();

    /// Returns the number of a property, or -1; asks the object for names that were not asked for yet.
    [[nodiscard]] int findProperty(wstring_view name) { return find(properties_, name); }
    /// Returns the number of a method, or -1.
    [[nodiscard]] int findMethod(wstring_view name) { return find(methods_, name); }
    /// Returns the number of "Get" or "Set", by which scripts reach elements, for an object that has no such
    /// method; -1 for any other name.
    [[nodiscard]] int findElementMethod(wstring_view name);
    /// Returns the property with a number. Throws COMException for a number out of range.
    [[nodiscard]] const Member& property(int number) const;
    /// Returns the method with a number, as property() does.
    [[nodiscard]] const Member& method(int number) const;

    /// Calls a member. Parameters that the type library says to pass values back are changed in `arguments`.
    /// With DISPATCH_PROPERTYPUT the last argument is the new value. Throws COMException.
    GenericValue invoke(const Member& member, WORD flags, std::span<GenericValue> arguments);

  private:
    int find(Table& table, wstring_view name);
    void listKnown();

    ComPtr<::IUnknown> object_;
    ComPtr<IDispatch> dispatch_;
    DWORD thread_;
    std::shared_ptr<const KnownMembers> known_; // null until somebody asks
    bool listed_ = false;                       // the tables hold the members of the type library
    Table properties_;
    Table methods_;
};

} // namespace core::com
