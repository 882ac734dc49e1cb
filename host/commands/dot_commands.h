// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/exit_code.h"
#include "host/terminal/console.h"

#include <core/script/console.h>

#include <fstream>
#include <initializer_list>
#include <optional>
#include <streambuf>

namespace host {

/// What a console understands beside the language: commands with a dot in front, by their English and Russian
/// names, and the bare words that leave and ask for help, as long as no variable has such a name.
class DotCommands {
  public:
    /// What has come of a command.
    struct Outcome {
        bool failed = false;
        bool leaves = false;            ///< the console is to end
        std::optional<ExitCode> exit{}; ///< the console is to end with it
    };

    DotCommands(Console& console, core::script::Engine& engine) : console_(console), engine_(engine) {}
    DotCommands(const DotCommands&) = delete;
    DotCommands& operator=(const DotCommands&) = delete;
    /// Gives the console its own output again.
    ~DotCommands();

    /// Whether a line is for these commands, and not for the language.
    [[nodiscard]] bool isOne(core::wstring_view line) const;
    /// Carries a line out. Throws FileException, and what reading a script throws.
    Outcome carryOut(core::wstring_view line);
    /// What may stand in place of the word at the end of a line; nothing behind another line.
    [[nodiscard]] core::script::Completion complete(core::wstring_view before) const;
    /// Says whether what is shown still goes where it should. When the file that took it fails, that is told,
    /// and what follows is shown where it was before.
    [[nodiscard]] bool keepsOutput();
    /// Whether the time of each entry is shown.
    [[nodiscard]] bool isTimed() const noexcept { return timed_; }

  private:
    struct Command;
    static const Command kCommands[];

    [[nodiscard]] const Command* find(core::wstring_view name) const;
    /// Shows the message of an id, and what was probably meant, if `nearest` says so.
    [[nodiscard]] Outcome refuse(const char* id, std::initializer_list<core::wstring> parameters,
                                 const core::wstring& nearest = {}) const;
    [[nodiscard]] Outcome refuseArgument(const core::wstring& argument,
                                         const core::wstring& nearest = {}) const;
    Outcome help(const core::wstring& argument);
    Outcome exit(const core::wstring& argument);
    Outcome mode(const core::wstring& argument);
    Outcome timer(const core::wstring& argument);
    Outcome read(const core::wstring& argument);
    Outcome output(const core::wstring& argument);
    Outcome describe(const core::wstring& argument);
    /// Returns whether all that was written to the file is there.
    bool endOutput();

    Console& console_;
    core::script::Engine& engine_;
    std::ofstream file_;
    std::streambuf* own_ = nullptr; // of the console, while a file takes its output
    core::wstring name_;            // of the command that is carried out, as it was entered
    bool timed_ = false;
};

} // namespace host
