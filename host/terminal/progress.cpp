// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/progress.h"

#include "host/terminal/system_terminal.h"

#include <core/exchange/column_text.h>
#include <core/runtime/utf8.h>

#include <algorithm>
#include <iostream>

namespace host {
namespace {

constexpr std::size_t kBar = 40;

/// How many columns the terminal has that messages go to.
std::size_t terminal_columns() {
    const std::size_t width = terminal_width(Stream::error);
    return width > 0 ? width : 80;
}

} // namespace

Progress::Progress(Console& console, std::string_view what, std::uint64_t total)
    : out_(console.err), tied_(out_.tie(nullptr)), what_(core::from_utf8(what)), total_(total),
      room_(terminal_columns()),
      terminal_(console.err.rdbuf() == std::cerr.rdbuf() && is_terminal(Stream::error)),
      next_(Clock::now() + std::chrono::milliseconds(500)) {}

Progress::~Progress() {
    if (shown_)
        out_ << "\r\033[K" << std::flush;
    out_.tie(tied_);
}

void Progress::add(std::uint64_t done) {
    done_ += done;
    if (!terminal_ || Clock::now() < next_)
        return;
    next_ = Clock::now() + std::chrono::milliseconds(100);
    shown_ = true;
    std::string bar;
    if (total_ == 0) {
        bar = std::to_string(done_ >> 20) + " MiB";
    } else {
        const double part = std::min(1.0, static_cast<double>(done_) / static_cast<double>(total_));
        const std::size_t width = std::min(kBar, room_ / 2);
        const auto filled = static_cast<std::size_t>(part * static_cast<double>(width));
        bar = '[' + std::string(filled, '#') + std::string(width - filled, '.') + "] " +
              std::to_string(static_cast<int>(part * 100)) + " %";
    }
    // The last column stays free: a line that is full would not be written over.
    const std::size_t rest = room_ - std::min(room_, bar.size() + 2);
    out_ << '\r' << core::fitted_text(what_, rest).text << ' ' << bar << "\033[K" << std::flush;
}

} // namespace host
