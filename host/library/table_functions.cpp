// SPDX-License-Identifier: Apache-2.0
#include "host/library/table_functions.h"

#include "host/library/arguments.h"
#include "host/library/parameters.h"

#include <core/context/arguments.h>
#include <core/context/context_def_ext.h>
#include <core/context/errors.h>
#include <core/exchange/csv.h>
#include <core/exchange/json.h>
#include <core/exchange/table_view.h>
#include <core/presentation/services.h>
#include <core/reports/report.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/utf8.h>

#include <filesystem>
#include <limits>
#include <sstream>

namespace core::script {

namespace {

std::optional<char> delimiter_argument(Args arguments, int param) {
    if (!given(arguments[static_cast<std::size_t>(param)]))
        return std::nullopt;
    const wstring_view text = text_argument(arguments, param);
    if (text.size() != 1 || !is_csv_delimiter(text.front()))
        parameter_value_mismatch(param);
    return static_cast<char>(text.front());
}

/// How long a file is, as far as that can be known beforehand.
std::uint64_t length_of(const std::string& file) {
    std::error_code unknown;
    const auto length = std::filesystem::file_size(file, unknown);
    return unknown ? 0 : length;
}

std::string all_of(const Bytes& bytes) {
    std::string text;
    for (std::size_t size = 0, got = 1; got != 0; size += got) {
        text.resize(size + (std::size_t{64} << 10U));
        got = bytes(std::as_writable_bytes(std::span(text).subspan(size)));
        text.resize(size + got);
    }
    return text;
}

class TableFunctions : public IContextImpl<IContextDefImpl<TableFunctions>>,
                       public ContextDefExtImpl<TableFunctions> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    explicit TableFunctions(const Surroundings& surroundings) : surroundings_(surroundings) {}

    static std::span<const Property<TableFunctions>> properties() noexcept { return {}; }
    static std::span<const Method<TableFunctions>> methods() noexcept;

    GenericValue loadCsv(Args a) {
        const wstring_view file = text_argument(a, 0);
        Losses losses;
        CsvReadOptions options{.delimiter = delimiter_argument(a, 1),
                               .columns = wstring(optional_text_argument(a[2], 2))};
        if (given(a[3]))
            options.encoding = encoding_argument(a, 3);
        if (given(a[4]))
            options.headers = flag_argument(a[4], 4);
        if (given(a[5]))
            options.locale = Locale(to_utf8(text_argument(a, 5)));
        if (flag_argument(a[6], 6))
            options.losses = &losses;
        options.strict = flag_argument(a[7], 7);
        options.length = length_of(to_utf8(file));
        return Value(read_csv(open_input(surroundings_, file), file, options).query<IValue>());
    }
    GenericValue saveCsv(Args a) {
        if (!table_view(a[1], ViewFor::programs))
            parameter_type_mismatch(1);
        const wstring_view file = text_argument(a, 0);
        const CsvWriteOptions options{.delimiter = delimiter_argument(a, 2).value_or(','),
                                      .encoding = written_encoding_argument(a, 3)};
        write_output(surroundings_, to_utf8(file),
                     [&](const ByteWriter& write) { write_csv(write, a[1], file, options); });
        return {};
    }
    GenericValue loadJson(Args a) {
        const wstring_view file = text_argument(a, 0);
        Losses losses;
        const JsonTableOptions options{.columns = wstring(optional_text_argument(a[1], 1)),
                                       .losses = flag_argument(a[2], 2) ? &losses : nullptr};
        return Value(read_json_table(all_of(open_input(surroundings_, file)), file, options).query<IValue>());
    }
    GenericValue saveJson(Args a) {
        const bool lines = is_word(a[2], u"Lines", u"Строки");
        if (given(a[2]) && !lines && a[2].kind() != ValueKind::number)
            parameter_type_mismatch(2);
        const std::size_t indent = given(a[2]) && !lines ? clamped_count(a, 2, 16) : 0;
        const std::string text = lines ? to_json_lines(a[1]) : to_json(a[1], static_cast<int>(indent)) + '\n';
        write_output(surroundings_, to_utf8(text_argument(a, 0)),
                     [&text](const ByteWriter& write) { write(std::as_bytes(std::span(text))); });
        return {};
    }
    GenericValue saveHtml(Args a) {
        if (!table_view(a[1]))
            parameter_type_mismatch(1);
        const Report report{a[1], given(a[2]) ? styleArgument(a, 2) : ReportStyle()};
        require_output_right(OutputRight::save);
        write_output(surroundings_, to_utf8(text_argument(a, 0)),
                     [&report](const ByteWriter& write) { write_html_page(write, report); });
        return {};
    }
    GenericValue printTable(Args a) {
        if (!table_view(a[0]))
            parameter_type_mismatch(0);
        constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();
        const std::size_t rows = given(a[1]) ? clamped_count(a, 1, kAll) : kAll;
        if (!given(a[2])) {
            surroundings_.print(given(a[3]) ? to_value(Report{a[0], styleArgument(a, 3)}) : a[0], rows);
            return {};
        }
        if (given(a[3]))
            parameter_value_mismatch(2); // the forms for programs have no looks
        const auto form = table_form(to_utf8(text_argument(a, 2)));
        if (!form)
            parameter_value_mismatch(2);
        constexpr std::size_t kWidth = 100;
        std::ostringstream text;
        write_table(text, a[0], *form, kWidth, rows);
        write_output(surroundings_, "-", [&text](const ByteWriter& write) {
            const std::string bytes = text.str();
            write(std::as_bytes(std::span(bytes)));
        });
        return {};
    }

  private:
    static ReportStyle styleArgument(Args arguments, int param) {
        return from_value<ReportStyle>(arguments[static_cast<std::size_t>(param)],
                                       ValueReceiver::parameter(param));
    }

    const Surroundings& surroundings_;
};

constexpr Term kLoadCsvTerm = {u"LoadCsv", u"ЗагрузитьCsv"};
constexpr Term kSaveCsvTerm = {u"SaveCsv", u"СохранитьCsv"};
constexpr Term kLoadJsonTerm = {u"LoadJson", u"ЗагрузитьJson"};
constexpr Term kSaveJsonTerm = {u"SaveJson", u"СохранитьJson"};
constexpr Term kSaveHtmlTerm = {u"SaveHtml", u"СохранитьHtml"};
constexpr Term kPrintTableTerm = {u"PrintTable", u"НапечататьТаблицу"};

constexpr auto kFalseDefault = ParamDefault::falseValue;

constexpr Param kTable = named_param({u"Table", u"Таблица"});
constexpr Param kDelimiter = named_param({u"Delimiter", u"Разделитель"}, kUndefinedDefault);
constexpr Param kColumns = named_param({u"Columns", u"Колонки"}, kUndefinedDefault);
constexpr Param kGoOn = named_param({u"GoOn", u"Продолжать"}, kFalseDefault);

constexpr Param kLoadCsv[] = {kFile,
                              kDelimiter,
                              kColumns,
                              kEncoding,
                              named_param({u"Headers", u"Заголовки"}, kUndefinedDefault),
                              named_param({u"Locale", u"Локаль"}, kUndefinedDefault),
                              kGoOn,
                              named_param({u"Strict", u"Строго"}, kFalseDefault)};
constexpr Param kSaveCsv[] = {kFile, kTable, kDelimiter, kEncoding};
constexpr Param kLoadJson[] = {kFile, kColumns, kGoOn};
constexpr Param kSaveJson[] = {kFile, named_param({u"Value", u"Значение"}),
                               named_param({u"Indent", u"Отступ"}, kUndefinedDefault)};
constexpr Param kStyle = named_param({u"Style", u"Стиль"}, kUndefinedDefault);
constexpr Param kSaveHtml[] = {kFile, kTable, kStyle};
constexpr Param kPrintTable[] = {kTable, named_param({u"Rows", u"Строки"}, kUndefinedDefault),
                                 named_param({u"Form", u"Форма"}, kUndefinedDefault), kStyle};

std::span<const Method<TableFunctions>> TableFunctions::methods() noexcept {
    using F = TableFunctions;
    static constexpr Method<F> kMethods[] = {
        {kLoadCsvTerm, kLoadCsv, kFunction, &F::loadCsv, &kValueTableType},
        {kSaveCsvTerm, kSaveCsv, kProcedure, &F::saveCsv},
        {kLoadJsonTerm, kLoadJson, kFunction, &F::loadJson, &kValueTableType},
        {kSaveJsonTerm, kSaveJson, kProcedure, &F::saveJson},
        {kSaveHtmlTerm, kSaveHtml, kProcedure, &F::saveHtml},
        {kPrintTableTerm, kPrintTable, kProcedure, &F::printTable},
    };
    return kMethods;
}

} // namespace

InterfacePtr<IContext_> create_table_functions(const Surroundings& surroundings) {
    return make_object<TableFunctions>(surroundings);
}

} // namespace core::script
