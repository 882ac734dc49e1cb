// SPDX-License-Identifier: Apache-2.0
#include "host/engine/engine_impl.h"
#include "host/language/completion.h"
#include "host/language/parser.h"
#include "host/language/script_error.h"

#include <core/script/console.h>

namespace core::script {

Script compile_entry(wstring_view line, const Text& name, const MoreLines& more) {
    const auto source = std::make_shared<Source>(wstring(name.view()), wstring());
    try {
        source->append(line);
        const auto grow = [&more](Source& entry) {
            if (const auto next = more())
                entry.append(*next);
        };
        return EngineAccess::script(std::make_shared<const Program>(parse_entry(source, grow)));
    } catch (const ScriptError& error) {
        throw error.located(*source);
    }
}

void run_entry(Engine& engine, const Script& entry, const Show& show) {
    static_cast<void>(EngineAccess::run(engine, entry, &show));
}

Completion complete(const Engine& engine, wstring_view before, int alias) {
    const auto& impl = EngineAccess::impl(engine);
    const EngineAccess::Working working(impl);
    return complete_names(impl.interpreter, before, alias);
}

std::vector<InterfacePtr<IContext_>> globals(const Engine& engine) {
    return EngineAccess::impl(engine).interpreter.globals().contexts();
}

} // namespace core::script
