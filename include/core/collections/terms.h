// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/term.h>

/// The names that collections have in common. term_string() gives the name for one language.
namespace core {

/// Names the method that returns how many elements there are.
inline constexpr Term kCollectTermCount = {u"Count", u"Количество"};
/// Names the method that returns the index of an element.
inline constexpr Term kCollectTermIndexOf = {u"IndexOf", u"Индекс"};
/// Names the method that returns the index of the last element.
inline constexpr Term kCollectTermUBound = {u"UBound", u"ВГраница"};
/// Names the method that adds an element at the end.
inline constexpr Term kCollectTermAdd = {u"Add", u"Добавить"};
/// Names the method that inserts an element.
inline constexpr Term kCollectTermInsert = {u"Insert", u"Вставить"};
/// Names the method that removes an element.
inline constexpr Term kCollectTermRemove = {u"Delete", u"Удалить"};
/// Names the method that removes all elements.
inline constexpr Term kCollectTermClear = {u"Clear", u"Очистить"};
/// Names the method that moves an element by an offset.
inline constexpr Term kCollectTermMove = {u"Move", u"Сдвинуть"};
/// Names the method that returns the element of an index or a key.
inline constexpr Term kCollectTermGet = {u"Get", u"Получить"};
/// Names the method that replaces an element.
inline constexpr Term kCollectTermSet = {u"Set", u"Установить"};
/// Names the method that looks for a value.
inline constexpr Term kCollectTermFind = {u"Find", u"Найти"};
/// Names the method that tells whether an element is there.
inline constexpr Term kCollectTermContains = {u"Contains", u"Содержит"};
/// Names the method that tells whether a key is there, and returns its value.
inline constexpr Term kStructureTermProperty = {u"Property", u"Свойство"};
/// Names the property of a pair that holds the key.
inline constexpr Term kKeyTerm = {u"Key", u"Ключ"};
/// Names the property of a pair that holds the value.
inline constexpr Term kValueTerm = {u"Value", u"Значение"};
/// Names the type of the array.
inline constexpr Term kValueArrayTypeString = {u"Array", u"Массив"};
/// Names the type of the fixed array.
inline constexpr Term kFixedValueArrayTypeString = {u"FixedArray", u"ФиксированныйМассив"};
/// Names the type of the map.
inline constexpr Term kValueMapTypeString = {u"Map", u"Соответствие"};
/// Names the type of the structure.
inline constexpr Term kValueStructureTypeString = {u"Structure", u"Структура"};
/// Names the type of the pair.
inline constexpr Term kValuePairTypeString = {u"KeyAndValue", u"КлючИЗначение"};

} // namespace core
