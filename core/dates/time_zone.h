// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unicode/basictz.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace core {

/// The offsets of one time zone from universal time. Moments are milliseconds since 1970.
class TimeZone {
  public:
    /// The zone of that name, the system's for the empty name, UTC for a name that nobody knows.
    explicit TimeZone(const std::string& name);

    [[nodiscard]] std::chrono::milliseconds offsetAtUniversal(std::int64_t moment) const;
    /// A local moment that is skipped or doubled is taken by the offset before the change.
    [[nodiscard]] std::chrono::milliseconds offsetAtLocal(std::int64_t moment) const;

  private:
    std::unique_ptr<icu::TimeZone> zone_;
};

/// The zone of that name, kept until the calling thread asks for another one: finding a zone costs far more
/// than using it. The reference holds until this thread's next call.
[[nodiscard]] const TimeZone& time_zone(const std::string& name);

} // namespace core
