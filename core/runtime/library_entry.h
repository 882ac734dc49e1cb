// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/module.h>

namespace core::detail {

/// What library_main() does, for a system whose loader calls the entry point. The static objects of the
/// program do not exist yet when it attaches the library, so the program's own module begins with the first
/// LibraryScope.
bool enter_by_loader(ModuleHandle handle, LibraryEvent event);

} // namespace core::detail
