// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/dot_commands.h"
#include "host/commands/exit_code.h"
#include "host/terminal/console.h"

#include <core/script/console.h>

#include <deque>
#include <functional>
#include <optional>

namespace host {

/// Thrown where the lines of an entry are read, to drop what it has so far.
struct EntryDropped {};

/// One console: entries come in lines, and what they make stays. An entry is a statement, or more of them on
/// a line, a command with a dot in front, or one of the words that leave and ask for help.
class Session {
  public:
    /// Returns the next line, the first of an entry or one that it goes on with; nothing at the end. What it
    /// returns may have several lines, as what is pasted has. Throws EntryDropped.
    using Lines = std::function<std::optional<core::wstring>(bool goesOn)>;
    /// Is given each entry that was read, without the end of its last line.
    using Remember = std::function<void(const core::wstring& entry)>;

    explicit Session(Console& console, Remember remember = {});
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Carries entries out until the lines end, one of them leaves, or nothing can be shown any more.
    void run(const Lines& lines);
    /// Tells what has gone wrong.
    void report(const core::wstring& message);

    /// What the program answers: what an entry asked to exit with, or else `code`.
    [[nodiscard]] ExitCode answer(ExitCode code) const noexcept { return exit_.value_or(code); }
    /// Whether an entry asked to leave.
    [[nodiscard]] bool hasLeft() const noexcept { return left_; }
    /// Whether an entry has failed.
    [[nodiscard]] bool hasFailed() const noexcept { return failed_; }
    /// What may stand in place of the word before the cursor.
    [[nodiscard]] core::script::Completion complete(core::wstring_view line) const;

  private:
    [[nodiscard]] std::optional<core::wstring> nextLine(const Lines& lines, bool goesOn);
    void take(const core::wstring& line, const Lines& lines);
    void carryOut(const core::script::Script& entry);
    void show(const core::Value& value);

    Console& console_;
    core::script::Engine engine_;
    Remember remember_;
    DotCommands commands_;
    std::deque<core::wstring> pasted_; // lines that have come and are still to be read
    core::wstring entry_;              // the lines of the one that is read and carried out
    std::optional<ExitCode> exit_;
    bool left_ = false;
    bool failed_ = false;
};

} // namespace host
