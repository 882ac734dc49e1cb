// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/collections/parameters.h"

#include <core/tables/terms.h>

/// The parameters of the methods of tables, trees and lists, by name.
namespace core {

inline constexpr ParamDefault kUndefinedDefault = ParamDefault::undefined;

inline constexpr NamePair kArrayName = {u"Array", u"Массив"};
inline constexpr NamePair kColumnName = {u"Column", u"Колонка"};
inline constexpr NamePair kComparisonName = {u"Comparison", u"Сравнение"};
inline constexpr NamePair kDeepName = {u"IncludeSubordinates", u"ВключатьПодчиненные"};
inline constexpr NamePair kFilterName = {u"Filter", u"Отбор"};
inline constexpr NamePair kItemName = {u"Item", u"Элемент"};
inline constexpr NamePair kOffsetName = {u"Offset", u"Сдвиг"};
inline constexpr NamePair kRowName = {u"Row", u"Строка"};

inline constexpr Param kDeepParam = named_param(kDeepName, ParamDefault::falseValue);
inline constexpr Param kColumnsParam = named_param(kColumnCollectionTerm);
inline constexpr Param kAnyColumnsParam = named_param(kColumnCollectionTerm, kUndefinedDefault);
inline constexpr Param kComparisonParam = named_param(kComparisonName, kUndefinedDefault);

inline constexpr Param kOfAnyColumns[] = {kAnyColumnsParam};
inline constexpr Param kOfGroups[] = {named_param({u"GroupColumns", u"КолонкиГруппировки"}),
                                      named_param({u"TotalColumns", u"КолонкиИтогов"}, kUndefinedDefault)};
/// The cells of a new row. AddRows() takes rows of more.
inline constexpr Param kOfCells[] = {named_param({u"Value1", u"Значение1"}, kUndefinedDefault),
                                     named_param({u"Value2", u"Значение2"}, kUndefinedDefault),
                                     named_param({u"Value3", u"Значение3"}, kUndefinedDefault),
                                     named_param({u"Value4", u"Значение4"}, kUndefinedDefault),
                                     named_param({u"Value5", u"Значение5"}, kUndefinedDefault),
                                     named_param({u"Value6", u"Значение6"}, kUndefinedDefault),
                                     named_param({u"Value7", u"Значение7"}, kUndefinedDefault),
                                     named_param({u"Value8", u"Значение8"}, kUndefinedDefault),
                                     named_param({u"Value9", u"Значение9"}, kUndefinedDefault),
                                     named_param({u"Value10", u"Значение10"}, kUndefinedDefault),
                                     named_param({u"Value11", u"Значение11"}, kUndefinedDefault),
                                     named_param({u"Value12", u"Значение12"}, kUndefinedDefault),
                                     named_param({u"Value13", u"Значение13"}, kUndefinedDefault),
                                     named_param({u"Value14", u"Значение14"}, kUndefinedDefault),
                                     named_param({u"Value15", u"Значение15"}, kUndefinedDefault),
                                     named_param({u"Value16", u"Значение16"}, kUndefinedDefault)};
inline constexpr Param kOfColumn[] = {named_param(kColumnName)};
inline constexpr Param kOfColumnAndValue[] = {named_param(kColumnName), kValueParam};
inline constexpr Param kOfItem[] = {named_param(kItemName)};
inline constexpr Param kOfRow[] = {named_param(kRowName)};

} // namespace core
