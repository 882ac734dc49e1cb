// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/engine/offered_functions.h"
#include "host/engine/program_functions.h"
#include "host/language/interpreter.h"
#include "host/library/surroundings.h"

#include <core/runtime/process.h>
#include <core/script/engine.h>
#include <host/host_process.h>

#include <memory>
#include <optional>

namespace core::script {

/// What an engine consists of.
struct Engine::Impl {
    std::shared_ptr<host::HostProcess> own; // the process that engines brought up; null for another
    InterfacePtr<SCOM_Process> process;     // the one that the engine works in
    Surroundings surroundings;
    InterfacePtr<SCOM_InternalClass<OfferedFunctions>> functions;
    InterfacePtr<SCOM_InternalClass<ProgramFunctions>> program;
    Interpreter interpreter;

    /// While it lives, the calling thread works in the engine's process.
    class Working {
      public:
        explicit Working(const Impl& impl) {
            if (current_process() != impl.process.get())
                scope_.emplace(impl.process.get());
        }

      private:
        std::optional<ProcessScope> scope_; // nothing where the thread works in the process already
    };
};

/// Opens what the public classes hold to the functions of this library.
struct EngineAccess {
    using Working = Engine::Impl::Working;

    static auto& impl(const Engine& engine) noexcept { return *engine.impl_; }
    static const Program* program(const Script& script) noexcept { return script.program_.get(); }
    static Script script(std::shared_ptr<const Program> program) {
        Script made;
        made.program_ = std::move(program);
        return made;
    }
    /// Runs a script, and hands what it computes to `show`, if that is not null.
    static GenericValue run(Engine& engine, const Script& script, const Interpreter::Show* show);
};

} // namespace core::script
