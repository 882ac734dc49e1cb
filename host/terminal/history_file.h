// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The entries of a user, from one console to the next: one a line, in UTF-8, in a file that only the user
/// can read. The line ends in an entry are line separators (U+2028) there. Each entry is appended when it is
/// entered, under a lock while another console shortens the file, so consoles side by side lose nothing. That
/// it cannot be read or written harms nobody: the lines are then only not there the next time.
class HistoryFile {
  public:
    static constexpr std::size_t kMostLines = 1000;

    /// An empty path means no file.
    explicit HistoryFile(std::string path) : path_(std::move(path)) {}
    /// $XDG_STATE_HOME/corehost/history; without that variable, and without HOME, no file.
    [[nodiscard]] static HistoryFile of_user();

    /// The last entries, the oldest first. Also shortens a file that has become much longer.
    [[nodiscard]] std::vector<std::string> load() const;
    void append(std::string_view entry) const noexcept;

  private:
    [[nodiscard]] std::vector<std::string> lastLines() const;

    std::string path_;
};

} // namespace host
