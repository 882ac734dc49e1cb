// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

namespace core::detail {

/// Gives the calling thread the name that debuggers and lists of threads show: as many whole characters as
/// the system takes.
void name_system_thread(const wstring& name);

} // namespace core::detail
