// SPDX-License-Identifier: Apache-2.0
#include "tests/support/library.h"

#include <windows.h>

#include <filesystem>
#include <stdexcept>

namespace support {

const bool kLoaderAttaches = true;

Library::Library(const std::string& file)
    : handle_(::LoadLibraryW(std::filesystem::path(file).make_preferred().c_str())) {
    if (handle_ == nullptr)
        throw std::runtime_error(file);
}

Library::~Library() {
    ::FreeLibrary(static_cast<HMODULE>(handle_));
}

bool Library::isLoaded(const std::string& file) {
    return ::GetModuleHandleW(std::filesystem::path(file).make_preferred().c_str()) != nullptr;
}

void (*Library::find(const char* name) const)() {
    return reinterpret_cast<void (*)()>(::GetProcAddress(static_cast<HMODULE>(handle_), name));
}

} // namespace support
