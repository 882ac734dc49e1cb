// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/terminal/interrupts.h"
#include "host/terminal/progress.h"
#include "host/terminal/text_columns.h"

#include <core/files/url.h>
#include <core/runtime/exception.h>
#include <core/strings/integer_text.h>

#include <algorithm>
#include <optional>
#include <ostream>

namespace host::container {

using namespace core;

ExitCode compact(const Options& options, Console& console) {
    StorageRW storage = open(options, OpenMode::readWrite);
    const std::uint64_t before = storage.info().fileLength;
    CompactReport report;
    {
        const Interrupts interrupts;
        std::optional<Progress> progress;
        std::uint64_t told = 0;
        CompactOptions how;
        how.progress = [&](std::uint64_t done, std::uint64_t total) {
            interrupts.check();
            if (!progress)
                progress.emplace(console, "compact", total);
            progress->add(done - std::min(done, told));
            told = std::max(told, done);
        };
        report = storage.compact(how);
    }
    console.out << message("IDS_HOST_CONTAINER_COMPACTED",
                           {string_intto(before), string_intto(storage.info().fileLength)})
                << '\n';
    for (const wstring& name : report.damaged)
        fail(console, message_text("IDS_HOST_INNER_FILE_LEFT", {shown_url(storage.rootURL() + name)}),
             ExitCode::no);
    return report.damaged.empty() ? ExitCode::done : ExitCode::no;
}

} // namespace host::container
