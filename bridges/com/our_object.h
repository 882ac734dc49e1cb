// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/ole.h"

#include <core/runtime/exception.h>
#include <core/values/generic_value.h>

/// How the bridge finds what is ours behind an interface that came back.
namespace core::com {

/// The id of IOurObject.
inline constexpr ::GUID kOurObject = {
    0x6f0d9a52, 0x3c1e, 0x4b7e, {0x9a, 0x1b, 0x52, 0x8c, 0x0e, 0x77, 0x41, 0xd3}};
/// The id of IOurFailure.
inline constexpr ::GUID kOurFailure = {
    0xc2b5e1f8, 0x7a40, 0x4d0c, {0xb6, 0x3d, 0x19, 0xe4, 0x5f, 0x08, 0xa2, 0x6c}};

/// A value of ours as the automation system holds it.
class IOurObject : public ::IUnknown {
  public:
    /// Returns the value, borrowed.
    virtual const Value& STDMETHODCALLTYPE ourValue() noexcept = 0;
};

/// A failure of ours as the automation system holds it.
class IOurFailure : public ::IUnknown {
  public:
    /// Returns the failure, borrowed.
    virtual IExceptionObject* STDMETHODCALLTYPE failure() noexcept = 0;
};

/// Returns the automation object of a value that is an object or a type, the same one for one object as long
/// as anybody holds it.
[[nodiscard]] ComPtr<IDispatch> dispatch_of(const Value& value);
/// Returns how many values of ours the automation system holds.
[[nodiscard]] std::size_t held_objects() noexcept;

/// Returns the value of an automation object: of ours what it was, else a COMObject. Null is the COMObject
/// that is nothing.
[[nodiscard]] Value value_of_unknown(::IUnknown* unknown);
/// Returns the automation object that a COMObject holds, with a reference; null for every other value.
/// `nothing` says whether it is the one that holds none.
[[nodiscard]] ComPtr<::IUnknown> foreign_object(const Value& value, bool& nothing);

} // namespace core::com
