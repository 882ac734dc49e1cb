// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/errors.h>
#include <core/runtime/live_counter.h>
#include <core/runtime/utf8.h>
#include <host/host_process.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>

namespace host {

using namespace core;

namespace {

/// Ends a use unless it is kept.
class UseGuard {
  public:
    explicit UseGuard(LoadedModule::Use use) noexcept : use_(std::move(use)) {}
    UseGuard(const UseGuard&) = delete;
    UseGuard& operator=(const UseGuard&) = delete;
    ~UseGuard() {
        if (use_)
            LoadedModule::unload(std::move(use_));
    }
    [[nodiscard]] const SCOM_Module& module() const noexcept { return use_->module(); }
    [[nodiscard]] LoadedModule::Use keep() noexcept { return std::move(use_); }

  private:
    LoadedModule::Use use_;
};

/// As in "Counter 2, Colours 1".
wstring text_of(const std::vector<LiveClass>& classes) {
    std::string text;
    for (const LiveClass& living : classes)
        text.append(text.empty() ? "" : ", ").append(living.name + ' ' + std::to_string(living.count));
    return from_utf8(text);
}

} // namespace

/// Registers the classes of a module, all or none. The module passes over a factory that could not be made;
/// ours fail for lack of memory alone, and a process without some of its classes would be worse than none.
void HostProcess::take(const SCOM_Module& module) {
    module.registerAll(object_.get());
    for (const ClassRecord& record : module.classTable()) {
        if (record.getFactory == &create_class_factory && !object_->hasClass(*record.clsid)) {
            module.revokeAll(object_.get());
            throw_error<ProcessInitException>(messages::kProcessInit);
        }
    }
}

const SCOM_Module& HostProcess::loadModule(const std::filesystem::path& file) {
    UseGuard use(LoadedModule::load(file));
    const ModuleInfo& info = use.module().info();
    for (const SCOM_Module* const other : modules()) {
        if (other->info().name == info.name)
            throw_error<ModuleException>(messages::kModuleTwice,
                                         {from_utf8(info.name), from_utf8(other->info().file)});
    }
    loaded_.reserve(loaded_.size() + 1);
    take(use.module());
    loaded_.push_back(use.keep());
    return loaded_.back()->module();
}

void HostProcess::unloadModule(std::string_view name) {
    const auto place = std::ranges::find(
        loaded_, name, [](const LoadedModule::Use& use) { return use->module().info().name; });
    if (place == loaded_.end())
        throw_error<ModuleException>(messages::kModuleNotLoaded, {from_utf8(std::string(name))});
    const SCOM_Module& module = (*place)->module();
    // A refusal must leave everything registered, also when memory is short: nothing is taken back before.
    object_->suspend(module); // what it made for itself goes with its services
    try {
        settle(name);
        if (LoadedModule::isLast(*place)) {
            if (const auto living = (*place)->living(); !living.empty())
                throw_error<ModuleException>(messages::kModuleInUse,
                                             {from_utf8(std::string(name)), text_of(living)});
        }
    } catch (...) {
        object_->resume(module);
        module.classesChanged();
        throw;
    }
    module.revokeAll(object_.get());
    LoadedModule::Use leaving = std::move(*place);
    loaded_.erase(place);
    LoadedModule::unload(std::move(leaving));
}

std::vector<const SCOM_Module*> HostProcess::modules() const {
    std::vector<const SCOM_Module*> all;
    const ModulesScope scope;
    for (const SCOM_Module* const module : registered_modules()) {
        if (!module->info().leaves)
            all.push_back(module);
    }
    for (const LoadedModule::Use& use : loaded_)
        all.push_back(&use->module());
    return all;
}

/// Waits until no thread can be inside of a factory that was revoked.
void HostProcess::settle(std::string_view module) const {
    constexpr int kTries = 1000; // of a millisecond each; a constructor that unloads waits for itself
    for (int tries = 0; !object_->settle(); ++tries) {
        if (tries == kTries)
            throw_error<ModuleException>(messages::kModuleBusy, {from_utf8(std::string(module))});
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

void HostProcess::unloadAll() noexcept {
    for (auto use = loaded_.rbegin(); use != loaded_.rend(); ++use)
        (*use)->module().revokeAll(object_.get());
    object_->settle(); // threads have left the process by now
    while (!loaded_.empty()) {
        LoadedModule::Use leaving = std::move(loaded_.back());
        loaded_.pop_back();
        LoadedModule::unload(std::move(leaving));
    }
}

} // namespace host
