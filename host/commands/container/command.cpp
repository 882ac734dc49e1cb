// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/terminal/interrupts.h"

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

using container::Options;

/// A container that is given by its path has the layout that the command line says.
core::wstring other_layout(const Options& options) {
    return core::message_text(options.wide ? "IDS_HOST_CONTAINER_IS_NARROW" : "IDS_HOST_CONTAINER_IS_WIDE",
                              {core::from_utf8(options.file)});
}

/// Whether something within the container is damaged, and not the way to it.
bool is_damaged_within(const Options& options) {
    try {
        (void)container::open(options, core::OpenMode::read);
        return true;
    } catch (const core::Exception&) {
        return false;
    }
}

/// Adds the verbs of one container, each with its help in the language of the console.
class Verbs {
  public:
    using Run = ExitCode (*)(const Options& options, Console& console);

    Verbs(CLI::App& command, Console& console, Action& action)
        : command_(command), console_(console), action_(action), options_(std::make_shared<Options>()) {}

    [[nodiscard]] Options& options() noexcept { return *options_; }
    [[nodiscard]] const char* say(const char* english, const char* russian) const {
        return help(console_, english, russian);
    }

    CLI::App& add(const char* name, const char* what, Run run) {
        auto* const sub =
            add_subcommand(command_, name, what, action_, [options = options_, &console = console_, run] {
                return carry_out(run, *options, console);
            });
        sub->add_option("container", options_->file,
                        say("The container: a path, or a lumstg or lumstg64 URL",
                            "Контейнер: путь или URL схемы lumstg либо lumstg64"))
            ->required();
        return *sub;
    }
    CLI::Option* addNames(CLI::App& sub, const char* what) {
        return sub.add_option("names", options_->names, what);
    }
    CLI::Option* addPatterns(CLI::App& sub) {
        return addNames(sub, say("Names or patterns (*, ?)", "Имена или шаблоны (*, ?)"));
    }
    void addDryRun(CLI::App& sub) {
        sub.add_flag("--dry-run", options_->dryRun,
                     say("Only tell what would be done", "Только показать, что было бы сделано"));
    }

  private:
    static ExitCode carry_out(Run run, const Options& options, Console& console) {
        try {
            return run(options, console);
        } catch (const Interrupted&) {
            return fail(console, core::message_text("IDS_HOST_INTERRUPTED"), ExitCode::interrupted);
        } catch (const core::StorageException& e) {
            if (std::string_view(e.messageId()) == core::messages::kStorageOtherLayout)
                return fail(console, other_layout(options), ExitCode::malformed);
            if (e.kind() == core::StorageException::Kind::fileNotFound)
                return fail(console, e.description(), ExitCode::no);
            if (e.kind() != core::StorageException::Kind::badFormat || run == container::salvage ||
                !is_damaged_within(options))
                throw;
            fail(console, e.description(), ExitCode::malformed);
            return fail(console,
                        core::message_text("IDS_HOST_CONTAINER_SALVAGE", {core::from_utf8(options.file)}),
                        ExitCode::malformed);
        }
    }

    CLI::App& command_;
    Console& console_;
    Action& action_;
    std::shared_ptr<Options> options_;
};

void add_looking(Verbs& verbs) {
    Options& options = verbs.options();
    verbs.addPatterns(verbs.add(
        "ls", verbs.say("List inner files: size, time, name", "Показать вложенные файлы: размер, время, имя"),
        container::list));
    verbs.addPatterns(verbs.add("tree",
                                verbs.say("Show inner files as a tree of folders: size, name",
                                          "Показать вложенные файлы деревом папок: размер, имя"),
                                container::tree));
    verbs
        .addPatterns(verbs.add(
            "stat",
            verbs.say("Show what is known of inner files", "Показать, что известно о вложенных файлах"),
            container::stat))
        ->required();
    verbs
        .addPatterns(verbs.add(
            "cat", verbs.say("Write the content of inner files", "Вывести содержимое вложенных файлов"),
            container::cat))
        ->required();
    CLI::App& diff = verbs.add("diff",
                               verbs.say("Tell which inner files two containers have in different states",
                                         "Показать, чем различаются файлы двух контейнеров"),
                               container::diff);
    diff.add_option("other", options.other, verbs.say("The other container", "Другой контейнер"))->required();
    verbs.addPatterns(diff);
    verbs.add(
        "info",
        verbs.say("Show how the container uses its file", "Показать, как контейнер использует свой файл"),
        container::info);
    verbs.add("verify",
              verbs.say("Check quickly what it takes to find the inner files",
                        "Быстро проверить то, что нужно для поиска вложенных файлов"),
              container::verify);
    verbs.add(
        "check",
        verbs.say("Walk every chain and say what is wrong", "Пройти все цепочки и показать, что повреждено"),
        container::check);
}

void add_changing(Verbs& verbs) {
    Options& options = verbs.options();
    verbs
        .add("salvage",
             verbs.say("Copy what can be read of a damaged container into a new one",
                       "Скопировать в новый контейнер всё, что читается в повреждённом"),
             container::salvage)
        .add_option("new", options.other, verbs.say("The new container", "Новый контейнер"))
        ->required();
    verbs.add("create", verbs.say("Make an empty container", "Создать пустой контейнер"), container::create);
    CLI::App& put = verbs.add(
        "put", verbs.say("Put files and whole folders in", "Поместить файлы и целые папки"), container::put);
    verbs
        .addNames(put, verbs.say("Files and folders; - is standard input",
                                 "Файлы и папки; - означает стандартный ввод"))
        ->required();
    put.add_option(
        "--into", options.folder,
        verbs.say("What their names in the container begin with", "С чего начинаются их имена внутри"));
    put.add_option("--as", options.as,
                   verbs.say("The name in the container, of one file or of standard input",
                             "Имя внутри: для одного файла или стандартного ввода"))
        ->type_name("NAME");
    verbs.addDryRun(put);
    CLI::App& get =
        verbs.add("get", verbs.say("Take inner files out", "Извлечь вложенные файлы"), container::get);
    verbs.addPatterns(get)->required();
    get.add_option("--to", options.folder,
                   verbs.say("The folder to put them into; default: this one",
                             "Папка, в которую их поместить; по умолчанию текущая"));
    get.add_flag("--force", options.force,
                 verbs.say("Replace files that are there without asking",
                           "Заменять существующие файлы, не спрашивая"));
    CLI::App& remove =
        verbs.add("rm", verbs.say("Remove inner files", "Удалить вложенные файлы"), container::remove);
    verbs.addPatterns(remove)->required();
    verbs.addDryRun(remove);
    CLI::App& move =
        verbs.add("mv", verbs.say("Give an inner file another name", "Дать вложенному файлу другое имя"),
                  container::move);
    verbs.addNames(move, verbs.say("The old name and the new one", "Старое имя и новое"))
        ->required()
        ->expected(2);
    verbs.addDryRun(move);
    verbs.add("compact",
              verbs.say("Make the container as small as it can be", "Сжать контейнер насколько возможно"),
              container::compact);
}

} // namespace

void add_container_command(CLI::App& app, Console& console, Action& action) {
    auto* const command = app.add_subcommand(
        "container", help(console, "Many files in one: make containers, look into them, change them",
                          "Много файлов в одном: создать контейнер, посмотреть в него, изменить его"));
    command->require_subcommand(1);
    command->fallthrough();
    Verbs verbs(*command, console, action);
    command->add_flag("--64", verbs.options().wide,
                      help(console, "A container given by its path has the 64-bit layout",
                           "Контейнер, заданный путём, имеет 64-битный формат"));
    add_looking(verbs);
    add_changing(verbs);
}

} // namespace host
