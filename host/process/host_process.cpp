// SPDX-License-Identifier: Apache-2.0
#include <core/dates/date.h>
#include <core/dates/settings.h>
#include <core/runtime/errors.h>
#include <core/runtime/process.h>
#include <core/runtime/threads/thread.h>
#include <host/host_process.h>

#include <algorithm>

namespace host {

using namespace core;

HostProcess::HostProcess(const Settings& settings)
    : object_(SCOM_InternalClass<ProcessObject>::create(settings)) {
    Date::checkTimeZone(
        settings.part<DateSettings>().timeZone); // a wrong one stops a program here, not at its first date
    if (!object_)
        throw_error<ProcessInitException>(messages::kProcessInit);
    const ModulesScope modules;
    for (const SCOM_Module* module : registered_modules()) {
        if (module->info().leaves) // of another process, which may unload it
            continue;
        if (module == &core_module())
            object_->addLibrary();
        else
            take(*module);
    }
    scope_.emplace(object_.get()); // last: what fails before leaves the thread as it was
}

HostProcess::~HostProcess() {
    end_threads(object_.get());
    // What ends now works in this process, whichever the thread has otherwise.
    std::optional<ProcessScope> scope;
    try {
        scope.emplace(object_.get());
        unloadAll();
        const ModulesScope scopeOfModules;
        const auto modules = registered_modules();
        std::for_each(modules.rbegin(), modules.rend(), [this](const SCOM_Module* module) {
            if (module == &core_module())
                object_->removeLibrary();
            else if (!module->info().leaves) // those were unloaded
                module->revokeAll(object_.get());
        });
    } catch (const std::bad_alloc&) { // the factories go with the process object
    }
    object_->releaseServices();
    release_threads(object_.get());
}

} // namespace host
