// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/container/container.h"
#include "host/terminal/progress.h"

#include <cstdint>
#include <optional>

namespace host::container {

/// A container that is open for work on all of it, with a bar that shows how far that has come.
class Watched {
  public:
    /// Opens the container of the command line. `passes` is how often the work reads or writes the whole
    /// file, 0 where that is not known.
    Watched(const Options& options, core::OpenMode mode, Console& console, const char* what,
            std::uint64_t passes);

    [[nodiscard]] core::StorageRW& storage() noexcept { return *storage_; }
    /// The work is done: nothing is counted nor shown any more.
    void finish() noexcept { progress_.reset(); }

  private:
    std::optional<Progress> progress_;
    std::optional<core::StorageRW> storage_;
};

} // namespace host::container
