// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/term.h>

/// The names that collections have in common. term_string() gives the name for one language.
namespace core {

// methods
inline constexpr Term kCollectTermCount = {u"Count", u"Количество"};
inline constexpr Term kCollectTermIndexOf = {u"IndexOf", u"Индекс"};
inline constexpr Term kCollectTermUBound = {u"UBound", u"ВГраница"};
inline constexpr Term kCollectTermAdd = {u"Add", u"Добавить"};
inline constexpr Term kCollectTermInsert = {u"Insert", u"Вставить"};
inline constexpr Term kCollectTermRemove = {u"Delete", u"Удалить"};
inline constexpr Term kCollectTermClear = {u"Clear", u"Очистить"};
inline constexpr Term kCollectTermMove = {u"Move", u"Сдвинуть"};
inline constexpr Term kCollectTermGet = {u"Get", u"Получить"};
inline constexpr Term kCollectTermSet = {u"Set", u"Установить"};
inline constexpr Term kCollectTermFind = {u"Find", u"Найти"};
inline constexpr Term kCollectTermContains = {u"Contains", u"Содержит"};
inline constexpr Term kStructureTermProperty = {u"Property", u"Свойство"};

// properties
inline constexpr Term kKeyTerm = {u"Key", u"Ключ"};
inline constexpr Term kValueTerm = {u"Value", u"Значение"};

// types
inline constexpr Term kValueArrayTypeString = {u"Array", u"Массив"};
inline constexpr Term kFixedValueArrayTypeString = {u"FixedArray", u"ФиксированныйМассив"};
inline constexpr Term kValueMapTypeString = {u"Map", u"Соответствие"};
inline constexpr Term kValueStructureTypeString = {u"Structure", u"Структура"};
inline constexpr Term kValuePairTypeString = {u"KeyAndValue", u"КлючИЗначение"};

} // namespace core
