// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/term.h>

/// The names by which scripts know tables, trees and lists; the names that all collections share stand in
/// core/collections/terms.h.
namespace core {

// types
inline constexpr Term kValueTableTerm = {u"ValueTable", u"ТаблицаЗначений"};
inline constexpr Term kValueTableColumnCollectionTerm = {u"ValueTableColumnCollection",
                                                         u"КоллекцияКолонокТаблицыЗначений"};
inline constexpr Term kValueTableColumnTerm = {u"ValueTableColumn", u"КолонкаТаблицыЗначений"};
inline constexpr Term kValueTableIndexCollectionTerm = {u"CollectionIndexes", u"ИндексыКоллекции"};
inline constexpr Term kValueTableIndexTerm = {u"CollectionIndex", u"ИндексКоллекции"};
inline constexpr Term kValueTableRowTerm = {u"ValueTableRow", u"СтрокаТаблицыЗначений"};
inline constexpr Term kValueTreeTerm = {u"ValueTree", u"ДеревоЗначений"};
inline constexpr Term kValueTreeRowCollectionTerm = {u"ValueTreeRowCollection",
                                                     u"КоллекцияСтрокДереваЗначений"};
inline constexpr Term kValueTreeRowTerm = {u"ValueTreeRow", u"СтрокаДереваЗначений"};
inline constexpr Term kValueListTerm = {u"ValueList", u"СписокЗначений"};
inline constexpr Term kValueListItemTerm = {u"ValueListItem", u"ЭлементСпискаЗначений"};

// properties of tables, trees, columns and rows
inline constexpr Term kColumnCollectionTerm = {u"Columns", u"Колонки"};
inline constexpr Term kIndexCollectionTerm = {u"Indexes", u"Индексы"};
inline constexpr Term kRowCollectionTerm = {u"Rows", u"Строки"};
inline constexpr Term kCodePropTerm = {u"Name", u"Имя"};
inline constexpr Term kTypePropTerm = {u"ValueType", u"ТипЗначения"};
inline constexpr Term kTitlePropTerm = {u"Title", u"Заголовок"};
inline constexpr Term kWidthPropTerm = {u"Width", u"Ширина"};
inline constexpr Term kParentPropTerm = {u"Parent", u"Родитель"};

// methods of tables, trees and rows
inline constexpr Term kOwnerMethodTerm = {u"Owner", u"Владелец"};
inline constexpr Term kFindMethodTerm = {u"Find", u"Найти"};
inline constexpr Term kFindRowsMethodTerm = {u"FindRows", u"НайтиСтроки"};
inline constexpr Term kTotalMethodTerm = {u"Total", u"Итог"};
inline constexpr Term kSortMethodTerm = {u"Sort", u"Сортировать"};
inline constexpr Term kLoadColumnMethodTerm = {u"LoadColumn", u"ЗагрузитьКолонку"};
inline constexpr Term kUnloadColumnMethodTerm = {u"UnloadColumn", u"ВыгрузитьКолонку"};
inline constexpr Term kCopyMethodTerm = {u"Copy", u"Скопировать"};
inline constexpr Term kCopyColumnsMethodTerm = {u"CopyColumns", u"СкопироватьКолонки"};
inline constexpr Term kGroupByMethodTerm = {u"GroupBy", u"Свернуть"};
inline constexpr Term kFillValuesMethodTerm = {u"FillValues", u"ЗаполнитьЗначения"};
inline constexpr Term kSelectRowMethodTerm = {u"ChooseRow", u"ВыбратьСтроку"};
inline constexpr Term kLoadMethodTerm = {u"Load", u"Загрузить"};
inline constexpr Term kUnloadMethodTerm = {u"Unload", u"Выгрузить"};
inline constexpr Term kUnloadColumnsMethodTerm = {u"UnloadColumns", u"ВыгрузитьКолонки"};

// the direction in a sort's column list
inline constexpr Term kOrderingDirectionAscTerm = {u"Asc", u"Возр"};
inline constexpr Term kOrderingDirectionDescTerm = {u"Desc", u"Убыв"};

// properties of list items
inline constexpr Term kVLColumnTermValue = {u"Value", u"Значение"};
inline constexpr Term kVLColumnTermPresent = {u"Presentation", u"Представление"};
inline constexpr Term kVLColumnTermCheck = {u"Check", u"Пометка"};
inline constexpr Term kVLColumnTermPicture = {u"Picture", u"Картинка"};

// methods of lists
inline constexpr Term kValListTermFindValue = {u"FindByValue", u"НайтиПоЗначению"};
inline constexpr Term kValListTermSort = {u"SortByValue", u"СортироватьПоЗначению"};
inline constexpr Term kValListTermSortByPresent = {u"SortByPresentation", u"СортироватьПоПредставлению"};
inline constexpr Term kValListTermChooseValue = {u"ChooseItem", u"ВыбратьЭлемент"};
inline constexpr Term kValListTermCheckValues = {u"CheckItems", u"ОтметитьЭлементы"};
inline constexpr Term kValListTermUnload = {u"UnloadValues", u"ВыгрузитьЗначения"};
inline constexpr Term kValListTermLoad = {u"LoadValues", u"ЗагрузитьЗначения"};
inline constexpr Term kValListTermCopy = {u"Copy", u"Скопировать"};
inline constexpr Term kValListTermFillChecks = {u"FillChecks", u"ЗаполнитьПометки"};

// the enumeration of directions
inline constexpr Term kSortTypesTerm = {u"SortDirection", u"НаправлениеСортировки"};
inline constexpr Term kSortTypesAscending = {u"Asc", u"Возр"};
inline constexpr Term kSortTypesDescending = {u"Desc", u"Убыв"};

} // namespace core
