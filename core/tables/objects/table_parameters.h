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

inline constexpr Param kOfColumn[] = {named_param(kColumnName)};
inline constexpr Param kOfColumnAndValue[] = {named_param(kColumnName), kValueParam};
inline constexpr Param kOfItem[] = {named_param(kItemName)};
inline constexpr Param kOfRow[] = {named_param(kRowName)};

} // namespace core
