// SPDX-License-Identifier: Apache-2.0
#include "host/library/table_functions.h"

#include "host/exchange/csv/csv_table.h"
#include "host/exchange/files/recoded.h"
#include "host/exchange/files/whole_file.h"
#include "host/exchange/tables/table_view.h"
#include "host/library/arguments.h"

#include <core/context/arguments.h>
#include <core/context/context_def_ext.h>
#include <core/context/errors.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/utf8.h>

#include <limits>

namespace core::script {

namespace {

char delimiter_argument(Args arguments, int param) {
    if (!given(arguments[static_cast<std::size_t>(param)]))
        return ',';
    const wstring_view text = text_argument(arguments, param);
    if (text.size() != 1 || !host::is_csv_delimiter(text.front()))
        parameter_value_mismatch(param);
    return static_cast<char>(text.front());
}

/// Names with commas between them.
std::vector<wstring> names_argument(Args arguments, int param) {
    std::vector<wstring> names;
    for (const wstring_view name : list_argument(arguments[static_cast<std::size_t>(param)], param))
        names.emplace_back(name);
    return names;
}

class TableFunctions : public IContextImpl<IContextDefImpl<TableFunctions>>,
                       public ContextDefExtImpl<TableFunctions> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    explicit TableFunctions(const Surroundings& surroundings) : surroundings_(surroundings) {}

    static std::span<const Property<TableFunctions>> properties() noexcept { return {}; }
    static std::span<const Method<TableFunctions>> methods() noexcept;

    GenericValue loadCsv(Args a) {
        std::optional<std::vector<wstring>> columns;
        if (given(a[2]))
            columns = names_argument(a, 2);
        const wstring_view file = text_argument(a, 0);
        const char delimiter = delimiter_argument(a, 1);
        return Value(
            host::read_csv_table(host::in_utf8(surroundings_.open(file), file, encoding_argument(a, 3)), file,
                                 delimiter, columns)
                .query<IValue>());
    }
    GenericValue saveCsv(Args a) {
        const auto table = host::table_view(a[1], host::ViewFor::programs);
        if (!table)
            parameter_type_mismatch(1);
        const char delimiter = delimiter_argument(a, 2);
        host::write_text_file(to_utf8(text_argument(a, 0)),
                              [&](wostream& out) { host::write_csv_table(out, *table, delimiter); },
                              {.encoding = written_encoding_argument(a, 3)});
        return {};
    }
    GenericValue printTable(Args a) {
        if (!host::table_view(a[0]))
            parameter_type_mismatch(0);
        constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();
        surroundings_.print(a[0], given(a[1]) ? clamped_count(a, 1, kAll) : kAll);
        return {};
    }

  private:
    const Surroundings& surroundings_;
};

constexpr Term kLoadCsvTerm = {u"LoadCsv", u"ЗагрузитьCsv"};
constexpr Term kSaveCsvTerm = {u"SaveCsv", u"СохранитьCsv"};
constexpr Term kPrintTableTerm = {u"PrintTable", u"НапечататьТаблицу"};

constexpr Param kFile = named_param({u"File", u"Файл"});
constexpr Param kTable = named_param({u"Table", u"Таблица"});
constexpr Param kDelimiter = named_param({u"Delimiter", u"Разделитель"}, ParamDefault::undefined);
constexpr Param kEncoding = named_param({u"Encoding", u"Кодировка"}, ParamDefault::undefined);

constexpr Param kLoadCsv[] = {kFile, kDelimiter,
                              named_param({u"Columns", u"Колонки"}, ParamDefault::undefined), kEncoding};
constexpr Param kSaveCsv[] = {kFile, kTable, kDelimiter, kEncoding};
constexpr Param kPrintTable[] = {kTable, named_param({u"Rows", u"Строки"}, ParamDefault::undefined)};

std::span<const Method<TableFunctions>> TableFunctions::methods() noexcept {
    using F = TableFunctions;
    static constexpr Method<F> kMethods[] = {
        {kLoadCsvTerm, kLoadCsv, kFunction, &F::loadCsv, &kValueTableType},
        {kSaveCsvTerm, kSaveCsv, kProcedure, &F::saveCsv},
        {kPrintTableTerm, kPrintTable, kProcedure, &F::printTable},
    };
    return kMethods;
}

} // namespace

InterfacePtr<IContext_> create_table_functions(const Surroundings& surroundings) {
    return make_object<TableFunctions>(surroundings);
}

} // namespace core::script
