// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/expression_words.h"

#include <core/strings/compare.h>
#include <core/strings/names.h>
#include <core/tables/terms.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace core {
namespace {

struct Spelling {
    ExpressionWord word;
    NamePair names;
};

constexpr Spelling kWords[] = {
    {ExpressionWord::opAnd, {u"And", u"И"}},
    {ExpressionWord::opOr, {u"Or", u"Или"}},
    {ExpressionWord::opNot, {u"Not", u"Не"}},
    {ExpressionWord::isTrue, {u"True", u"Истина"}},
    {ExpressionWord::isFalse, {u"False", u"Ложь"}},
    {ExpressionWord::undefined, {u"Undefined", u"Неопределено"}},
    {ExpressionWord::null, {u"Null", u"Null"}},
    {ExpressionWord::in, {u"In", u"В"}},
    {ExpressionWord::between, {u"Between", u"Между"}},
    {ExpressionWord::like, {u"Like", u"Подобно"}},
    {ExpressionWord::escape, {u"Escape", u"СпецСимвол"}},
    {ExpressionWord::is, {u"Is", u"Есть"}},
    {ExpressionWord::as, {u"As", u"Как"}},
    {ExpressionWord::ascending, kOrderingDirectionAscTerm},
    {ExpressionWord::descending, kOrderingDirectionDescTerm},
};

constexpr std::array<wstring_view, 11> kOperators = {u"+",  u"-", u"*",  u"/", u"%", u"=",
                                                     u"<>", u"<", u"<=", u">", u">="};

} // namespace

ExpressionWord expression_word(wstring_view text) {
    const auto* const found = std::find_if(std::begin(kWords), std::end(kWords), [text](const Spelling& one) {
        return compare_nocase(text, wstring_view(one.names[kEnglish])) == 0 ||
               compare_nocase(text, wstring_view(one.names[kRussian])) == 0;
    });
    return found != std::end(kWords) ? found->word : ExpressionWord::none;
}

wstring_view word_text(ExpressionWord word, int alias) {
    const auto* const found = std::find_if(std::begin(kWords), std::end(kWords),
                                           [word](const Spelling& one) { return one.word == word; });
    return found != std::end(kWords) ? wstring_view(found->names[alias]) : wstring_view();
}

wstring_view operator_text(ExpressionOperator sign) noexcept {
    return kOperators[static_cast<std::size_t>(sign)];
}

} // namespace core
