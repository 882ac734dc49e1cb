// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/query_steps.h"
#include "host/terminal/byte_input.h"
#include "host/terminal/disk_entry.h"
#include "host/terminal/error_report.h"
#include "host/terminal/interrupts.h"
#include "host/terminal/print.h"
#include "host/terminal/script_console.h"

#include <core/containers/container.h>
#include <core/exchange/csv.h>
#include <core/exchange/json.h>
#include <core/files/errors.h>
#include <core/runtime/threads/stop_scope.h>
#include <core/runtime/utf8.h>
#include <core/strings/char_class.h>
#include <core/strings/names.h>
#include <core/tables/structures.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>
#include <memory>
#include <ostream>

namespace host {
namespace {

using namespace core;

struct QueryOptions {
    std::vector<std::string> words; // files, and the expression behind them
    std::string columns;
    std::string delimiter;
    std::string encoding;
    bool goOn = false;
};

enum class FileForm { csv, json, container };

/// Whether a text begins as arrays and objects of JSON do, on one line or on several, and no name of a
/// column.
bool begins_json(std::string_view text) {
    constexpr const char* kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    const std::size_t second =
        first == std::string_view::npos ? first : text.find_first_not_of(kBlanks, first + 1);
    if (second == std::string_view::npos)
        return false;
    constexpr std::string_view kElements = "{[]\"-0123456789";
    return (text[first] == '[' && kElements.find(text[second]) != std::string_view::npos) ||
           (text[first] == '{' && (text[second] == '"' || text[second] == '}'));
}

/// Whether a text begins as a container does: a header, a line end, and the sizes of the first block.
bool begins_container(std::string_view text) {
    return std::ranges::any_of(std::array{std::size_t{16}, std::size_t{24}}, [text](std::size_t header) {
        constexpr std::string_view kDigits = "0123456789abcdef";
        const std::size_t digits = header - 8; // 8 in the narrow layout, 16 in the wide one
        const std::string_view block = text.substr(std::min(header, text.size()), digits + 3);
        return block.size() == digits + 3 && block.starts_with("\r\n") && block.ends_with(' ') &&
               block.find_first_not_of(kDigits, 2) == digits + 2;
    });
}

/// What a file is by its beginning and its name.
FileForm form_of(const std::string& file, std::string_view text) {
    const std::string extension = path_text(native_path(file).extension());
    if (extension == ".json" || extension == ".jsonl" || extension == ".ndjson")
        return FileForm::json;
    if (begins_container(text))
        return FileForm::container;
    return extension.empty() && begins_json(text) ? FileForm::json : FileForm::csv;
}

/// Bytes that were looked at come again.
class Beginning {
  public:
    Beginning(Console& console, const std::string& file) : input_(console, file) {
        text_.resize(4096);
        text_.resize(input_.read(std::as_writable_bytes(std::span(text_))));
    }
    [[nodiscard]] const std::string& text() const noexcept { return text_; }
    std::size_t read(std::span<std::byte> bytes) {
        if (at_ == text_.size())
            return input_.read(bytes);
        const std::size_t count = std::min(bytes.size(), text_.size() - at_);
        std::copy_n(std::as_bytes(std::span(text_)).begin() + static_cast<std::ptrdiff_t>(at_), count,
                    bytes.begin());
        at_ += count;
        return count;
    }

  private:
    ByteInput input_;
    std::string text_;
    std::size_t at_ = 0;
};

/// "data.st:sales" is the value "sales" of a container, where no file has that name.
std::optional<GenericValue> value_in_container(const std::string& file) {
    const std::size_t colon = file.rfind(':');
    std::error_code ignored;
    if (colon == std::string::npos || colon == 0 || std::filesystem::exists(native_path(file), ignored) ||
        !std::filesystem::is_regular_file(native_path(file.substr(0, colon)), ignored))
        return std::nullopt;
    return Container(file.substr(0, colon), Container::read).get(from_utf8(file.substr(colon + 1)));
}

GenericValue load(const std::string& file, const QueryOptions& options, Console& console) {
    if (auto value = value_in_container(file))
        return *std::move(value);
    Losses losses;
    Losses* const lost = options.goOn ? &losses : nullptr;
    const auto input = std::make_shared<Beginning>(console, file);
    InterfacePtr<IValueTable> table;
    const FileForm form = form_of(file, input->text());
    if (form == FileForm::container)
        throw_error<ContextException>("IDS_HOST_QUERY_CONTAINER", {from_utf8(file)});
    if (form == FileForm::json) {
        std::string text;
        for (std::size_t size = 0, got = 1; got != 0; size += got) {
            text.resize(size + (std::size_t{64} << 10U));
            got = input->read(std::as_writable_bytes(std::span(text).subspan(size)));
            text.resize(size + got);
        }
        table =
            read_json_table(text, from_utf8(file), {.columns = from_utf8(options.columns), .losses = lost});
    } else {
        CsvReadOptions csv{.columns = from_utf8(options.columns), .losses = lost};
        if (!options.delimiter.empty())
            csv.delimiter = options.delimiter == "\\t" ? '\t' : options.delimiter.front();
        if (!options.encoding.empty())
            csv.encoding = Encoding(from_utf8(options.encoding));
        csv.locale = console.locale;
        table = read_csv([input](std::span<std::byte> bytes) { return input->read(bytes); }, from_utf8(file),
                         csv);
    }
    for (const Loss& loss : std::span(losses.first()).first(std::min<std::size_t>(losses.first().size(), 5)))
        show_failure_in(console, from_utf8(file), loss.line, loss.column + u": " + loss_text(loss));
    return Value(table.query<IValue>());
}

/// The name under which a script finds the table of a file; empty where the file has no such name.
wstring variable_of(const std::string& file) {
    wstring name = from_utf8(path_text(native_path(file).stem()));
    for (wchar& unit : name)
        unit = is_alnum(unit) || unit == u'_' ? unit : u'_';
    return is_valid_name(name) ? name : wstring();
}

/// A row is shown as a table is, under the names of its columns.
GenericValue table_of_row(const Value& row) {
    const auto rows = create_value_array({row});
    return Value(table_of_rows(Value(rows.query<IValue>())).query<IValue>());
}

ExitCode query(const QueryOptions& options, Console& console) {
    if (options.words.size() < 2)
        return fail(console, message_text("IDS_HOST_QUERY_WORDS"), ExitCode::usage);
    const std::span<const std::string> files(options.words.data(), options.words.size() - 1);
    script::Engine engine;
    connect(engine, console);
    std::vector<GenericValue> tables;
    const Interrupts interrupts(&engine);
    try {
        const StopScope stops(interrupts.token());
        for (const std::string& file : files)
            tables.push_back(load(file, options, console));
    } catch (const ThreadDeath&) {
        return fail(console, "IDS_HOST_INTERRUPTED", ExitCode::interrupted);
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (const wstring name = variable_of(files[i]); !name.empty()) {
            try {
                engine.set(name, tables[i]);
            } catch (const ContextException&) { // a word of the language; Table is there all the same
            }
        }
    }
    try {
        const GenericValue result = run_steps(engine, tables.front(), from_utf8(options.words.back()));
        if (!result.isUndefined())
            print_value(result.query<IValueRow>() ? table_of_row(result) : result, console,
                        std::numeric_limits<std::size_t>::max());
    } catch (const script::Error& error) {
        console.out.flush();
        show_error(console, error);
        return code_of(error);
    }
    return ExitCode::done;
}

} // namespace

void add_query_command(CLI::App& app, Console& console, Action& action) {
    auto* const command = app.add_subcommand("query", help(console, "Ask tables in CSV, JSON and containers",
                                                           "Спросить таблицы в CSV, JSON и контейнерах"));
    const auto options = std::make_shared<QueryOptions>();
    command
        ->add_option(
            "words", options->words,
            help(console,
                 "Files (- is standard input, C:NAME a value of a container), then steps with | between "
                 "them: 'Group(\"Product\", \"Sum(Price)\") | Sort(\"Price Desc\") | First(10)'",
                 "Файлы (- означает стандартный ввод, C:ИМЯ значение контейнера), затем шаги через |: "
                 "'Группировать(\"Товар\", \"Сумма(Цена)\") | Сортировать(\"Цена Убыв\") | Первые(10)'"))
        ->required();
    const auto add = [&](const char* name, std::string& value, const char* english, const char* russian,
                         const char* type) {
        command->add_option(name, value, help(console, english, russian))->type_name(type);
    };
    add("--columns", options->columns, "Types: \"Day Date, Price Number(10,2)\"; default: found",
        "Типы: \"День Дата, Цена Число(10,2)\"; по умолчанию определяются", "LIST");
    add("--delimiter", options->delimiter, "Between fields; default: found",
        "Между полями; по умолчанию определяется", "CHAR");
    command->get_option("--delimiter")->check([](const std::string& text) {
        const bool isOne =
            text == "\\t" || (text.size() == 1 && is_csv_delimiter(static_cast<unsigned char>(text[0])));
        return isOne ? std::string() : std::string("--delimiter");
    });
    add("--encoding", options->encoding, "Of the files; default: found", "Файлов; по умолчанию определяется",
        "ENCODING");
    command->add_flag("--go-on", options->goOn,
                      help(console, "Go on where a cell does not fit its type, and tell of the first ones",
                           "Продолжать, если ячейка не подходит к типу, и показать первые такие"));
    command->callback(
        [options, &console, &action] { action = [options, &console] { return query(*options, console); }; });
}

} // namespace host
