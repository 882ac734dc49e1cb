// SPDX-License-Identifier: Apache-2.0
#include "host/language/interpreter.h"

#include "host/language/failure.h"
#include "host/language/run.h"

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
