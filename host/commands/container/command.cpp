// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"

#include <core/runtime/exception.h>
#include <core/runtime/utf8.h>
#include <core/storage/errors.h>

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace host {
namespace {

/// A container that is given by its path has the layout that the command line says.
core::wstring other_layout(const container::Options& options) {
    return core::message_text(options.wide ? "IDS_HOST_CONTAINER_IS_NARROW" : "IDS_HOST_CONTAINER_IS_WIDE",
                              {core::from_utf8(options.file)});
}

} // namespace

void add_container_command(CLI::App& app, Console& console, Action& action) {
    using container::Options;
    auto* const command =
        app.add_subcommand("container", "Many files in one: make containers, look into them, change them");
    command->require_subcommand(1);
    command->fallthrough();
    const auto options = std::make_shared<Options>();
    command->add_flag("--64", options->wide, "A container given by its path has the 64-bit layout");

    const auto add = [&](const char* name, const char* what, auto run) {
        auto* const sub = command->add_subcommand(name, what);
        sub->add_option("container", options->file, "The container: a path, or a lumstg or lumstg64 URL")
            ->required();
        sub->fallthrough(); // what concerns every command may stand behind this one
        sub->callback([options, &console, &action, run] {
            action = [options, &console, run] {
                try {
                    return run(*options, console);
                } catch (const core::StorageException& e) {
                    if (std::string_view(e.messageId()) == core::messages::kStorageOtherLayout)
                        return fail(console, other_layout(*options), ExitCode::malformed);
                    if (e.kind() != core::StorageException::Kind::fileNotFound)
                        throw;
                    return fail(console, e.description(), ExitCode::no);
                }
            };
        });
        return sub;
    };
    const auto addNames = [&](CLI::App* sub, const char* what) {
        return sub->add_option("names", options->names, what);
    };

    add("create", "Make an empty container", [](const Options& o, Console&) { return container::create(o); });
    addNames(add("ls", "List inner files: size, time, name", container::list), "Names or patterns (*, ?)");
    auto* const put = add("put", "Put files and whole folders in", container::put);
    addNames(put, "Files and folders")->required();
    put->add_option("--into", options->folder, "What their names in the container begin with");
    auto* const get = add("get", "Take inner files out", container::get);
    addNames(get, "Names or patterns (*, ?)")->required();
    get->add_option("--to", options->folder, "The folder to put them into; default: this one");
    addNames(add("cat", "Write the content of inner files", container::cat), "Names or patterns (*, ?)")
        ->required();
    addNames(add("rm", "Remove inner files", container::remove), "Names or patterns (*, ?)")->required();
    addNames(add("mv", "Give an inner file another name",
                 [](const Options& o, Console&) { return container::move(o); }),
             "The old name and the new one")
        ->required()
        ->expected(2);
    add("check", "Walk every chain and say what is wrong", container::check);
    add("info", "Show how the container uses its file", container::info);
    add("compact", "Make the container as small as it can be", container::compact);
}

} // namespace host
