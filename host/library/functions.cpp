// SPDX-License-Identifier: Apache-2.0
#include "host/library/functions.h"

#include "host/library/arguments.h"
#include "host/library/parameters.h"

#include <core/containers/container.h>
#include <core/context/arguments.h>
#include <core/context/context_def_ext.h>
#include <core/context/context_impl.h>
#include <core/context/errors.h>
#include <core/exchange/json.h>
#include <core/exchange/whole_file.h>
#include <core/files/errors.h>
#include <core/files/file_system.h>
#include <core/lists/errors.h>
#include <core/lists/list_scanner.h>
#include <core/objects/binary_data.h>
#include <core/runtime/clock.h>
#include <core/runtime/exception_object.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/process.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <core/streams/memory_stream.h>
#include <core/streams/text_file.h>
#include <core/strings/integer_text.h>
#include <core/strings/letter_case.h>
#include <core/strings/like.h>
#include <core/strings/trim.h>
#include <core/values/date_reading.h>
#include <core/values/errors.h>

#include <algorithm>
#include <chrono>

namespace core::script {

namespace {

/// Throws a failure again with the place where the text is not a brace list; returns where it is one.
void throw_place(const ListStreamException& failure, wstring_view text) {
    MemoryInStream in(text);
    ListScanner scanner(in);
    while (scanner.token() != ListScanner::Token::error) {
        if (scanner.next() == ListScanner::Token::endOfText)
            return;
    }
    throw_error<ContextException>(
        "IDS_SCRIPT_TEXT_MALFORMED",
        {string_intto(scanner.place().line), string_intto(scanner.place().column), scanner.message()},
        wrap_exception(failure).get());
}

/// A String of a text in UTF-8, which may be long: a stop is looked for between its pieces.
GenericValue text_value(std::string_view utf8) {
    constexpr std::size_t kPiece = std::size_t{1} << 20;
    wstring units;
    units.reserve(utf8.size());
    while (!utf8.empty()) {
        Thread::check();
        std::size_t piece = std::min(kPiece, utf8.size());
        while (piece < utf8.size() && (utf8[piece] & 0xC0) == 0x80) // inside a character
            ++piece;
        units += from_utf8(utf8.substr(0, piece));
        utf8.remove_prefix(piece);
    }
    Thread::check();
    return GenericValue(units);
}

class ScriptFunctions : public IContextImpl<IContextDefImpl<ScriptFunctions>>,
                        public ContextDefExtImpl<ScriptFunctions> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    explicit ScriptFunctions(const Surroundings& surroundings)
        : surroundings_(surroundings), start_(std::chrono::steady_clock::now()) {}

    static std::span<const Property<ScriptFunctions>> properties() noexcept { return {}; }
    static std::span<const Method<ScriptFunctions>> methods() noexcept;

    // output and forms
    GenericValue print(Args a) {
        surroundings_.print(a[0], kPrintedRows);
        return {};
    }
    GenericValue fromText(Args a) {
        const wstring_view text = text_argument(a, 0);
        try {
            return GenericValue::fromString(text);
        } catch (const ListStreamException& failure) {
            throw_place(failure, text);
            throw; // a list, but not a value
        }
    }
    GenericValue toText(Args a) {
        wstring text;
        a[0].toString(text);
        return GenericValue(text);
    }
    GenericValue fromJson(Args a) {
        const std::string text = to_utf8(text_argument(a, 0));
        if (a[1].kind() == ValueKind::string) {
            if (is_word(a[1], u"Lines", u"Строки"))
                return from_json_lines(text);
            if (!is_word(a[1], u"Table", u"Таблица"))
                parameter_value_mismatch(1);
            Losses lost;
            const JsonTableOptions options{.columns = wstring(optional_text_argument(a[2], 2)),
                                           .losses = flag_argument(a[3], 3) ? &lost : nullptr};
            return Value(read_json_table(text, {}, options).query<IValue>());
        }
        if (given(a[1]) && a[1].kind() != ValueKind::boolean)
            parameter_type_mismatch(1);
        return from_json(text, a[1].isTrue() ? Objects::maps : Objects::structures);
    }
    GenericValue toJson(Args a) {
        if (a[1].kind() == ValueKind::string) {
            if (!is_word(a[1], u"Lines", u"Строки"))
                parameter_value_mismatch(1);
            return text_value(to_json_lines(a[0]));
        }
        const std::size_t indent = given(a[1]) ? clamped_count(a, 1, 16) : 0;
        return text_value(to_json(a[0], static_cast<int>(indent)));
    }
    GenericValue loadText(Args a) {
        const wstring url(text_argument(a, 0));
        return GenericValue(
            load_text(require_service<IFileSystem>(), url, {.encoding = encoding_argument(a, 1)}));
    }
    GenericValue saveText(Args a) {
        const wstring_view text = text_argument(a, 1);
        write_text_file(to_utf8(text_argument(a, 0)), [text](wostream& out) { put_text(out, text); },
                        {.encoding = written_encoding_argument(a, 2)});
        return {};
    }

    GenericValue toBinary(Args a) { return GenericValue(create_binary_data(a[0].toBytes())); }
    GenericValue fromBinary(Args a) {
        return GenericValue::fromBytes(object_argument<IBinaryData>(a[0], 0)->bytes());
    }

    /// What cannot be written makes no container.
    static Container containerFor(const std::string& file, const Value& value, ValueForm form) {
        try {
            return Container(file, Container::change);
        } catch (const FileException&) {
            Container().putValue(u"value", value, form);
            return Container(file, Container::create);
        }
    }
    GenericValue saveToContainer(Args a) {
        const std::string file = to_utf8(text_argument(a, 0));
        const wstring_view name = text_argument(a, 1);
        constexpr auto kText = static_cast<std::int32_t>(ValueForm::text);
        const auto form =
            static_cast<ValueForm>(choice_argument(a[3], 3, *script_enumeration(ValueForm{}), kText));
        containerFor(file, a[2], form).putValue(name, a[2], form);
        return {};
    }
    GenericValue loadFromContainer(Args a) {
        return Container(to_utf8(text_argument(a, 0)), Container::read).get(text_argument(a, 1));
    }

    // dates and time
    GenericValue currentDate(Args) { return GenericValue(Date::getCurrentDate()); }
    GenericValue elapsed(Args) {
        const auto time =
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start_);
        return GenericValue(Numeric(time.count()) / Numeric(1000));
    }

    // texts
    GenericValue length(Args a) { return GenericValue(text_argument(a, 0).size()); }
    GenericValue left(Args a) {
        const wstring_view text = text_argument(a, 0);
        return GenericValue(text.substr(0, clamped_count(a, 1, text.size())));
    }
    GenericValue mid(Args a) { // positions count from 1
        const wstring_view text = text_argument(a, 0);
        const std::size_t begin = std::max<std::size_t>(clamped_count(a, 1, text.size() + 1), 1) - 1;
        return GenericValue(
            text.substr(begin, given(a[2]) ? clamped_count(a, 2, text.size()) : wstring_view::npos));
    }
    GenericValue upper(Args a) { return GenericValue(to_upper(text_argument(a, 0))); }
    GenericValue lower(Args a) { return GenericValue(to_lower(text_argument(a, 0))); }
    GenericValue like(Args a) { return GenericValue(compare_like(text_argument(a, 0), text_argument(a, 1))); }
    GenericValue trim(Args a) { return GenericValue(trim_all(text_argument(a, 0))); }
    /// The presentation, filled with blanks to a width; a negative width fills in front.
    GenericValue pad(Args a) {
        constexpr std::size_t kMaxWidth = 10'000;
        wstring text = a[0].presentation();
        Numeric width = number_reading(a, 1);
        const bool inFront = width.sign() < 0;
        width = width.abs();
        if (width.compare(Numeric(kMaxWidth)) > 0)
            parameter_value_mismatch(1);
        const auto wanted = static_cast<std::size_t>(width);
        if (text.size() < wanted)
            text.insert(inFront ? 0 : text.size(), wanted - text.size(), u' ');
        return GenericValue(text);
    }

    // conversions
    GenericValue string(Args a) { return GenericValue(a[0].presentation()); }
    GenericValue number(Args a) { return GenericValue(number_reading(a, 0)); }
    GenericValue date(Args a) {
        const auto date = date_reading(a[0]);
        if (!date)
            refuse_reading(a, 0, "IDS_SCRIPT_NO_DATE");
        return GenericValue(*date);
    }
    GenericValue round(Args a) {
        const Numeric digits = given(a[1]) ? number_reading(a, 1) : Numeric();
        if (digits.abs().compare(Numeric(1000)) > 0)
            parameter_value_mismatch(1);
        return GenericValue(number_reading(a, 0).round(static_cast<std::int32_t>(digits)));
    }
    GenericValue typeOf(Args a) { return GenericValue(a[0].type()); }
    GenericValue type(Args a) { return GenericValue(Type(text_argument(a, 0))); }

  private:
    const Surroundings& surroundings_;
    std::chrono::steady_clock::time_point start_;
};

constexpr Term kPrintTerm = {u"Print", u"Сообщить"};
constexpr Term kFromTextTerm = {u"FromText", u"ИзТекста"};
constexpr Term kToTextTerm = {u"ToText", u"ВТекст"};
constexpr Term kFromJsonTerm = {u"FromJson", u"ИзJson"};
constexpr Term kToJsonTerm = {u"ToJson", u"ВJson"};
constexpr Term kLoadTextTerm = {u"LoadText", u"ЗагрузитьТекст"};
constexpr Term kSaveTextTerm = {u"SaveText", u"СохранитьТекст"};
constexpr Term kToBinaryTerm = {u"ToBinary", u"ВДвоичные"};
constexpr Term kFromBinaryTerm = {u"FromBinary", u"ИзДвоичных"};
constexpr Term kSaveToContainerTerm = {u"SaveToContainer", u"СохранитьВКонтейнер"};
constexpr Term kLoadFromContainerTerm = {u"LoadFromContainer", u"ЗагрузитьИзКонтейнера"};
constexpr Term kCurrentDateTerm = {u"CurrentDate", u"ТекущаяДата"};
constexpr Term kElapsedTerm = {u"Elapsed", u"ПрошлоВремени"};
constexpr Term kLengthTerm = {u"StrLen", u"СтрДлина"};
constexpr Term kLeftTerm = {u"Left", u"Лев"};
constexpr Term kMidTerm = {u"Mid", u"Сред"};
constexpr Term kUpperTerm = {u"Upper", u"ВРег"};
constexpr Term kLowerTerm = {u"Lower", u"НРег"};
constexpr Term kLikeTerm = {u"Like", u"Подобно"};
constexpr Term kTrimTerm = {u"TrimAll", u"СокрЛП"};
constexpr Term kPadTerm = {u"Pad", u"Дополнить"};
constexpr Term kStringTerm = {u"String", u"Строка"};
constexpr Term kNumberTerm = {u"Number", u"Число"};
constexpr Term kDateTerm = {u"Date", u"Дата"};
constexpr Term kRoundTerm = {u"Round", u"Окр"};
constexpr Term kTypeOfTerm = {u"TypeOf", u"ТипЗнч"};
constexpr Term kTypeTerm = {u"Type", u"Тип"};

constexpr NamePair kValueName = {u"Value", u"Значение"};
constexpr NamePair kNumberName = {u"Number", u"Число"};
constexpr NamePair kCountName = {u"Count", u"Количество"};
constexpr Param kName = named_param({u"Name", u"Имя"});
constexpr Param kValue = named_param(kValueName);

constexpr Param kOfName[] = {kName};
constexpr Param kOfValue[] = {kValue};
constexpr Param kPrint[] = {named_param(kValueName, ParamDefault::emptyString)};
constexpr Param kFromJson[] = {kText, named_param({u"Maps", u"Соответствия"}, ParamDefault::falseValue),
                               named_param({u"Columns", u"Колонки"}, kUndefinedDefault),
                               named_param({u"GoOn", u"Продолжать"}, ParamDefault::falseValue)};
constexpr Param kToJson[] = {kValue, named_param({u"Indent", u"Отступ"}, kUndefinedDefault)};
constexpr Param kLoadText[] = {kFile, kEncoding};
constexpr Param kSaveText[] = {kFile, kText, kEncoding};
constexpr Param kOfData[] = {named_param({u"Data", u"Данные"})};
constexpr Param kSaveToContainer[] = {kFile, kName, kValue,
                                      named_param({u"Form", u"Форма"}, kUndefinedDefault)};
constexpr Param kLoadFromContainer[] = {kFile, kName};
constexpr Param kLeft[] = {kText, named_param(kCountName)};
constexpr Param kMid[] = {kText, named_param({u"From", u"Начало"}),
                          named_param(kCountName, kUndefinedDefault)};
constexpr Param kLike[] = {kText, named_param({u"Pattern", u"Шаблон"})};
constexpr Param kPad[] = {kValue, named_param({u"Width", u"Ширина"})};
constexpr Param kRound[] = {named_param(kNumberName), named_param({u"Digits", u"Знаки"}, kUndefinedDefault)};

std::span<const Method<ScriptFunctions>> ScriptFunctions::methods() noexcept {
    using F = ScriptFunctions;
    static constexpr Method<F> kMethods[] = {
        {kPrintTerm, kPrint, kProcedure, &F::print},
        {kFromTextTerm, kOfText, kFunction, &F::fromText},
        {kToTextTerm, kOfValue, kFunction, &F::toText, &kStringType},
        {kFromJsonTerm, kFromJson, kFunction, &F::fromJson},
        {kToJsonTerm, kToJson, kFunction, &F::toJson, &kStringType},
        {kLoadTextTerm, kLoadText, kFunction, &F::loadText, &kStringType},
        {kSaveTextTerm, kSaveText, kProcedure, &F::saveText},
        {kToBinaryTerm, kOfValue, kFunction, &F::toBinary, &kBinaryDataType},
        {kFromBinaryTerm, kOfData, kFunction, &F::fromBinary},
        {kSaveToContainerTerm, kSaveToContainer, kProcedure, &F::saveToContainer},
        {kLoadFromContainerTerm, kLoadFromContainer, kFunction, &F::loadFromContainer},
        {kCurrentDateTerm, {}, kFunction, &F::currentDate, &kDateType},
        {kElapsedTerm, {}, kFunction, &F::elapsed, &kNumberType},
        {kLengthTerm, kOfText, kFunction, &F::length, &kNumberType},
        {kLeftTerm, kLeft, kFunction, &F::left, &kStringType},
        {kMidTerm, kMid, kFunction, &F::mid, &kStringType},
        {kUpperTerm, kOfText, kFunction, &F::upper, &kStringType},
        {kLowerTerm, kOfText, kFunction, &F::lower, &kStringType},
        {kLikeTerm, kLike, kFunction, &F::like, &kBooleanType},
        {kTrimTerm, kOfText, kFunction, &F::trim, &kStringType},
        {kPadTerm, kPad, kFunction, &F::pad, &kStringType},
        {kStringTerm, kOfValue, kFunction, &F::string, &kStringType},
        {kNumberTerm, kOfValue, kFunction, &F::number, &kNumberType},
        {kDateTerm, kOfValue, kFunction, &F::date, &kDateType},
        {kRoundTerm, kRound, kFunction, &F::round, &kNumberType},
        {kTypeOfTerm, kOfValue, kFunction, &F::typeOf, &kTypeType},
        {kTypeTerm, kOfName, kFunction, &F::type, &kTypeType},
    };
    return kMethods;
}

} // namespace

InterfacePtr<IContext_> create_script_functions(const Surroundings& surroundings) {
    return make_object<ScriptFunctions>(surroundings);
}

} // namespace core::script
