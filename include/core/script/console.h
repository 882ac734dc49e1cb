// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/script/engine.h>

#include <functional>
#include <optional>
#include <vector>

/// What a console needs beside the engine: entries over several lines, values that are shown, names that are
/// completed. A console has one engine, which holds what its entries make.
namespace core::script {

/// Returns the next line of an entry, without its end; nothing when no more lines come.
using MoreLines = std::function<std::optional<wstring>()>;
/// Is given the value of a statement that is an expression.
using Show = std::function<void(const Value&)>;

/// Reads an entry of a console, whose first line is `line`; `name` is what errors call it. In an entry an
/// expression is a statement, too, and "=" behind what cannot be assigned to compares. `more` is asked
/// wherever the text ends and something must follow, and not before, so that each line is read once. Throws
/// Error, and what `more` throws.
[[nodiscard]] CORE_SCRIPT_API Script compile_entry(wstring_view line, const Text& name,
                                                   const MoreLines& more);

/// Runs an entry as Engine::run() does, and hands the value of every statement that is an expression to
/// `show`, and that of Return; nothing for a procedure. What `show` throws passes through.
CORE_SCRIPT_API void run_entry(Engine& engine, const Script& entry, const Show& show);

/// Returns a value as a console shows it, on one line of bounded length: primitive ones as a script writes
/// them, an object by its type's name and what it holds, as in `Structure {Name: "apple", Price: 1.2}`; in
/// another object it is shown by its presentation, where it has one of its own, as in `Color (Red)`.
/// `alias` is the language of names: kEnglish or kRussian.
[[nodiscard]] CORE_SCRIPT_API wstring display(const Value& value, int alias);

/// Returns the parameters of a method as a console shows them, as in `Amount, out Rest, 3 = Undefined`: by
/// name where the definition names them (IContextDefParams), otherwise by number from 1, with the values of
/// those that may be left out. Empty for a number out of range. `alias` is the language of names.
[[nodiscard]] CORE_SCRIPT_API wstring display_parameters(IContextDef& definition, int method, int alias);

/// What may stand in place of the word before the cursor.
struct Completion {
    std::size_t typed = 0;      ///< how many units of the word are there
    std::vector<wstring> names; ///< in order; methods with their opening parenthesis
    wstring parameters;         ///< behind the parenthesis of a call, those of what is called
    wstring summary;            ///< there, too: what is called, in a sentence; empty where nothing is said

    /// Returns what all the names begin with, in the spelling of the first.
    [[nodiscard]] CORE_SCRIPT_API wstring common() const;
};

/// Completes the end of a script in a console: behind `New` the types that can be made, behind a variable and
/// a dot the object's members, elsewhere variables, keywords, functions and global properties. Names are
/// found by the beginning of either of their names, whatever the case; without a beginning there are those in
/// the language of `alias`. Nothing in a string, a comment or a number. Where the text ends with "(" behind a
/// function, or a method of a variable, its parameters are there, too, and what it does.
[[nodiscard]] CORE_SCRIPT_API Completion complete(const Engine& engine, wstring_view before, int alias);

/// Returns what scripts find without an object in front: the contexts whose methods are functions and whose
/// properties are variables, those that are searched first at the end.
[[nodiscard]] CORE_SCRIPT_API std::vector<InterfacePtr<IContext_>> globals(const Engine& engine);

} // namespace core::script
