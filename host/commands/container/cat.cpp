// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/commands/container/copy.h"

#include <core/files/url.h>
#include <core/runtime/exception.h>
#include <core/storage/errors.h>

#include <ostream>
#include <vector>

namespace host::container {

using namespace core;

namespace {

/// Throws StorageException where the file is damaged; by then a part may be written.
void write_out(StorageRW& storage, const wstring& name, std::ostream& out) {
    const auto from = storage.open(name, OpenMode::read);
    std::vector<char> piece(kPiece);
    while (const std::size_t part = from->read(piece.data(), piece.size()))
        out.write(piece.data(), static_cast<std::streamsize>(part));
}

} // namespace

ExitCode cat(const Options& options, Console& console) {
    StorageRW storage = open(options, OpenMode::read);
    const Selection selection = select(storage, options, console);
    ExitCode code = selection.missing == 0 ? ExitCode::done : ExitCode::no;
    for (const StorageFound& file : selection.files) {
        try {
            write_out(storage, file.name, console.out);
        } catch (const StorageException& e) {
            if (e.kind() != StorageException::Kind::badFormat)
                throw;
            code = fail(console, message_text("IDS_HOST_FILE_DAMAGED", {shown_url(e.url())}), ExitCode::no);
        } // the others may be sound
    }
    return code;
}

} // namespace host::container
