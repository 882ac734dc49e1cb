// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"

#include <core/runtime/types.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace host {

/// A bar on the terminal for work that takes a while. Shows nothing in the first half second, nor when
/// messages do not go to a terminal; leaves nothing behind.
class Progress {
  public:
    /// `total` is 0 where it is not known.
    Progress(Console& console, std::string_view what, std::uint64_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void add(std::uint64_t done);

  private:
    using Clock = std::chrono::steady_clock;

    std::ostream& out_;
    std::ostream* tied_; // what else flushes when the bar is written: results must not come before its end
    core::wstring what_;
    std::uint64_t total_; // 0 where it is not known
    std::size_t room_;
    std::uint64_t done_ = 0;
    bool terminal_;
    bool shown_ = false;
    Clock::time_point next_;
};

} // namespace host
