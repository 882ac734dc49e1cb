// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"

#include <core/context/context_def.h>
#include <core/runtime/module.h>
#include <core/values/ivalue.h>

#include <optional>
#include <string>
#include <vector>

/// What "corehost describe" says of a type: taken from the live definitions, nothing is known beforehand.
namespace host::describe {

/// A name in both languages, in UTF-8.
struct Names {
    std::string english;
    std::string russian;
};

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
};

struct Method {
    Names names;
    std::vector<Parameter> parameters;
    std::string parametersText; ///< all of them, as a person reads them
    bool isFunction = false;
    Kinds kinds; ///< of what a function returns
};

/// An event: what its sinks get.
struct Event {
    struct Argument {
        Names names; ///< empty where it has none
        Kinds kinds;
    };
    Names names;
    std::vector<Argument> arguments;
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

struct TypeReport {
    Names names;
    std::string presentation;
    std::string id;
    core::IType::Arguments arguments; ///< of its constructor
    bool isEnumeration = false;       ///< its properties are the values
    Members members;
};

struct ModuleReport {
    core::ModuleInfo info;
    std::vector<std::string> classes; ///< by name
};

/// The modules of the program: it has one process.
[[nodiscard]] std::vector<ModuleReport> module_reports();

/// `alias` is the language of default values and of texts for people.
[[nodiscard]] Members members_of(core::IContextDef& definition, int alias);
[[nodiscard]] TypeReport report_on(core::IType& type, int alias);

} // namespace host::describe
