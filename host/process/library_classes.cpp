// SPDX-License-Identifier: Apache-2.0
#include "host/process/library_classes.h"

#include <core/runtime/module.h>

namespace host::detail {

using namespace core;

const LibraryClasses& LibraryClasses::get() {
    static const LibraryClasses& classes = *new LibraryClasses; // processes may outlive statics
    return classes;
}

LibraryClasses::LibraryClasses() {
    for (const ClassEntry* entry = core_module().declarations(); entry != nullptr; entry = entry->next) {
        Class& known = classes_.at(*entry->record.clsid);
        if (known.declaration != nullptr) // declared twice: the newer declaration stands first in the list
            continue;
        known.declaration = entry;
        known.index = size() - 1;
        if (entry->record.service != nullptr)
            services_.push_back(entry);
    }
}

} // namespace host::detail
