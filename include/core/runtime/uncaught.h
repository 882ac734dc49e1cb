// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/exception.h>

#include <exception>

/// Failures that nobody catches: what escapes a thread of the library or a callback that must not throw.
namespace core {

/// Is told of failures that nobody catches. A program offers one as a service of its process.
class IUncaughtExceptions : public IUnknown {
  public:
    /// The interface id.
    static constexpr GUID IID = "449c968d-dbe5-4387-8e59-d14acb49cb46"_guid;

    /// Takes notice of `failure`, which is not null and may be kept with a reference. `where` names the
    /// thread or the event that it escaped from. It is called on the thread of the failure, by several at the
    /// same time. What it throws is reported on standard error, beside the failure itself.
    virtual void uncaught(IExceptionObject* failure, const wstring& where) = 0;

  protected:
    ~IUncaughtExceptions() = default;
};

/// Reports `failure`, which must not be null, to the IUncaughtExceptions of the calling thread's process.
/// Without one, and when that fails, it goes to standard error as one line. `where` names what it escaped
/// from.
CORE_API void report_uncaught(const std::exception_ptr& failure, const wstring& where) noexcept;

} // namespace core
