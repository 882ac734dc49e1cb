// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The lines that a user has typed, from one console to the next: one a line, in UTF-8, in a file that only
/// the user can read. Each line is appended when it is entered, under a lock while another console
/// shortens the file, so consoles side by side lose nothing. That
/// it cannot be read or written harms nobody: the lines are then only not there the next time.
class HistoryFile {
  public:
    static constexpr std::size_t kMostLines = 1000;

    /// An empty path means no file.
    explicit HistoryFile(std::string path) : path_(std::move(path)) {}
    /// $XDG_STATE_HOME/corehost/history; without that variable, and without HOME, no file.
    [[nodiscard]] static HistoryFile of_user();

    /// The last lines, the oldest first. Also shortens a file that has become much longer.
    [[nodiscard]] std::vector<std::string> load() const;
    void append(std::string_view line) const noexcept;

  private:
    std::string path_;
};

} // namespace host
