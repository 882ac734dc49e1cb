// SPDX-License-Identifier: Apache-2.0
#include "host/language/token.h"

#include <core/strings/names.h>
#include <core/strings/term.h>

#include <algorithm>
#include <iterator>
#include <unordered_map>

namespace core::script {
namespace {

struct Keyword {
    TokenKind kind;
    wstring_view english;
    wstring_view russian;
};

constexpr Keyword kKeywords[] = {
    {TokenKind::keyIf, u"If", u"Если"},
    {TokenKind::keyThen, u"Then", u"Тогда"},
    {TokenKind::keyElsIf, u"ElsIf", u"ИначеЕсли"},
    {TokenKind::keyElse, u"Else", u"Иначе"},
    {TokenKind::keyEndIf, u"EndIf", u"КонецЕсли"},
    {TokenKind::keyFor, u"For", u"Для"},
    {TokenKind::keyEach, u"Each", u"Каждого"},
    {TokenKind::keyIn, u"In", u"Из"},
    {TokenKind::keyTo, u"To", u"По"},
    {TokenKind::keyWhile, u"While", u"Пока"},
    {TokenKind::keyDo, u"Do", u"Цикл"},
    {TokenKind::keyEndDo, u"EndDo", u"КонецЦикла"},
    {TokenKind::keyBreak, u"Break", u"Прервать"},
    {TokenKind::keyContinue, u"Continue", u"Продолжить"},
    {TokenKind::keyReturn, u"Return", u"Возврат"},
    {TokenKind::keyAnd, u"And", u"И"},
    {TokenKind::keyOr, u"Or", u"Или"},
    {TokenKind::keyNot, u"Not", u"Не"},
    {TokenKind::keyNew, u"New", u"Новый"},
    {TokenKind::keyTrue, u"True", u"Истина"},
    {TokenKind::keyFalse, u"False", u"Ложь"},
    {TokenKind::keyUndefined, u"Undefined", u"Неопределено"},
    {TokenKind::keyNull, u"Null", u"Null"},
    {TokenKind::wordProcedure, u"Procedure", u"Процедура"},
    {TokenKind::wordEndProcedure, u"EndProcedure", u"КонецПроцедуры"},
    {TokenKind::wordFunction, u"Function", u"Функция"},
    {TokenKind::wordEndFunction, u"EndFunction", u"КонецФункции"},
    {TokenKind::wordVal, u"Val", u"Знач"},
    {TokenKind::wordExport, u"Export", u"Экспорт"},
    {TokenKind::wordVar, u"Var", u"Перем"},
    {TokenKind::wordTry, u"Try", u"Попытка"},
    {TokenKind::wordExcept, u"Except", u"Исключение"},
    {TokenKind::wordEndTry, u"EndTry", u"КонецПопытки"},
    {TokenKind::wordRaise, u"Raise", u"ВызватьИсключение"},
    {TokenKind::wordImport, u"Import", u"Импорт"},
    {TokenKind::wordAddHandler, u"AddHandler", u"ДобавитьОбработчик"},
    {TokenKind::wordRemoveHandler, u"RemoveHandler", u"УдалитьОбработчик"},
};

struct Sign {
    TokenKind kind;
    wstring_view text;
};

constexpr Sign kSigns[] = {
    {TokenKind::open, u"("},         {TokenKind::close, u")"},     {TokenKind::openBracket, u"["},
    {TokenKind::closeBracket, u"]"}, {TokenKind::comma, u","},     {TokenKind::dot, u"."},
    {TokenKind::semicolon, u";"},    {TokenKind::plus, u"+"},      {TokenKind::minus, u"-"},
    {TokenKind::times, u"*"},        {TokenKind::divide, u"/"},    {TokenKind::modulo, u"%"},
    {TokenKind::equal, u"="},        {TokenKind::notEqual, u"<>"}, {TokenKind::less, u"<"},
    {TokenKind::lessEqual, u"<="},   {TokenKind::greater, u">"},   {TokenKind::greaterEqual, u">="},
};

using KeywordTable = std::unordered_map<wstring_view, TokenKind, NocaseHash, NocaseEqual>;

KeywordTable make_keyword_table() {
    KeywordTable table;
    for (const Keyword& keyword : kKeywords) {
        table.emplace(keyword.english, keyword.kind);
        table.emplace(keyword.russian, keyword.kind);
    }
    return table;
}

/// The keyword of either kind that a word is, or `name`.
TokenKind find_keyword(wstring_view word) {
    static const KeywordTable table = make_keyword_table();
    const auto found = table.find(word);
    return found != table.end() ? found->second : TokenKind::name;
}

} // namespace

TokenKind keyword(wstring_view word) {
    const TokenKind kind = find_keyword(word);
    return is_keyword(kind) ? kind : TokenKind::name;
}

TokenKind soft_keyword(wstring_view word) {
    const TokenKind kind = find_keyword(word);
    return is_keyword(kind) ? TokenKind::name : kind;
}

wstring_view keyword_name(TokenKind kind, int alias) {
    const auto* const keyword = std::find_if(std::begin(kKeywords), std::end(kKeywords),
                                             [kind](const Keyword& k) { return k.kind == kind; });
    if (keyword == std::end(kKeywords))
        return {};
    return alias == kRussian ? keyword->russian : keyword->english;
}

wstring spelling(TokenKind kind) {
    if (kind >= TokenKind::keyIf) {
        const wstring_view english = keyword_name(kind, kEnglish);
        const wstring_view russian = keyword_name(kind, kRussian);
        return english == russian ? wstring(english) : wstring(english).append(u"/").append(russian);
    }
    const auto* const sign =
        std::find_if(std::begin(kSigns), std::end(kSigns), [kind](const Sign& s) { return s.kind == kind; });
    return sign != std::end(kSigns) ? wstring(sign->text) : wstring();
}

} // namespace core::script
