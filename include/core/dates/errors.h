// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>

#include <string>
#include <tuple>

/// The failures of dates.
namespace core {

namespace messages {

/// A time zone that is not known; {0} is the name that was asked for.
inline constexpr const char* kUnknownTimeZone = "IDS_TIME_ZONE_UNKNOWN";

} // namespace messages

/// A time zone that the system does not know.
class CORE_API TimeZoneException : public BasicException<TimeZoneException> {
  public:
    /// The class id of TimeZoneExceptionObject.
    static constexpr GUID kClassId = "96aaad85-0735-40c5-a1bf-a8e9eb25eac6"_guid;

    using BasicException::BasicException;
    /// Makes a failure with the message for the name `zone`, in UTF-8. Takes a reference to `cause`, which
    /// may be null.
    explicit TimeZoneException(const std::string& zone, IExceptionObject* cause = nullptr);
    /// Returns the name that was asked for; it is valid as long as the exception.
    [[nodiscard]] const wstring& zone() const noexcept { return zone_; }

  private:
    template <class>
    friend class IExceptionObjectImpl;
    static auto fields(auto& self) noexcept { return std::tie(self.zone_); }

    wstring zone_;
};

/// The error object of TimeZoneException.
using TimeZoneExceptionObject = IExceptionObjectImpl<TimeZoneException>;

} // namespace core
