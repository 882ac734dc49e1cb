// SPDX-License-Identifier: Apache-2.0
#include "host/language/failure.h"
#include "host/language/run.h"
#include "host/language/suggestions.h"

namespace core::script {
namespace {

void add_variables(NearestName& near, const Variables& names, const Cell* cells) {
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (*cells[i].at && !names.name(i).starts_with(u'#'))
            near.add(names.name(i));
    }
}

void add_procedures(NearestName& near, const Module& module) {
    for (const Procedure& procedure : module.program->procedures)
        near.add(procedure.name);
    for (const auto& [name, ref] : module.known->all())
        near.add(name);
}

} // namespace

bool Run::standsFor(std::size_t number, GenericValue& value) {
    if (procedure_ != nullptr && procedure_->bindings[number].kind == Binding::Kind::read) {
        if (const Slot& outer = *module_->cells[procedure_->bindings[number].slot].at) {
            value = *outer;
            return true;
        }
    }
    const wstring& name = names().name(number);
    if (const auto own = module_->program->procedureNames.find(name)) {
        value = procedure_value(*module_, module_->program->procedures[*own]);
        return true;
    }
    if (const ProcedureRef* const known = module_->known->find(name)) {
        value = procedure_value(*known->module, *known->procedure);
        return true;
    }
    const Globals::Place prop = owner_.globals_.findProp(name);
    if (prop.context != nullptr)
        prop.context->getPropVal(prop.number, value);
    return prop.context != nullptr;
}

Slot* Run::scriptVariable(wstring_view name) {
    if (isMain()) {
        const auto known = owner_.variables_.find(name);
        Slot* const variable = known && *known < owner_.values_.size() ? &owner_.values_[*known] : nullptr;
        return variable != nullptr && *variable ? variable : nullptr;
    }
    const auto known = module_->program->names.find(name);
    return known && *module_->cells[*known].at ? module_->cells[*known].at : nullptr;
}

void Run::unknownVariable(const wstring& name) {
    NearestName near(name);
    add_variables(near, names(), cells_);
    add_variables(near, module_->program->names, module_->cells.data());
    if (isMain()) {
        for (std::size_t i = 0; i < owner_.variables_.size(); ++i) {
            if (i < owner_.values_.size() && owner_.values_[i])
                near.add(owner_.variables_.name(i));
        }
    }
    add_procedures(near, *module_);
    for (const auto& context : owner_.globals_.contexts())
        add_properties(near, *context);
    throw_unknown("IDS_SCRIPT_UNKNOWN_VARIABLE", {name}, near);
}

void Run::unknownFunction(Span span, const wstring& name) {
    NearestName near(name);
    add_procedures(near, *module_);
    for (const auto& context : owner_.globals_.contexts())
        add_methods(near, *context);
    const char* const id = "IDS_SCRIPT_UNKNOWN_FUNCTION";
    throw_with_message(ScriptError(span, unknown_text(id, {name}, near)), id, {name});
}

} // namespace core::script
