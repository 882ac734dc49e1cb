// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/ast.h"
#include "host/language/frames.h"
#include "host/language/globals.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace core::script {

class Interpreter;
class ProcedureTable;
struct ProcedureRef;

/// What a call by name has led to, as long as the names are the same ones.
struct CallSite {
    std::uint64_t known = 0;   ///< the version of Module::known; 0 before the first call
    std::uint64_t globals = 0; ///< the version of the globals
    const ProcedureRef* procedure = nullptr;
    Globals::Place method;
};

/// A script in an engine: what it was compiled to, its variables, and the procedures of others that it may
/// call. The values of its procedures hold it, and outlive the engine at most as something that can no longer
/// be called.
struct Module : std::enable_shared_from_this<Module> {
    Interpreter* owner = nullptr; ///< null when the engine has ended
    std::shared_ptr<const Program> program;
    /// By slot of Program::names: variables of the engine, or of an imported file its own.
    std::vector<Cell> cells;
    std::vector<CallSite> sites;             ///< by Call::site
    ProcedureTable* known = nullptr;         ///< those of the engine, or `imports`
    std::unique_ptr<ProcedureTable> imports; ///< of an imported file
};

} // namespace core::script
