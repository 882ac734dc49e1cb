// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/terminal/byte_input.h"
#include "host/terminal/terminal_text.h"
#include "host/terminal/text_columns.h"
#include "host/terminal/text_output.h"

#include <core/files/errors.h>
#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>
#include <core/streams/text_file.h>
#include <core/streams/text_info.h>
#include <core/strings/integer_text.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <memory>
#include <ostream>
#include <vector>

namespace host {
namespace {

using namespace core;

struct TextOptions {
    std::vector<std::string> files{"-"};
    std::string from;
    std::string to = "utf-8";
    std::string eol;
    std::string onError = "report";
    std::string output = "-";
    bool inPlace = false;
    bool mark = false;
};

const std::map<std::string, LineEnd> kEnds = {
    {"lf", LineEnd::lf}, {"crlf", LineEnd::crlf}, {"cr", LineEnd::cr}};
const std::map<std::string, CodingErrorAction> kActions = {{"report", CodingErrorAction::report},
                                                           {"replace", CodingErrorAction::replace},
                                                           {"escape", CodingErrorAction::escape}};

/// A file or standard input as text.
class TextInput {
  public:
    TextInput(Console& console, const std::string& file, const TextOptions& options, CodingErrorAction action)
        : bytes_(console, file),
          reader_([this](std::span<std::byte> span) { return bytes_.read(span); }, from_utf8(file),
                  {.encoding =
                       options.from.empty() ? std::nullopt : std::optional(Encoding(from_utf8(options.from))),
                   .action = action}) {}

    [[nodiscard]] TextReader& reader() noexcept { return reader_; }

  private:
    ByteInput bytes_;
    TextReader reader_;
};

/// Does the work for every file; the exit code is that of the worst.
template <class Work>
ExitCode for_each_file(Console& console, const TextOptions& options, Work work) {
    ExitCode worst = ExitCode::done;
    for (const std::string& file : options.files) {
        ExitCode code = ExitCode::malformed;
        try {
            code = work(file);
        } catch (const FileException& e) {
            code = fail(console, e.description(), ExitCode::io);
        } catch (const ConverterException& e) {
            code = fail(console, e.description(), ExitCode::malformed);
        }
        worst = std::max(worst, code);
    }
    return worst;
}

// info

nlohmann::ordered_json report(const std::string& file, const TextInfo& info) {
    nlohmann::ordered_json result = {
        {"file", to_utf8(from_utf8(file))}, // which need not be UTF-8, as JSON is
        {"encoding", to_utf8(info.encoding.encoding.name())},
        {"certainty", info.encoding.certainty},
        {"mark", info.encoding.markSize != 0},
        {"bytes", info.bytes},
        {"units", info.units},
        {"lines", info.lines},
        {"lf", info.lf},
        {"crlf", info.crlf},
        {"cr", info.cr},
        {"longest", info.longest},
        {"longestLine", info.longestLine},
        {"faults", info.faults}};
    if (info.faults != 0)
        result["firstFault"] = info.firstFault;
    return result;
}

ExitCode inform(Console& console, const TextOptions& options) {
    return for_each_file(console, options, [&](const std::string& file) {
        TextInput input(console, file, options, CodingErrorAction::replace);
        const TextInfo info = examine_text(input.reader());
        if (console.json) {
            console.out << report(file, info).dump() << '\n';
        } else {
            const char* const encoding =
                info.encoding.markSize != 0 ? "IDS_HOST_TEXT_ENCODING_MARKED" : "IDS_HOST_TEXT_ENCODING";
            console.out << terminal_text(from_utf8(file)) << ": "
                        << message(encoding,
                                   {info.encoding.encoding.name(), string_intto(info.encoding.certainty)})
                        << "; "
                        << message("IDS_HOST_TEXT_COUNTS",
                                   {string_intto(info.bytes), string_intto(info.lines), string_intto(info.lf),
                                    string_intto(info.crlf), string_intto(info.cr),
                                    string_intto(info.longest), string_intto(info.longestLine)});
            if (info.faults != 0)
                console.out << "; "
                            << message("IDS_HOST_TEXT_FAULTS",
                                       {string_intto(info.faults), string_intto(info.firstFault)});
            console.out << '\n';
        }
        return info.faults != 0 ? ExitCode::malformed : ExitCode::done;
    });
}

// convert

ExitCode convert(Console& console, const TextOptions& options) {
    if (options.files.size() > 1 && !options.inPlace)
        return fail(console, message_text("IDS_HOST_TEXT_SEVERAL"), ExitCode::usage);
    const CodingErrorAction action = kActions.at(options.onError);
    TextWriterOptions writing{
        .encoding = Encoding(from_utf8(options.to)), .action = action, .mark = options.mark};
    if (!options.eol.empty()) {
        writing.lineEnd = kEnds.at(options.eol);
        writing.convertEnds = true;
    }
    return for_each_file(console, options, [&](const std::string& file) {
        TextInput input(console, file, options, action);
        write_text(
            console, options.inPlace ? file : options.output,
            [&](wostream& out) {
                TextReader& text = input.reader();
                for (wstring_view units; !(units = text.look()).empty(); text.consume(units.size()))
                    put_text(out, units);
            },
            writing);
        return ExitCode::done;
    });
}

ExitCode list_encodings(Console& console, const TextOptions&) {
    auto all = nlohmann::ordered_json::array();
    for (const wstring& name : Encoding::names()) {
        nlohmann::ordered_json aliases = nlohmann::ordered_json::array();
        if (const auto encoding = Encoding::find(name))
            for (const wstring& alias : encoding->aliases())
                if (alias != name)
                    aliases.push_back(to_utf8(alias));
        if (console.json) {
            all.push_back({{"name", to_utf8(name)}, {"aliases", aliases}});
            continue;
        }
        console.out << to_utf8(name);
        for (const auto& alias : aliases)
            console.out << ' ' << alias.get<std::string>();
        console.out << '\n';
    }
    if (console.json)
        console.out << all.dump() << '\n';
    return ExitCode::done;
}

template <class T>
std::vector<std::string> keys(const std::map<std::string, T>& table) {
    std::vector<std::string> names;
    names.reserve(table.size());
    for (const auto& [name, value] : table)
        names.push_back(name);
    return names;
}

void add_output_options(CLI::App& conversion, const Console& console, TextOptions& options) {
    conversion
        .add_option("--to", options.to,
                    help(console, "The encoding to write; default: utf-8",
                         "Кодировка для записи; по умолчанию utf-8"))
        ->type_name("ENCODING");
    conversion
        .add_option(
            "--eol", options.eol,
            help(console, "Line ends; default: each stays", "Концы строк; по умолчанию каждый остаётся"))
        ->type_name("lf|crlf|cr")
        ->check(CLI::IsMember(keys(kEnds)).description(""));
    conversion
        .add_option("--on-error", options.onError,
                    help(console, "For what does not fit; default: report",
                         "Для того, что не подходит; по умолчанию report"))
        ->type_name("report|replace|escape")
        ->check(CLI::IsMember(keys(kActions)).description(""));
    conversion.add_flag("--mark", options.mark,
                        help(console, "Begin with a byte order mark", "Начать с метки порядка байтов"));
    auto* const output = conversion.add_option("-o,--output", options.output,
                                               help(console, "The file to write; default: standard output",
                                                    "Файл для записи; по умолчанию стандартный вывод"));
    conversion
        .add_flag(
            "-i,--in-place", options.inPlace,
            help(console, "Replace each file by its new text", "Заменить каждый файл его новым текстом"))
        ->excludes(output);
}

} // namespace

void add_text_command(CLI::App& app, Console& console, Action& action) {
    auto* const command =
        app.add_subcommand("text", help(console, "Look into texts in any encoding, and convert them",
                                        "Исследовать и преобразовать тексты в любой кодировке"));
    command->require_subcommand(1);
    command->fallthrough();
    const auto options = std::make_shared<TextOptions>();
    using Run = ExitCode (*)(Console&, const TextOptions&);
    const auto add = [&](const char* name, const char* what, Run run) {
        return add_subcommand(*command, name, what, action,
                              [options, &console, run] { return run(console, *options); });
    };
    const auto addInput = [&](CLI::App* sub) {
        sub->add_option("files", options->files,
                        help(console, "Files; - or none is standard input",
                             "Файлы; - или ничего означает стандартный ввод"));
        sub->add_option("--from", options->from,
                        help(console, "Their encoding; default: it is found",
                             "Их кодировка; по умолчанию она определяется"))
            ->type_name("ENCODING");
    };
    addInput(add("info",
                 help(console, "Tell encoding, line ends, lines, and what does not fit",
                      "Показать кодировку, концы строк, строки и то, что не подходит"),
                 inform));
    auto* const conversion = add("convert",
                                 help(console, "Write a text in another encoding or with other line ends",
                                      "Записать текст в другой кодировке или с другими концами строк"),
                                 convert);
    addInput(conversion);
    add_output_options(*conversion, console, *options);
    add("encodings",
        help(console, "List the encodings with their other names", "Перечислить кодировки и их другие имена"),
        list_encodings);
}

} // namespace host
