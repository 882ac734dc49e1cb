// SPDX-License-Identifier: Apache-2.0
#include "host/library/text_functions.h"

#include "host/library/arguments.h"
#include "host/library/parameters.h"
#include "host/library/regex.h"

#include <core/collections/native_values.h>
#include <core/context/context_def_ext.h>
#include <core/context/context_impl.h>
#include <core/runtime/internal_class.h>
#include <core/strings/split.h>
#include <core/strings/trim.h>

#include <algorithm>
#include <utility>

namespace core::script {
namespace {

constexpr bool is_high(wchar c) noexcept {
    return c >= 0xD800 && c <= 0xDBFF;
}
constexpr bool is_low(wchar c) noexcept {
    return c >= 0xDC00 && c <= 0xDFFF;
}

/// A text that something is looked for with: it must not be empty.
wstring_view sought_argument(Args arguments, int param) {
    const wstring_view text = text_argument(arguments, param);
    if (text.empty())
        parameter_value_mismatch(param);
    return text;
}

/// A position in a text from 1, as an offset; the beginning where none is given.
std::size_t offset_argument(Args arguments, int param, std::size_t size) {
    if (!given(arguments[static_cast<std::size_t>(param)]))
        return 0;
    return std::max<std::size_t>(clamped_count(arguments, param, size + 1), 1) - 1;
}

InterfacePtr<IValueArray> array_of(const std::vector<wstring_view>& texts) {
    return create_value_array({texts.begin(), texts.end()});
}

class TextFunctions : public IContextImpl<IContextDefImpl<TextFunctions>>,
                      public ContextDefExtImpl<TextFunctions> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    static std::span<const Property<TextFunctions>> properties() noexcept { return {}; }
    static std::span<const Method<TextFunctions>> methods() noexcept;

    GenericValue find(Args a) {
        const wstring_view text = text_argument(a, 0);
        const std::size_t at = text.find(sought_argument(a, 1), offset_argument(a, 2, text.size()));
        return GenericValue(at == wstring_view::npos ? std::size_t{0} : at + 1);
    }
    GenericValue occurrences(Args a) {
        const wstring_view text = text_argument(a, 0);
        const wstring_view sought = sought_argument(a, 1);
        std::size_t count = 0;
        for (std::size_t at = 0; (at = text.find(sought, at)) != wstring_view::npos; at += sought.size())
            ++count;
        return GenericValue(count);
    }
    GenericValue replace(Args a) {
        const wstring_view text = text_argument(a, 0);
        const wstring_view sought = sought_argument(a, 1);
        return GenericValue(replace_all(text, sought, text_argument(a, 2)));
    }
    GenericValue startsWith(Args a) {
        return GenericValue(text_argument(a, 0).starts_with(text_argument(a, 1)));
    }
    GenericValue endsWith(Args a) { return GenericValue(text_argument(a, 0).ends_with(text_argument(a, 1))); }
    GenericValue split(Args a) {
        const wstring_view text = text_argument(a, 0);
        const wstring_view separator = sought_argument(a, 1);
        const bool skipEmpty = flag_argument(a[2], 2);
        std::vector<wstring_view> pieces;
        for (std::size_t begin = 0; begin <= text.size();) {
            const std::size_t end = std::min(text.find(separator, begin), text.size());
            if (!skipEmpty || end > begin)
                pieces.push_back(text.substr(begin, end - begin));
            begin = end + separator.size();
        }
        return GenericValue(array_of(pieces).query<IValue>());
    }
    GenericValue concat(Args a) {
        const wstring_view separator = optional_text_argument(a[1], 1);
        wstring text;
        bool first = true;
        core::detail::walk_elements(a[0], ValueReceiver::parameter(0), [&](const Value& element) {
            if (!std::exchange(first, false))
                text += separator;
            text += element.presentation();
        });
        return GenericValue(text);
    }
    GenericValue right(Args a) {
        const wstring_view text = text_argument(a, 0);
        return GenericValue(text.substr(text.size() - clamped_count(a, 1, text.size())));
    }
    GenericValue trimLeft(Args a) { return GenericValue(trim_left(text_argument(a, 0))); }
    GenericValue trimRight(Args a) { return GenericValue(trim_right(text_argument(a, 0))); }
    GenericValue charCode(Args a) {
        const wstring_view text = text_argument(a, 0);
        const std::size_t at = offset_argument(a, 1, text.size());
        if (at >= text.size())
            parameter_value_mismatch(1);
        const bool pair = is_high(text[at]) && at + 1 < text.size() && is_low(text[at + 1]);
        return GenericValue(pair ? 0x10000 + (text[at] - 0xD800) * 0x400 + (text[at + 1] - 0xDC00)
                                 : int{text[at]});
    }
    GenericValue character(Args a) {
        constexpr std::uint32_t kLast = 0x10FFFF;
        const std::uint32_t code = count_argument(a[0], 0);
        if (code > kLast)
            parameter_value_mismatch(0);
        if (code < 0x10000)
            return GenericValue(wstring(1, static_cast<wchar>(code)));
        return GenericValue(wstring{static_cast<wchar>(0xD7C0 + (code >> 10U)),
                                    static_cast<wchar>(0xDC00 + (code & 0x3FFU))});
    }
    GenericValue fill(Args a) {
        const wstring_view pattern = text_argument(a, 0);
        wstring text;
        for (std::size_t i = 0; i < pattern.size(); ++i) {
            const wchar next = i + 1 < pattern.size() ? pattern[i + 1] : u'\0';
            if (pattern[i] != u'%' || !((next >= u'1' && next <= u'9') || next == u'%')) {
                text += pattern[i];
                continue;
            }
            ++i;
            if (next == u'%')
                text += next;
            else
                text += a[static_cast<std::size_t>(next - u'0')].presentation();
        }
        return GenericValue(text);
    }

    // regular expressions
    GenericValue regexTest(Args a) {
        return GenericValue(Regex(text_argument(a, 1), text_argument(a, 0)).find(0));
    }
    GenericValue regexFind(Args a) {
        const wstring_view text = text_argument(a, 0);
        Regex regex(text_argument(a, 1), text);
        return regex.find(offset_argument(a, 2, text.size())) ? regex.match() : GenericValue();
    }
    GenericValue regexFindAll(Args a) {
        Regex regex(text_argument(a, 1), text_argument(a, 0));
        std::vector<Value> matches;
        for (bool found = regex.find(0); found; found = regex.next())
            matches.push_back(regex.match());
        return GenericValue(create_value_array(std::move(matches)).query<IValue>());
    }
    GenericValue regexReplace(Args a) {
        return GenericValue(Regex(text_argument(a, 1), text_argument(a, 0)).replaced(text_argument(a, 2)));
    }
    GenericValue regexSplit(Args a) {
        const wstring_view text = text_argument(a, 0);
        Regex regex(text_argument(a, 1), text);
        std::vector<wstring_view> pieces;
        std::size_t begin = 0;
        for (bool found = regex.find(0); found; found = regex.next()) {
            if (regex.end() == regex.begin())
                continue; // nothing stands between two pieces
            pieces.push_back(text.substr(begin, regex.begin() - begin));
            begin = regex.end();
        }
        pieces.push_back(text.substr(begin));
        return GenericValue(array_of(pieces).query<IValue>());
    }
};

constexpr Param kSought = named_param({u"Sought", u"Искомое"});
constexpr Param kFrom = named_param({u"From", u"Начало"}, kUndefinedDefault);
constexpr Param kReplacement = named_param({u"Replacement", u"Замена"});
constexpr Param kPattern = named_param({u"Pattern", u"Шаблон"});

constexpr Param kFind[] = {kText, kSought, kFrom};
constexpr Param kPair[] = {kText, kSought};
constexpr Param kReplace[] = {kText, kSought, kReplacement};
constexpr Param kSplit[] = {kText, named_param({u"Separator", u"Разделитель"}),
                            named_param({u"SkipEmpty", u"БезПустых"}, ParamDefault::falseValue)};
constexpr Param kConcat[] = {named_param({u"Texts", u"Тексты"}),
                             named_param({u"Separator", u"Разделитель"}, kUndefinedDefault)};
constexpr Param kRight[] = {kText, named_param({u"Count", u"Количество"})};
constexpr Param kCharCode[] = {kText, named_param({u"Position", u"Номер"}, kUndefinedDefault)};
constexpr Param kCharacter[] = {named_param({u"Code", u"Код"})};
constexpr Param kFill[] = {kPattern,
                           named_param({u"Value1", u"Значение1"}, kUndefinedDefault),
                           named_param({u"Value2", u"Значение2"}, kUndefinedDefault),
                           named_param({u"Value3", u"Значение3"}, kUndefinedDefault),
                           named_param({u"Value4", u"Значение4"}, kUndefinedDefault),
                           named_param({u"Value5", u"Значение5"}, kUndefinedDefault),
                           named_param({u"Value6", u"Значение6"}, kUndefinedDefault),
                           named_param({u"Value7", u"Значение7"}, kUndefinedDefault),
                           named_param({u"Value8", u"Значение8"}, kUndefinedDefault),
                           named_param({u"Value9", u"Значение9"}, kUndefinedDefault)};
constexpr Param kRegex[] = {kText, kPattern};
constexpr Param kRegexFind[] = {kText, kPattern, kFrom};
constexpr Param kRegexReplace[] = {kText, kPattern, kReplacement};

std::span<const Method<TextFunctions>> TextFunctions::methods() noexcept {
    using F = TextFunctions;
    static constexpr Method<F> kMethods[] = {
        {{u"StrFind", u"СтрНайти"}, kFind, kFunction, &F::find, &kNumberType},
        {{u"StrOccurrenceCount", u"СтрЧислоВхождений"}, kPair, kFunction, &F::occurrences, &kNumberType},
        {{u"StrReplace", u"СтрЗаменить"}, kReplace, kFunction, &F::replace, &kStringType},
        {{u"StrStartsWith", u"СтрНачинаетсяС"}, kPair, kFunction, &F::startsWith, &kBooleanType},
        {{u"StrEndsWith", u"СтрЗаканчиваетсяНа"}, kPair, kFunction, &F::endsWith, &kBooleanType},
        {{u"StrSplit", u"СтрРазделить"}, kSplit, kFunction, &F::split, &kValueArrayType},
        {{u"StrConcat", u"СтрСоединить"}, kConcat, kFunction, &F::concat, &kStringType},
        {{u"StrTemplate", u"СтрШаблон"}, kFill, kFunction, &F::fill, &kStringType},
        {{u"Right", u"Прав"}, kRight, kFunction, &F::right, &kStringType},
        {{u"TrimL", u"СокрЛ"}, kOfText, kFunction, &F::trimLeft, &kStringType},
        {{u"TrimR", u"СокрП"}, kOfText, kFunction, &F::trimRight, &kStringType},
        {{u"CharCode", u"КодСимвола"}, kCharCode, kFunction, &F::charCode, &kNumberType},
        {{u"Char", u"Символ"}, kCharacter, kFunction, &F::character, &kStringType},
        {{u"RegexTest", u"РегПроверить"}, kRegex, kFunction, &F::regexTest, &kBooleanType},
        {{u"RegexFind", u"РегНайти"}, kRegexFind, kFunction, &F::regexFind},
        {{u"RegexFindAll", u"РегНайтиВсе"}, kRegex, kFunction, &F::regexFindAll, &kValueArrayType},
        {{u"RegexReplace", u"РегЗаменить"}, kRegexReplace, kFunction, &F::regexReplace, &kStringType},
        {{u"RegexSplit", u"РегРазделить"}, kRegex, kFunction, &F::regexSplit, &kValueArrayType},
    };
    return kMethods;
}

} // namespace

InterfacePtr<IContext_> create_text_functions() {
    return make_object<TextFunctions>();
}

} // namespace core::script
