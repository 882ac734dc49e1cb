// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/copy.h"

#include <core/files/file_io.h>

#include <span>
#include <vector>

namespace host::container {

using namespace core;

void copy(IFile& from, IFile& to, Progress& progress, const Interrupts& interrupts) {
    std::vector<std::byte> piece(kPiece);
    while (const std::size_t part = from.read(piece.data(), piece.size())) {
        write_all(to, std::span(piece).first(part));
        progress.add(part);
        interrupts.check();
    }
}

} // namespace host::container
