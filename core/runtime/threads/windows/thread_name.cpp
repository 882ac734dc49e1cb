// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/thread_name.h"

#include "core/runtime/windows/system.h"

#include <string>

namespace core::detail {

void name_system_thread(const wstring& name) {
    // Systems before Windows 10 have no such names, nor the function.
    using SetDescription = HRESULT(WINAPI*)(HANDLE, const wchar_t*);
    static const auto set = reinterpret_cast<SetDescription>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"kernelbase.dll"), "SetThreadDescription")));
    if (set != nullptr)
        (void)set(::GetCurrentThread(), std::wstring(name.begin(), name.end()).c_str());
}

} // namespace core::detail
