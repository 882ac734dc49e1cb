// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/exit_code.h"
#include "host/terminal/console.h"

#include <core/storage/storage_rw.h>

#include <string>
#include <vector>

/// What the subcommands of "corehost container" are made of.
namespace host::container {

struct Options {
    std::string file; ///< a path, or a URL of one of the two schemes
    bool wide = false;
    std::vector<std::string> names;
    std::string folder; ///< put: where to in the container; get: where to on disk
};

/// Opens the container of the command line. StorageException and FileException.
[[nodiscard]] core::StorageRW open(const Options& options, core::OpenMode mode);

/// The inner files that the names and patterns of the command line mean, by name. One that means none is
/// told on the console and counted.
struct Selection {
    std::vector<core::StorageFound> files;
    std::size_t missing = 0;
};
[[nodiscard]] Selection select(const core::StorageRW& storage, const Options& options, Console& console);

// The subcommands, each in a file of its own.

[[nodiscard]] ExitCode create(const Options& options);
[[nodiscard]] ExitCode list(const Options& options, Console& console);
[[nodiscard]] ExitCode put(const Options& options, Console& console);
[[nodiscard]] ExitCode get(const Options& options, Console& console);
[[nodiscard]] ExitCode cat(const Options& options, Console& console);
[[nodiscard]] ExitCode remove(const Options& options, Console& console);
[[nodiscard]] ExitCode move(const Options& options);
[[nodiscard]] ExitCode check(const Options& options, Console& console);
[[nodiscard]] ExitCode info(const Options& options, Console& console);
[[nodiscard]] ExitCode compact(const Options& options, Console& console);

} // namespace host::container
