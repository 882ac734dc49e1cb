// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/interface_ptr.h>
#include <core/script/errors.h>
#include <core/values/generic_value.h>

/// Failures as scripts see them: the object `Error` behind `Except`.
namespace core::script {

/// A failure that a script holds. Scripts know the type as "Error" and read text, id, class, parameters,
/// place and cause.
class IErrorValue : public IUnknown {
  public:
    static constexpr GUID IID = "12580d29-25f8-4933-aa8e-87227ac3aea7"_guid; ///< the interface's id

    /// Returns the failure, borrowed: valid as long as the object.
    [[nodiscard]] virtual const Error& error() const noexcept = 0;

  protected:
    ~IErrorValue() = default;
};

/// Returns a failure as a value of the type "Error", which is an IErrorValue. Throws std::bad_alloc.
[[nodiscard]] CORE_API GenericValue create_error_value(const Error& error);

} // namespace core::script
