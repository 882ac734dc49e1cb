// SPDX-License-Identifier: Apache-2.0
#include "host/language/interpreter.h"

#include "host/language/failure.h"
#include "host/language/run.h"

#include <core/context/errors.h>
#include <core/strings/integer_text.h>

#include <utility>

namespace core::script {

Interpreter::~Interpreter() {
    handlers_.clear();
    imports_.clear();
    last_.reset();
    procedures_ = {};
    // Procedures as values keep their modules. Variables of imported files may hold them in a circle.
    while (!modules_.empty()) {
        Module& module = **modules_.begin();
        modules_.erase(modules_.begin());
        module.owner = nullptr;
        module.known = nullptr;
        const auto imports = std::move(module.imports);
        const auto cells = std::move(module.cells); // the last hold on the module may go with them
    }
}

GenericValue Interpreter::run(const std::shared_ptr<const Program>& program, const Show* show) {
    const auto module = moduleOf(program);
    last_ = module;
    exitCode_.reset();
    try {
        return runModule(module, show);
    } catch (const ScriptExit& exit) {
        exitCode_ = exit.code;
        return GenericValue(exit.code);
    }
}

GenericValue Interpreter::runModule(const std::shared_ptr<Module>& module, const Show* show) {
    if (!watch_.running())
        imports_.beginRun();
    Run run(*this, *module, show);
    if (!module->program->imports.empty())
        imports_.resolve(*this, *module);
    if (module->known == &procedures_) {
        for (const Procedure& procedure : module->program->procedures)
            procedures_.add({module, &procedure});
    }
    return run.topLevel();
}

GenericValue Interpreter::call(const std::shared_ptr<Module>& module, const Procedure& procedure,
                               std::span<GenericValue> arguments) {
    const bool inside = watch_.running();
    try {
        return Run(*this, *module, nullptr).call(procedure, arguments);
    } catch (ScriptError& failure) {
        failure.locate(*module->program->source);
        if (inside)
            throw;
        throw failure.located(*module->program->source);
    } catch (const ScriptExit& exit) {
        if (inside)
            throw;
        exitCode_ = exit.code;
        return {};
    }
}

GenericValue Interpreter::call(wstring_view name, std::span<GenericValue> arguments) {
    const ProcedureRef* const known = procedures_.find(name);
    if (known == nullptr) {
        NearestName near(name);
        for (const auto& [other, ref] : procedures_.all())
            near.add(other);
        throw_unknown<Error>("IDS_SCRIPT_UNKNOWN_FUNCTION", {wstring(name)}, near);
    }
    const ProcedureRef called = *known; // it may be declared again meanwhile
    const std::vector<Parameter>& parameters = called.procedure->parameters;
    if (arguments.size() > parameters.size())
        throw_error<Error>(messages::kTooManyArguments,
                           {called.procedure->name, string_intto(parameters.size())});
    for (std::size_t i = arguments.size(); i < parameters.size(); ++i) {
        const wstring& parameter = called.procedure->names.name(i);
        if (!parameters[i].byDefault)
            throw_with_message(
                Error(message_text("IDS_SCRIPT_MISSING_ARGUMENT", {called.procedure->name, parameter})),
                messages::kMissingArgument, {called.procedure->name, string_intto(i + 1)});
    }
    exitCode_.reset();
    try {
        return Run(*this, *called.module, nullptr).call(*called.procedure, arguments);
    } catch (const ScriptError& failure) {
        throw failure.located(*called.module->program->source);
    } catch (const ScriptExit& exit) {
        exitCode_ = exit.code;
        return GenericValue(exit.code);
    }
}

Slot Interpreter::value(wstring_view name) const {
    const auto slot = variables_.find(name);
    return slot && *slot < values_.size() ? values_[*slot] : std::nullopt;
}

void Interpreter::setValue(wstring_view name, const GenericValue& value) {
    const std::size_t slot = variables_.slot(name);
    if (slot >= values_.size())
        values_.resize(slot + 1);
    values_[slot] = value;
}

void Interpreter::removeValue(wstring_view name) {
    const auto slot = variables_.find(name);
    if (slot && *slot < values_.size())
        values_[*slot].reset();
}

std::shared_ptr<Module> Interpreter::track(std::unique_ptr<Module> module) {
    module->owner = this;
    modules_.insert(module.get());
    return {module.release(), [](Module* ended) {
                if (ended->owner != nullptr)
                    ended->owner->modules_.erase(ended);
                delete ended;
            }};
}

std::shared_ptr<Module> Interpreter::makeModule(std::shared_ptr<const Program> program) {
    auto module = std::make_unique<Module>();
    module->cells.resize(program->names.size());
    module->sites.resize(program->calls);
    for (Cell& cell : module->cells)
        cell.at = &cell.value;
    module->imports = std::make_unique<ProcedureTable>();
    module->known = module->imports.get();
    module->program = std::move(program);
    return track(std::move(module));
}

/// A script of the program's, whose variables are those of the engine.
std::shared_ptr<Module> Interpreter::moduleOf(const std::shared_ptr<const Program>& program) {
    if (last_ != nullptr && last_->program == program)
        return last_;
    auto module = std::make_unique<Module>();
    module->cells.resize(program->names.size());
    module->sites.resize(program->calls);
    for (std::size_t i = 0; i < module->cells.size(); ++i) {
        const std::size_t slot = variables_.slot(program->names.name(i));
        if (slot >= values_.size())
            values_.resize(slot + 1);
        module->cells[i].at = &values_[slot];
    }
    module->known = &procedures_;
    module->program = program;
    return track(std::move(module));
}

} // namespace core::script
