// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/exit_code.h"
#include "host/terminal/console.h"

#include <core/storage/storage_rw.h>

#include <initializer_list>
#include <string>
#include <vector>

/// What the subcommands of "corehost container" are made of.
namespace host::container {

struct Options {
    std::string file; ///< a path, or a URL of one of the two schemes
    bool wide = false;
    std::vector<std::string> names;
    std::string folder;  ///< put: where to in the container; get: where to on disk
    std::string as;      ///< put: the whole name in the container
    std::string other;   ///< diff, salvage: the second container
    bool force = false;  ///< get: files that are there are replaced
    bool dryRun = false; ///< only tell what would be done
};

/// Opens a container of the command line, the first one or the one in `file`. StorageException and
/// FileException.
[[nodiscard]] core::StorageRW open(const Options& options, core::OpenMode mode);
[[nodiscard]] core::StorageRW open(const Options& options, const std::string& file, core::OpenMode mode);

/// The inner files that the names and patterns of the command line mean, by name. One that means none is
/// told on the console and counted, and so is a part of the table that is damaged.
struct Selection {
    std::vector<core::StorageFound> files;
    std::size_t missing = 0;
};
[[nodiscard]] Selection select(const core::StorageRW& storage, const Options& options, Console& console);
/// The same; all inner files, in the order of the table, where the command line names none.
[[nodiscard]] Selection select_or_all(const core::StorageRW& storage, const Options& options,
                                      Console& console);

/// Tells of a change that is only tried: a message with the names that it concerns.
void tell(Console& console, const char* id, std::initializer_list<core::wstring> names);

// The subcommands, each in a file of its own.

[[nodiscard]] ExitCode create(const Options& options, Console& console);
[[nodiscard]] ExitCode list(const Options& options, Console& console);
[[nodiscard]] ExitCode tree(const Options& options, Console& console);
[[nodiscard]] ExitCode stat(const Options& options, Console& console);
[[nodiscard]] ExitCode put(const Options& options, Console& console);
[[nodiscard]] ExitCode get(const Options& options, Console& console);
[[nodiscard]] ExitCode cat(const Options& options, Console& console);
[[nodiscard]] ExitCode remove(const Options& options, Console& console);
[[nodiscard]] ExitCode move(const Options& options, Console& console);
[[nodiscard]] ExitCode diff(const Options& options, Console& console);
[[nodiscard]] ExitCode verify(const Options& options, Console& console);
[[nodiscard]] ExitCode check(const Options& options, Console& console);
[[nodiscard]] ExitCode info(const Options& options, Console& console);
[[nodiscard]] ExitCode salvage(const Options& options, Console& console);
[[nodiscard]] ExitCode compact(const Options& options, Console& console);

} // namespace host::container
