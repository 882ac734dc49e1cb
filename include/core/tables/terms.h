// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/term.h>

/// The names by which scripts know tables, trees and lists, English and Russian. The names that all
/// collections share are in core/collections/terms.h.
namespace core {

// types

/// The type of a value table.
inline constexpr Term kValueTableTerm = {u"ValueTable", u"ТаблицаЗначений"};
/// The type of the columns of a table or a tree, all together.
inline constexpr Term kValueTableColumnCollectionTerm = {u"ValueTableColumnCollection",
                                                         u"КоллекцияКолонокТаблицыЗначений"};
/// The type of one column.
inline constexpr Term kValueTableColumnTerm = {u"ValueTableColumn", u"КолонкаТаблицыЗначений"};
/// The type of the indexes of a table, all together.
inline constexpr Term kValueTableIndexCollectionTerm = {u"CollectionIndexes", u"ИндексыКоллекции"};
/// The type of one index.
inline constexpr Term kValueTableIndexTerm = {u"CollectionIndex", u"ИндексКоллекции"};
/// The type of a row of a table.
inline constexpr Term kValueTableRowTerm = {u"ValueTableRow", u"СтрокаТаблицыЗначений"};
/// The type of a value tree.
inline constexpr Term kValueTreeTerm = {u"ValueTree", u"ДеревоЗначений"};
/// The type of the rows of a tree below one row, or of the topmost ones.
inline constexpr Term kValueTreeRowCollectionTerm = {u"ValueTreeRowCollection",
                                                     u"КоллекцияСтрокДереваЗначений"};
/// The type of a row of a tree.
inline constexpr Term kValueTreeRowTerm = {u"ValueTreeRow", u"СтрокаДереваЗначений"};
/// The type of a value list.
inline constexpr Term kValueListTerm = {u"ValueList", u"СписокЗначений"};
/// The type of an item of a value list.
inline constexpr Term kValueListItemTerm = {u"ValueListItem", u"ЭлементСпискаЗначений"};

// properties of tables, trees, columns and rows

/// The columns of a table or a tree.
inline constexpr Term kColumnCollectionTerm = {u"Columns", u"Колонки"};
/// The indexes of a table.
inline constexpr Term kIndexCollectionTerm = {u"Indexes", u"Индексы"};
/// The rows of a tree, or those below a row.
inline constexpr Term kRowCollectionTerm = {u"Rows", u"Строки"};
/// The name of a column.
inline constexpr Term kCodePropTerm = {u"Name", u"Имя"};
/// The type description of a column or a list.
inline constexpr Term kTypePropTerm = {u"ValueType", u"ТипЗначения"};
/// The text that a user reads above a column.
inline constexpr Term kTitlePropTerm = {u"Title", u"Заголовок"};
/// The width of a column in characters.
inline constexpr Term kWidthPropTerm = {u"Width", u"Ширина"};
/// The row of a tree that a row is below.
inline constexpr Term kParentPropTerm = {u"Parent", u"Родитель"};

/// What the last conversion of a table that went on could not keep.
inline constexpr Term kLossesTerm = {u"Losses", u"Потери"};
/// How many cells that were.
inline constexpr Term kLossCountTerm = {u"LossCount", u"КоличествоПотерь"};

// methods of tables, trees and rows

/// Gives a column another type and goes on where a cell does not fit.
inline constexpr Term kConvertMethodTerm = {u"Convert", u"Преобразовать"};

/// Gives the table or tree of a row.
inline constexpr Term kOwnerMethodTerm = {u"Owner", u"Владелец"};
/// Finds the first row with a value.
inline constexpr Term kFindMethodTerm = {u"Find", u"Найти"};
/// Finds all rows that meet a filter.
inline constexpr Term kFindRowsMethodTerm = {u"FindRows", u"НайтиСтроки"};
/// Adds up the numbers of a column.
inline constexpr Term kTotalMethodTerm = {u"Total", u"Итог"};
/// Sorts the rows by columns.
inline constexpr Term kSortMethodTerm = {u"Sort", u"Сортировать"};
/// Fills a column from an array.
inline constexpr Term kLoadColumnMethodTerm = {u"LoadColumn", u"ЗагрузитьКолонку"};
/// Gives the values of a column as an array.
inline constexpr Term kUnloadColumnMethodTerm = {u"UnloadColumn", u"ВыгрузитьКолонку"};
/// Copies rows and columns to a new table.
inline constexpr Term kCopyMethodTerm = {u"Copy", u"Скопировать"};
/// Copies columns alone to a new table.
inline constexpr Term kCopyColumnsMethodTerm = {u"CopyColumns", u"СкопироватьКолонки"};
/// Collapses rows by columns, with totals.
inline constexpr Term kGroupByMethodTerm = {u"GroupBy", u"Свернуть"};
/// Puts rows of two tables that match side by side.
inline constexpr Term kJoinMethodTerm = {u"Join", u"Соединить"};
/// Puts the rows of another table behind those of this one.
inline constexpr Term kUnionMethodTerm = {u"Union", u"Объединить"};
/// Finds the rows that another table does not have.
inline constexpr Term kExceptMethodTerm = {u"Except", u"Вычесть"};
/// Finds the rows that another table has, too.
inline constexpr Term kIntersectMethodTerm = {u"Intersect", u"Пересечь"};
/// Finds the different rows.
inline constexpr Term kDistinctMethodTerm = {u"Distinct", u"Различные"};
/// Makes a new table of groups of rows and their aggregates.
inline constexpr Term kGroupMethodTerm = {u"Group", u"Группировать"};
/// Makes a new table in which the values of a column are columns.
inline constexpr Term kPivotMethodTerm = {u"Pivot", u"Повернуть"};
/// Makes a new table in which columns are rows.
inline constexpr Term kUnpivotMethodTerm = {u"Unpivot", u"ПовернутьОбратно"};
/// Adds columns that are computed over neighbouring rows.
inline constexpr Term kAddWindowMethodTerm = {u"AddWindow", u"ДобавитьОкно"};
/// Adds a row with the given cells.
inline constexpr Term kAddRowMethodTerm = {u"AddRow", u"ДобавитьСтроку"};
/// Adds rows of another table or of an array.
inline constexpr Term kAddRowsMethodTerm = {u"AddRows", u"ДобавитьСтроки"};
/// Gives the rows as an array of structures.
inline constexpr Term kUnloadRowsMethodTerm = {u"UnloadRows", u"ВыгрузитьСтроки"};
/// Makes a tree of a table by the keys of the rows above.
inline constexpr Term kTreeByParentMethodTerm = {u"TreeByParent", u"ДеревоПоРодителю"};
/// Makes a tree of a table by paths.
inline constexpr Term kTreeByPathMethodTerm = {u"TreeByPath", u"ДеревоПоПути"};
/// Makes a tree of a table by levels.
inline constexpr Term kTreeByLevelMethodTerm = {u"TreeByLevel", u"ДеревоПоУровню"};
/// Makes a table of a tree with the keys of the rows above.
inline constexpr Term kTableByParentMethodTerm = {u"TableByParent", u"ТаблицаПоРодителю"};
/// Makes a table of a tree with paths.
inline constexpr Term kTableByPathMethodTerm = {u"TableByPath", u"ТаблицаПоПути"};
/// Makes a table of a tree with levels.
inline constexpr Term kTableByLevelMethodTerm = {u"TableByLevel", u"ТаблицаПоУровню"};
/// Puts one value into all rows.
inline constexpr Term kFillValuesMethodTerm = {u"FillValues", u"ЗаполнитьЗначения"};
/// Keeps the rows that pass a filter.
inline constexpr Term kFilterMethodTerm = {u"Filter", u"Отобрать"};
/// Adds a column that an expression computes.
inline constexpr Term kAddColumnMethodTerm = {u"AddColumn", u"ДобавитьКолонку"};
/// Lets the user choose a row.
inline constexpr Term kSelectRowMethodTerm = {u"ChooseRow", u"ВыбратьСтроку"};
/// Fills an object from a table.
inline constexpr Term kLoadMethodTerm = {u"Load", u"Загрузить"};
/// Gives the content of an object as a table.
inline constexpr Term kUnloadMethodTerm = {u"Unload", u"Выгрузить"};
/// Gives the columns of an object as a table.
inline constexpr Term kUnloadColumnsMethodTerm = {u"UnloadColumns", u"ВыгрузитьКолонки"};

// the direction in a sort's column list

/// Smallest values first.
inline constexpr Term kOrderingDirectionAscTerm = {u"Asc", u"Возр"};
/// Largest values first.
inline constexpr Term kOrderingDirectionDescTerm = {u"Desc", u"Убыв"};

// the enumeration of joins

/// The enumeration itself.
inline constexpr Term kJoinKindsTerm = {u"JoinKind", u"ВидСоединения"};
/// Its value for rows that match.
inline constexpr Term kJoinKindsInner = {u"Inner", u"Внутреннее"};
/// Its value for all rows of the first table.
inline constexpr Term kJoinKindsLeft = {u"Left", u"Левое"};
/// Its value for all rows of both tables.
inline constexpr Term kJoinKindsFull = {u"Full", u"Полное"};
/// Its value for rows of the first table that match.
inline constexpr Term kJoinKindsSemi = {u"Semi", u"Полу"};
/// Its value for rows of the first table that do not match.
inline constexpr Term kJoinKindsAnti = {u"Anti", u"Анти"};

// properties of list items

/// The value of an item.
inline constexpr Term kVLColumnTermValue = {u"Value", u"Значение"};
/// The text that a user reads for an item.
inline constexpr Term kVLColumnTermPresent = {u"Presentation", u"Представление"};
/// The check mark of an item.
inline constexpr Term kVLColumnTermCheck = {u"Check", u"Пометка"};
/// The picture of an item.
inline constexpr Term kVLColumnTermPicture = {u"Picture", u"Картинка"};

// methods of lists

/// Finds the first item with a value.
inline constexpr Term kValListTermFindValue = {u"FindByValue", u"НайтиПоЗначению"};
/// Sorts the items by their values.
inline constexpr Term kValListTermSort = {u"SortByValue", u"СортироватьПоЗначению"};
/// Sorts the items by their presentations.
inline constexpr Term kValListTermSortByPresent = {u"SortByPresentation", u"СортироватьПоПредставлению"};
/// Lets the user choose an item.
inline constexpr Term kValListTermChooseValue = {u"ChooseItem", u"ВыбратьЭлемент"};
/// Lets the user set the check marks.
inline constexpr Term kValListTermCheckValues = {u"CheckItems", u"ОтметитьЭлементы"};
/// Gives the values as an array.
inline constexpr Term kValListTermUnload = {u"UnloadValues", u"ВыгрузитьЗначения"};
/// Replaces the items by the values of an array.
inline constexpr Term kValListTermLoad = {u"LoadValues", u"ЗагрузитьЗначения"};
/// Copies the list.
inline constexpr Term kValListTermCopy = {u"Copy", u"Скопировать"};
/// Sets or clears all check marks.
inline constexpr Term kValListTermFillChecks = {u"FillChecks", u"ЗаполнитьПометки"};

// the enumeration of directions

/// The enumeration itself.
inline constexpr Term kSortTypesTerm = {u"SortDirection", u"НаправлениеСортировки"};
/// Its value for smallest values first.
inline constexpr Term kSortTypesAscending = {u"Asc", u"Возр"};
/// Its value for largest values first.
inline constexpr Term kSortTypesDescending = {u"Desc", u"Убыв"};

} // namespace core
