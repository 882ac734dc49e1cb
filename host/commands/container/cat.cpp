// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/container.h"
#include "host/commands/container/copy.h"

#include <ostream>
#include <vector>

namespace host::container {

using namespace core;

ExitCode cat(const Options& options, Console& console) {
    StorageRW storage = open(options, OpenMode::read);
    const Selection selection = select(storage, options, console);
    for (const StorageFound& file : selection.files) {
        const auto from = storage.open(file.name, OpenMode::read);
        std::vector<char> piece(kPiece);
        while (const std::size_t part = from->read(piece.data(), piece.size()))
            console.out.write(piece.data(), static_cast<std::streamsize>(part));
    }
    return selection.missing == 0 ? ExitCode::done : ExitCode::no;
}

} // namespace host::container
