// SPDX-License-Identifier: Apache-2.0
#include "host/progress.h"

#include "host/terminal_text.h"

#include <core/runtime/utf8.h>

#include <unistd.h>

#include <algorithm>
#include <iostream>

namespace host {
namespace {

constexpr std::size_t kWidth = 40;

} // namespace

Progress::Progress(Console& console, std::string_view what, std::uint64_t total)
    : out_(console.err), what_(terminal_text(core::from_utf8(what))),
      total_(std::max<std::uint64_t>(total, 1)),
      terminal_(console.err.rdbuf() == std::cerr.rdbuf() && ::isatty(STDERR_FILENO) == 1),
      next_(Clock::now() + std::chrono::milliseconds(500)) {}

Progress::~Progress() {
    if (shown_)
        out_ << "\r\033[K" << std::flush;
}

void Progress::add(std::uint64_t done) {
    done_ += done;
    if (!terminal_ || Clock::now() < next_)
        return;
    next_ = Clock::now() + std::chrono::milliseconds(100);
    shown_ = true;
    const double part = std::min(1.0, static_cast<double>(done_) / static_cast<double>(total_));
    const auto filled = static_cast<std::size_t>(part * kWidth);
    out_ << '\r' << what_ << " [" << std::string(filled, '#') << std::string(kWidth - filled, '.') << "] "
         << static_cast<int>(part * 100) << " %" << std::flush;
}

} // namespace host
