// SPDX-License-Identifier: Apache-2.0
#include "host/language/procedure_table.h"

#include "host/language/interpreter.h"

#include <core/script/console.h>
#include <core/values/errors.h>

namespace core::script {

GenericValue procedure_value(Module& module, const Procedure& procedure) {
    const auto call = [module = module.shared_from_this(),
                       &procedure](std::span<const GenericValue> arguments) -> GenericValue {
        if (module->owner == nullptr)
            throw_error<ContextException>("IDS_SCRIPT_ENGINE_ENDED", {procedure.name});
        std::vector<GenericValue> values(arguments.begin(), arguments.end());
        return module->owner->call(module, procedure, values);
    };
    const auto callable = create_callable({.name = procedure.name,
                                           .leastArguments = static_cast<int>(procedure.needed()),
                                           .mostArguments = static_cast<int>(procedure.parameters.size()),
                                           .returns = procedure.returns,
                                           .target = &procedure,
                                           .call = call});
    return callable.query<IValue>();
}

wstring display_parameters(const Procedure& procedure, int alias) {
    wstring text;
    for (std::size_t i = 0; i < procedure.parameters.size(); ++i) {
        const Parameter& parameter = procedure.parameters[i];
        if (i > 0)
            text += u", ";
        if (!parameter.byValue && procedure.assigned[i])
            text += u"in out ";
        text += procedure.names.name(i);
        if (parameter.byDefault)
            text.append(u" = ").append(display(*parameter.byDefault, alias));
    }
    return text;
}

} // namespace core::script
