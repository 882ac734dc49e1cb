// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>
#include <core/runtime/unknown.h>

#include <cstdint>

/// What C++ code outside the module may use of it. Nothing here needs the module's file to link.
namespace counter {

using core::literals::operator""_guid;

/// A counter was to count further than it may. The message has the total and the limit.
class LimitException : public core::BasicException<LimitException> {
  public:
    /// The class id of the error object.
    static constexpr core::GUID kClassId = "093e32b1-62b1-48c6-90ce-e2d557b74665"_guid;
    using BasicException::BasicException;
};

/// The counters of a process, a service.
class ICounters : public core::IUnknown {
  public:
    /// The interface's id.
    static constexpr core::GUID IID = "7d16e5a9-e6c5-47de-bbbe-52b2318af9a9"_guid;
    /// Returns how many counters were made since the service was first asked for.
    [[nodiscard]] virtual std::int32_t made() const noexcept = 0;
    /// Calls `work` and returns whether it threw a LimitException. Other exceptions pass through.
    virtual bool exceeds(void (*work)()) = 0;

  protected:
    ~ICounters() = default;
};

} // namespace counter
