// SPDX-License-Identifier: Apache-2.0
#include "host/engine/engine_impl.h"
#include "host/language/parser.h"
#include "host/language/script_error.h"
#include "host/language/token.h"
#include "host/library/collection_functions.h"
#include "host/library/functions.h"
#include "host/library/number_functions.h"
#include "host/library/table_functions.h"
#include "host/library/text_functions.h"

#include <core/containers/container_functions.h>
#include <core/containers/file_functions.h>
#include <core/context/events/event_functions.h>
#include <core/objects/core_general_context.h>
#include <core/objects/date_functions.h>
#include <core/objects/enumeration.h>
#include <core/objects/format_functions.h>
#include <core/objects/locale_functions.h>
#include <core/presentation/presentation_values.h>
#include <core/profiles/settings_functions.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>
#include <core/strings/names.h>
#include <core/strings/trim.h>
#include <core/values/errors.h>

#include <algorithm>
#include <iostream>
#include <mutex>
#include <new>
#include <optional>
#include <utility>
#include <vector>

namespace core::script {
namespace {

/// The process that engines have brought up and still use, where it is that of the calling thread; a new one
/// where the thread has none. Null for a process of the program.
std::shared_ptr<host::HostProcess> process_of_engines(const Settings& settings) {
    struct Known {
        SCOM_Process* process;
        std::weak_ptr<host::HostProcess> owner;
    };
    static std::mutex lock;
    static auto& known = *new std::vector<Known>; // engines may outlive statics
    const std::lock_guard guard(lock);
    std::erase_if(known, [](const Known& one) { return one.owner.expired(); });
    SCOM_Process* const current = current_process();
    if (current == nullptr) {
        auto made = std::make_shared<host::HostProcess>(settings);
        known.push_back({made->get(), made});
        return made;
    }
    // Others are not held even for a moment: that hold could be the last one, and a process that ends may
    // need the lock.
    const auto own = std::ranges::find(known, current, &Known::process);
    return own != known.end() ? own->owner.lock() : nullptr;
}

/// The name without white space around it. Throws ContextException when scripts cannot write it.
wstring_view checked_name(wstring_view name) {
    const wstring_view trimmed = trim_all(name);
    if (!is_valid_name(trimmed) || keyword(trimmed) != TokenKind::name)
        throw_error<ContextException>(messages::kScriptBadName, {wstring(name)});
    return trimmed;
}

} // namespace

wstring_view Script::name() const noexcept {
    return program_ ? program_->source->name() : wstring_view();
}

Script compile(const Text& text, const Text& name) {
    const auto source = std::make_shared<const Source>(wstring(name.view()), wstring(text.view()));
    try {
        return EngineAccess::script(std::make_shared<const Program>(parse(source)));
    } catch (const ScriptError& error) {
        throw error.located(*source);
    }
}

Engine::Engine(const Settings& settings) : impl_(std::make_unique<Impl>()) {
    impl_->own = process_of_engines(settings);
    impl_->process = InterfacePtr<SCOM_Process>(current_process());
    impl_->surroundings = {print_to(std::cout), &open_file, &std::cout,
                           [&watch = impl_->interpreter.watch()] { return watch.isInterrupted(); }};
    impl_->functions = make_object<OfferedFunctions>();
    impl_->program = make_object<ProgramFunctions>();
    impl_->interpreter.imports().setReader([&surroundings = impl_->surroundings](const wstring& file) {
        return read_script(surroundings, file);
    });
    Globals& globals = impl_->interpreter.globals();
    if (auto* const enumerations = get_service<IEnumerations>())
        globals.add(InterfacePtr<IContext_>(enumerations));
    globals.add(create_core_general_context());
    globals.add(create_event_functions());
    globals.add(create_date_functions());
    globals.add(create_format_functions());
    globals.add(create_locale_functions());
    globals.add(create_container_functions());
    globals.add(create_file_functions());
    globals.add(create_presentation_functions());
    globals.add(create_settings_functions());
    globals.add(create_table_functions(impl_->surroundings));
    globals.add(create_script_functions(impl_->surroundings));
    globals.add(create_text_functions());
    globals.add(create_number_functions());
    globals.add(create_collection_functions());
    globals.add(impl_->program);
    globals.add(impl_->functions);
}

Engine::~Engine() {
    std::shared_ptr<host::HostProcess> own = std::move(impl_->own);
    {
        const InterfacePtr<SCOM_Process> process = impl_->process; // longer than what works in it
        std::optional<Impl::Working> working;
        try {
            working.emplace(*impl_);
        } catch (const std::bad_alloc&) { // what goes now does not need the process, as a rule
        }
        impl_.reset();
    }
    own.reset();
}

Value Engine::run(const Script& script) {
    return EngineAccess::run(*this, script, nullptr);
}

Value Engine::run(const Text& text, const Text& name) {
    const Impl::Working working(*impl_); // messages are in its language
    return run(compile(text, name));
}

GenericValue EngineAccess::run(Engine& engine, const Script& script, const Interpreter::Show* show) {
    const std::shared_ptr<const Program> program = script.program_; // the script may be assigned to meanwhile
    if (!program)
        return {};
    const Engine::Impl::Working working(*engine.impl_);
    try {
        return engine.impl_->interpreter.run(program, show);
    } catch (const ScriptError& error) {
        throw error.located(*program->source);
    }
}

Value Engine::callWith(const Text& name, std::span<GenericValue> arguments) {
    const Impl::Working working(*impl_);
    return impl_->interpreter.call(trim_all(name.view()), arguments);
}

std::optional<int> Engine::exitCode() const noexcept {
    return impl_->interpreter.exitCode();
}

void Engine::arguments(std::span<const wstring> arguments) {
    const Impl::Working working(*impl_);
    impl_->program->setArguments(arguments);
}

void Engine::interrupt() noexcept {
    impl_->interpreter.watch().interrupt();
}

void Engine::limits(const Limits& limits) {
    Limits set = limits;
    if (set.depth <= 0)
        set.depth = Limits::kDepth;
    impl_->interpreter.watch().setLimits(set);
}

const Limits& Engine::limits() const noexcept {
    return impl_->interpreter.watch().limits();
}

void Engine::setValue(const Text& name, const GenericValue& value) {
    const Impl::Working working(*impl_); // what the variable held may need it
    impl_->interpreter.setValue(checked_name(name.view()), value);
}

Value Engine::get(const Text& name) const {
    return impl_->interpreter.value(trim_all(name.view())).value_or(GenericValue());
}

bool Engine::has(const Text& name) const {
    return impl_->interpreter.value(trim_all(name.view())).has_value();
}

void Engine::remove(const Text& name) {
    const Impl::Working working(*impl_);
    impl_->interpreter.removeValue(trim_all(name.view()));
}

void Engine::addFunction(const Text& english, const Text& russian, NativeFunction function) {
    const Impl::Working working(*impl_);
    impl_->functions->add(checked_name(english.view()), checked_name(russian.view()), std::move(function));
    impl_->interpreter.globals().changed();
}

void Engine::offer(IContext_* context) {
    if (context != nullptr)
        impl_->interpreter.globals().addBelowLast(InterfacePtr<IContext_>(context));
}

void Engine::output(std::ostream& out) {
    output(print_to(out), out);
}

void Engine::output(Printer print) {
    impl_->surroundings.print = std::move(print);
}

void Engine::output(Printer print, std::ostream& out) {
    impl_->surroundings.print = std::move(print);
    impl_->surroundings.out = &out;
}

void Engine::input(Opener open) {
    impl_->surroundings.open = std::move(open);
}

} // namespace core::script
