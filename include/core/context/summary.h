// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/locale.h>
#include <core/values/ivalue.h>

/// What scripts can work with, each thing in one sentence for people. The sentences are texts of the module
/// that declares the type, under ids made of English names, so that a class declares nothing for them and
/// they cost nothing until somebody asks:
///
///     DOC_ValueTable { "A table with rows and named columns." }
///     DOC_ValueTable_Count { "Returns the number of rows." }
///     DOC_ValueTable_New { "Makes a table without columns." }
///     DOC_Functions_Round { "Returns a number rounded to so many digits behind the point." }
namespace core {

/// Returns what a type is, as a sentence in the language of `locale`, in English where that language has
/// none. Empty where the module of the type says nothing. Throws std::bad_alloc. Threads: any.
[[nodiscard]] CORE_API wstring type_summary(const IType& type, const Locale& locale);

/// Returns what a property, a method or an event of the objects of a type is, as type_summary() does.
/// `member` is its English name, in its own case; "New" stands for making an object.
[[nodiscard]] CORE_API wstring member_summary(const IType& type, wstring_view member, const Locale& locale);

/// Returns what a function without an object in front does, as type_summary() does, from the first module
/// that says something of it, the library before others. `function` is its English name, in its own case.
[[nodiscard]] CORE_API wstring function_summary(wstring_view function, const Locale& locale);

} // namespace core
