// SPDX-License-Identifier: Apache-2.0
#include "tests/support/library.h"

#include <dlfcn.h>

#include <stdexcept>

namespace support {

const bool kLoaderAttaches = false;

Library::Library(const std::string& file) : handle_(::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr)
        throw std::runtime_error(file);
}

Library::~Library() {
    ::dlclose(handle_);
}

bool Library::isLoaded(const std::string& file) {
    void* const handle = ::dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (handle != nullptr)
        ::dlclose(handle);
    return handle != nullptr;
}

void (*Library::find(const char* name) const)() {
    return reinterpret_cast<void (*)()>(::dlsym(handle_, name));
}

} // namespace support
