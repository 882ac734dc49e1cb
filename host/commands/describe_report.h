// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"

#include <core/runtime/module.h>
#include <core/values/ivalue.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

/// What "corehost describe" says of types and functions: names, parameters and kinds are those of the live
/// definitions, the sentences those of the modules. Nothing is known beforehand.
namespace host::describe {

/// A name or another text in both languages, in UTF-8.
struct Names {
    std::string english;
    std::string russian;
};

[[nodiscard]] Names names_of(const core::IType& type);
/// Whether the text is one of the names, in any case.
[[nodiscard]] bool is_name(const Names& names, const std::string& text);
[[nodiscard]] const std::string& in_language(const Names& names, Language language);

struct Parameter {
    Names names; ///< empty where the parameter has none
    bool in = true;
    bool out = false;
    std::optional<std::string> byDefault; ///< as a script writes it; none when it cannot be left out
};

/// What a value may be, by the types' names; empty where that is not known.
using Kinds = std::vector<Names>;

struct Property {
    Names names;
    bool readable = true;
    bool writable = false;
    Kinds kinds;
    Names summary; ///< what it is, as a sentence; of a value of an enumeration what the user reads
};

struct Method {
    Names names;
    std::vector<Parameter> parameters;
    Names parametersText; ///< all of them, as a person reads them
    bool isFunction = false;
    Kinds kinds; ///< of what a function returns
    Names summary;
};

/// An event: what its sinks get.
struct Event {
    struct Argument {
        Names names; ///< empty where it has none
        Kinds kinds;
    };
    Names names;
    std::vector<Argument> arguments;
    Names summary;
};

/// The properties, methods and events of a context.
struct Members {
    bool known = false; ///< whether there is a definition without an object
    bool isCollection = false;
    Kinds elements;
    std::vector<Property> properties;
    std::vector<Method> methods;
    std::vector<Event> events;
};

/// A member that was found, borrowed.
using Member = std::variant<const Property*, const Method*, const Event*>;
/// The member with a name in either language, in any case; nothing where there is none.
[[nodiscard]] std::optional<Member> find_member(const Members& members, const std::string& name);

struct TypeReport {
    Names names;
    std::string presentation;
    std::string id;
    core::IType::Arguments arguments; ///< of its constructor
    bool isEnumeration = false;       ///< its properties are the values
    Names summary;
    Names constructorSummary;    ///< of New
    Names constructorParameters; ///< as in "(Path, [Encoding])"; empty where New takes none
    Members members;
};

struct ModuleReport {
    core::ModuleInfo info;
    std::vector<std::string> classes; ///< by name
};

/// The modules of the program: it has one process.
[[nodiscard]] std::vector<ModuleReport> module_reports();

/// `alias` is the language of default values.
[[nodiscard]] TypeReport report_on(core::IType& type, int alias);
/// What can be used without an object: functions, and properties that are not enumerations.
[[nodiscard]] Members global_members(int alias);

} // namespace host::describe
