// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"
#include "host/terminal/history_file.h"

#include <core/script/console.h>

#include <functional>
#include <memory>
#include <string>

namespace host {

/// Reads lines from the terminal of the process, with the keys of line editing, history
/// and completion. One at a time.
class LineEditor {
  public:
    /// Given the text of the line before the cursor.
    using Complete = std::function<core::script::Completion(core::wstring_view before)>;

    struct Line {
        enum class Kind {
            text,
            cancelled, ///< Ctrl-C
            end        ///< Ctrl-D in an empty line, or the terminal is gone
        };
        Kind kind;
        core::wstring text{};
    };

    LineEditor(const Console& console, Complete complete, HistoryFile history);
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;
    ~LineEditor();

    /// What was pasted, or comes from the history, may have several lines.
    [[nodiscard]] Line read(const std::string& prompt);
    /// Puts an entry, of one line or several, into the history.
    void remember(const core::wstring& entry);

  private:
    class Terminal;
    std::unique_ptr<Terminal> terminal_;
};

} // namespace host
