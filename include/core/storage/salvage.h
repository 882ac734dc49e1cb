// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>
#include <core/runtime/api.h>
#include <core/runtime/threads/stop_token.h>
#include <core/runtime/types.h>
#include <core/storage/layout.h>
#include <core/storage/storage_rw.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace core {

/// What became of one inner file of a damaged container.
struct SalvagedFile {
    /// How much of the file was saved.
    enum class State : std::int32_t {
        whole = 1,   ///< All of it, as far as the container can tell.
        altered = 2, ///< All of its bytes, but they are not those that were written: the checksum says so.
        cut = 3,     ///< The bytes in front of the damage.
        lost = 4,    ///< None: the new container does not have the file.
    };
    wstring name{};          ///< The name of the inner file.
    State state{};           ///< How much was saved.
    std::uint64_t size = 0;  ///< Bytes of content that the file had; 0 when that is not known.
    std::uint64_t saved = 0; ///< Bytes of content that the new container has.

    /// Returns a sentence for the user, in the thread's language.
    [[nodiscard]] CORE_API wstring text() const;
};

/// What salvage() found.
struct SalvageReport {
    /// Where the names and places of the inner files came from.
    enum class Source : std::int32_t {
        table = 1,    ///< The table of inner files.
        oldTable = 2, ///< A table that nothing leads to: the latest that was found.
        records = 3,  ///< The attributes of the files themselves. Files removed long ago may come back.
    };
    Source source = Source::table;   ///< Where the names and places came from.
    std::uint64_t whole = 0;         ///< Files saved as a whole.
    std::uint64_t altered = 0;       ///< Files whose bytes are not those that were written.
    std::uint64_t cut = 0;           ///< Files of which a part was saved.
    std::uint64_t lost = 0;          ///< Files of which nothing was saved.
    std::vector<SalvagedFile> files; ///< Those that are not whole, in the order in which they were met.

    /// Returns whether every file that was met is whole.
    [[nodiscard]] bool isComplete() const noexcept { return altered == 0 && cut == 0 && lost == 0; }
};

/// How to salvage.
struct SalvageOptions {
    StopToken stop{}; ///< Asked after each piece of work. A stop throws ThreadDeath.
    /// Called now and then with the bytes done so far and those there are, as far as they are known; may be
    /// empty. What it throws ends the salvage.
    std::function<void(std::uint64_t done, std::uint64_t total)> progress{};
};

/// Copies everything that can be read of the container in `source` into `target`: by its table, or by what
/// is left of tables and attributes where the table is damaged. `source` only needs to have been a container
/// of this layout; it is read and not changed. Others may go on changing the container when it is an
/// ISharedFile: what is saved is the state that it had in the beginning. Files of `target` with the same
/// names are replaced. Times are kept where they are known.
///
/// Many files become one commit of `target`: a stop or a failure leaves it whole, with a part of the files.
/// Throws StorageException of the kind badFormat with the URL of `source` when no inner file is found in a
/// file that is not an empty container, what StorageRW throws of `target`, and ThreadDeath on a stop.
/// Damage of `source`, sectors that cannot be read included, is reported and not thrown.
[[nodiscard]] CORE_API SalvageReport salvage(IFile& source, const StorageLayout& layout, StorageRW& target,
                                             const SalvageOptions& options = {});

} // namespace core
