// SPDX-License-Identifier: Apache-2.0
#include "host/language/machine.h"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>

namespace core::script {

std::uint64_t resident_memory() noexcept {
    const int file = ::open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return 0;
    char text[128];
    const auto count = ::read(file, text, sizeof text);
    ::close(file);
    const char* const end = text + std::max<decltype(count)>(count, 0);
    const char* const second =
        std::find(static_cast<const char*>(text), end, ' '); // the first is the whole size
    std::uint64_t pages = 0;
    if (second != end)
        std::from_chars(second + 1, end, pages);
    return pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

std::span<const std::byte> stack_reserve() noexcept {
    pthread_attr_t attributes;
    if (::pthread_getattr_np(::pthread_self(), &attributes) != 0)
        return {};
    void* lowest = nullptr;
    std::size_t size = 0;
    const bool known = ::pthread_attr_getstack(&attributes, &lowest, &size) == 0;
    ::pthread_attr_destroy(&attributes);
    if (!known)
        return {};
    return {static_cast<const std::byte*>(lowest), std::min(kStackReserve, size / 2)};
}

} // namespace core::script
