// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/commands/container/counted_file.h"
#include "host/terminal/terminal_text.h"
#include "host/terminal/text_columns.h"

#include <core/runtime/exception.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>

#include <nlohmann/json.hpp>

#include <ostream>

namespace host::container {

using namespace core;

ExitCode check(const Options& options, Console& console) {
    Watched container(options, OpenMode::read, console, "check", 1);
    const StorageCheck result = container.storage().check();
    container.finish();
    if (console.json) {
        auto problems = nlohmann::ordered_json::array();
        for (const StorageProblem& problem : result.problems) {
            problems.push_back({{"kind", static_cast<int>(problem.kind)},
                                {"address", problem.address},
                                {"length", problem.length},
                                {"name", to_utf8(problem.name)},
                                {"text", to_utf8(problem.text())}});
        }
        const nlohmann::ordered_json all = {{"files", result.files},
                                            {"blocks", result.blocks},
                                            {"problems", std::move(problems)},
                                            {"unlisted", result.unlisted}};
        console.out << all.dump(2) << '\n';
    } else {
        for (const StorageProblem& problem : result.problems)
            console.out << terminal_text(problem.text()) << '\n';
        console.out << message("IDS_HOST_CONTAINER_CHECKED",
                               {string_intto(result.files), string_intto(result.blocks),
                                string_intto(result.problems.size() + result.unlisted)})
                    << '\n';
    }
    return result.isClean() ? ExitCode::done : ExitCode::no;
}

} // namespace host::container
