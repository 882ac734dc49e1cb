// SPDX-License-Identifier: Apache-2.0
#include "host/language/machine.h"

#include <windows.h>
// behind the system's functions
#include <psapi.h>

#include <algorithm>

namespace core::script {

std::uint64_t resident_memory() noexcept {
    PROCESS_MEMORY_COUNTERS counters{};
    return ::K32GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters) != 0
               ? counters.WorkingSetSize
               : 0;
}

std::span<const std::byte> stack_reserve() noexcept {
    ULONG_PTR lowest = 0;
    ULONG_PTR highest = 0;
    ::GetCurrentThreadStackLimits(&lowest, &highest);
    return {reinterpret_cast<const std::byte*>(lowest),
            std::min<std::size_t>(kStackReserve, (highest - lowest) / 2)};
}

} // namespace core::script
