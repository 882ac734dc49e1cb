// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/ole.h"

#include <core/context/context_def.h>

#include <vector>

/// The arguments of a call that comes in.
namespace core::com {

/// The arguments of one call: those without a name in their order, then the named ones. A call that does not
/// fit is thrown as a BadCall, a value that cannot be read as a COMException.
class CallArguments {
  public:
    /// Borrows what a caller has passed.
    explicit CallArguments(DISPPARAMS& given) noexcept : given_(given) {}

    /// Returns how many arguments there are, without the new value of a property.
    [[nodiscard]] UINT count() const noexcept { return given_.cArgs - (hasNewValue() ? 1 : 0); }
    /// Returns whether the last one is the new value of a property.
    [[nodiscard]] bool hasNewValue() const noexcept {
        return given_.cNamedArgs > 0 && given_.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
    }
    /// Returns the new value of a property.
    [[nodiscard]] GenericValue newValue() const;
    /// Returns an argument without a name, in the order of the call.
    [[nodiscard]] GenericValue at(UINT position) const;
    /// Returns all arguments for a method, with defaults for those that were left out.
    [[nodiscard]] std::vector<GenericValue> forMethod(const IContextDef& definition, int method) const;
    /// Stores what the method passes back where the caller wants it.
    void passBack(const IContextDef& definition, int method, const std::vector<GenericValue>& values) const;

  private:
    [[nodiscard]] const VARIANT* find(UINT position) const noexcept;

    DISPPARAMS& given_;
};

/// A call that automation has its own number for.
struct BadCall {
    ::HRESULT result;  ///< the number
    UINT argument = 0; ///< the index of the argument concerned, as the caller counts
};

} // namespace core::com
