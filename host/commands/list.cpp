// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/lists/json_to_list.h"
#include "host/lists/list_tools.h"
#include "host/terminal/byte_input.h"
#include "host/terminal/terminal_text.h"
#include "host/terminal/text_columns.h"
#include "host/terminal/text_output.h"

#include <core/exchange/json_reader.h>
#include <core/exchange/whole_file.h>
#include <core/files/errors.h>
#include <core/lists/errors.h>
#include <core/persistence/stream_storage.h>
#include <core/runtime/utf8.h>
#include <core/streams/errors.h>
#include <core/streams/memory_stream.h>
#include <core/streams/text_file.h>
#include <core/strings/integer_text.h>
#include <core/values/generic_value.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <memory>
#include <ostream>
#include <vector>

namespace host {
namespace {

using namespace core;

struct ListOptions {
    std::vector<std::string> files{"-"};
    std::string output = "-";
    std::size_t indent = 2;
};

/// A file or standard input as text.
class Input {
  public:
    Input(Console& console, const std::string& file)
        : bytes_(console, file),
          text_([this](std::span<std::byte> span) { return bytes_.read(span); }, from_utf8(file)),
          scanner_(text_) {}

    [[nodiscard]] ListScanner& scanner() noexcept { return scanner_; }

  private:
    ByteInput bytes_;
    TextInStream text_;
    ListScanner scanner_;
};

// check

nlohmann::ordered_json report(const std::string& file, const ListScanner& scanner, const ListCounts& counts,
                              bool isGood) {
    nlohmann::ordered_json result = {
        {"file", to_utf8(from_utf8(file))}, // which need not be UTF-8, as JSON is
        {"wellFormed", isGood}};
    if (isGood) {
        result.update({{"lists", counts.lists},
                       {"strings", counts.strings},
                       {"tokens", counts.tokens},
                       {"depth", counts.depth},
                       {"units", counts.units}});
    } else {
        result.update({{"line", scanner.place().line},
                       {"column", scanner.place().column},
                       {"message", to_utf8(scanner.message())}});
    }
    return result;
}

/// True when the list is well-formed.
bool check_file(Console& console, const std::string& file) {
    Input input(console, file);
    ListCounts counts;
    const bool isGood = count_list(input.scanner(), counts);
    if (console.json) {
        console.out << report(file, input.scanner(), counts, isGood).dump() << '\n';
    } else if (isGood) {
        console.out << terminal_text(from_utf8(file)) << ": "
                    << message("IDS_HOST_LIST_COUNTS",
                               {string_intto(counts.lists), string_intto(counts.strings),
                                string_intto(counts.tokens), string_intto(counts.depth)})
                    << '\n';
    } else {
        throw_malformed(input.scanner(), file);
    }
    return isGood;
}

/// Every file is looked at; the exit code is that of the worst.
ExitCode check(Console& console, const ListOptions& options) {
    ExitCode worst = ExitCode::done;
    for (const std::string& file : options.files) {
        ExitCode code = ExitCode::malformed;
        try {
            code = check_file(console, file) ? ExitCode::done : ExitCode::malformed;
        } catch (const FileException& e) {
            code = fail(console, e.description(), ExitCode::io);
        } catch (const Exception& e) { // a text that is not UTF-8 is not a list, either
            code = fail(console, e.description(), ExitCode::malformed);
        }
        worst = std::max(worst, code);
    }
    return worst;
}

// conversions

ExitCode format(Console& console, const ListOptions& options) {
    const std::string& file = options.files.front();
    Input input(console, file);
    write_text(console, options.output,
               [&](wostream& out) { format_list(input.scanner(), file, out, options.indent); });
    return ExitCode::done;
}

ExitCode to_json(Console& console, const ListOptions& options) {
    const std::string& file = options.files.front();
    Input input(console, file);
    write_text(console, options.output,
               [&](wostream& out) { list_to_json(input.scanner(), file, out, options.indent); });
    return ExitCode::done;
}

ExitCode from_json(Console& console, const ListOptions& options) {
    ByteInput input(console, options.files.front());
    write_text(console, options.output, [&](wostream& out) {
        JsonToList list(out, options.indent);
        JsonReader reader(list, ListScanner::kMaxDepth + 1); // a token may be an object
        std::array<std::byte, std::size_t{64} * 1024> block;
        while (const std::size_t count = input.read(block))
            reader.read({reinterpret_cast<const char*>(block.data()), count});
        reader.finish();
        list.finish();
    });
    return ExitCode::done;
}

// the compact form

std::vector<std::byte> all_bytes(Console& console, const std::string& file) {
    ByteInput input(console, file);
    std::vector<std::byte> bytes;
    for (std::size_t size = 0, got = 1; got != 0; size += got) {
        bytes.resize(size + std::size_t{64} * 1024);
        got = input.read(std::span(bytes).subspan(size));
        bytes.resize(size + got);
    }
    return bytes;
}

/// The value in a file, in either form.
GenericValue read_value(Console& console, const std::string& file) {
    const std::vector<std::byte> bytes = all_bytes(console, file);
    try {
        return GenericValue::fromBytes(bytes);
    } catch (const ListStreamException&) {
        if (stored_form(bytes) == StoredForm::compact)
            throw;
        TextInStream text(
            [left = std::span(bytes)](std::span<std::byte> into) mutable {
                const std::size_t count = std::min(into.size(), left.size());
                std::copy_n(left.begin(), count, into.begin());
                left = left.subspan(count);
                return count;
            },
            from_utf8(file));
        ListScanner scanner(text);
        if (ListCounts counts; !count_list(scanner, counts))
            throw_malformed(scanner, file);
        throw; // a list, but not of a value
    }
}

ExitCode to_compact(Console& console, const ListOptions& options) {
    const GenericValue value = read_value(console, options.files.front());
    const auto write_to = [&](const ByteWriter& write) {
        StreamOutStorage storage(StoredForm::compact, write);
        serialize_value(&storage, value);
        storage.finish();
    };
    if (options.output != "-")
        write_whole_file(options.output, write_to);
    else
        write_to([&console](std::span<const std::byte> bytes) {
            if (!console.out.write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes)))
                throw_error<FileStreamException>("IDS_HOST_OUTPUT_FAILED");
        });
    return ExitCode::done;
}

ExitCode from_compact(Console& console, const ListOptions& options) {
    const std::string& file = options.files.front();
    wstring text;
    read_value(console, file).toString(text);
    MemoryInStream in(text);
    ListScanner scanner(in);
    write_text(console, options.output,
               [&](wostream& out) { format_list(scanner, file, out, options.indent); });
    return ExitCode::done;
}

} // namespace

void add_list_command(CLI::App& app, Console& console, Action& action) {
    auto* const command =
        app.add_subcommand("list", help(console, "Check, format and convert brace lists",
                                        "Проверить, разметить и преобразовать скобочные списки"));
    command->require_subcommand(1);
    command->fallthrough();
    const auto options = std::make_shared<ListOptions>();
    using Run = ExitCode (*)(Console&, const ListOptions&);
    const auto add = [&](const char* name, const char* what, Run run) {
        return add_subcommand(*command, name, what, action,
                              [options, &console, run] { return run(console, *options); });
    };
    add("check",
        help(console, "Say whether they are well-formed, or line, column and what was expected",
             "Показать, правильны ли они, или строку, столбец и что ожидалось"),
        check)
        ->add_option("files", options->files,
                     help(console, "Files; - or none is standard input",
                          "Файлы; - или ничего означает стандартный ввод"));
    const auto addConversion = [&](const char* name, const char* what, Run run) {
        auto* const sub = add(name, what, run);
        sub->add_option("file", options->files,
                        help(console, "A file; - or none is standard input",
                             "Файл; - или ничего означает стандартный ввод"))
            ->expected(0, 1);
        sub->add_option("-o,--output", options->output,
                        help(console, "The file to write; default: standard output",
                             "Файл для записи; по умолчанию стандартный вывод"));
        if (run == to_compact)
            return;
        sub->add_option("--indent", options->indent,
                        help(console, "Blanks for each level, 0 to 16; default: 2",
                             "Пробелов на уровень, от 0 до 16; по умолчанию 2"))
            ->type_name("0…16")
            ->check(CLI::Range(0, 16).description(""));
    };
    addConversion("fmt", help(console, "Lay a list out in lines", "Разбить список на строки"), format);
    addConversion("to-json", help(console, "Write a list as JSON", "Записать список в JSON"), to_json);
    addConversion("from-json", help(console, "Write JSON as a list", "Записать JSON списком"), from_json);
    addConversion("to-compact",
                  help(console, "Write the list of a value in the compact form",
                       "Записать список значения в компактной форме"),
                  to_compact);
    addConversion("from-compact",
                  help(console, "Write a value in the compact form as a list",
                       "Записать значение из компактной формы списком"),
                  from_compact);
}

} // namespace host
