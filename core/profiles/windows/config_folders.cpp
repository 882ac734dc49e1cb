// SPDX-License-Identifier: Apache-2.0
#include "core/profiles/config_folders.h"

#include "core/runtime/windows/system.h"

namespace core {
namespace {

/// A variable of the environment that holds an absolute path; others do not count.
std::string path_variable(const wchar_t* name) {
    std::wstring text(32768, L'\0'); // the longest that there is
    text.resize(::GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size())));
    return std::filesystem::path(text).is_absolute() ? windows::from_system(text) : std::string();
}

} // namespace

std::string user_config_folder() {
    return path_variable(L"APPDATA");
}

std::string system_config_folder() {
    return path_variable(L"PROGRAMDATA");
}

} // namespace core
