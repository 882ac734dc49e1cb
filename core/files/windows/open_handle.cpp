// SPDX-License-Identifier: Apache-2.0
#include "core/files/windows/open_handle.h"

#include <fcntl.h>
#include <io.h>

#include <cstdint>

namespace core::windows {
namespace {

constexpr DWORD kWholeHigh = 0x08000000; // behind all bytes, before all regions that files can lock

} // namespace

Descriptor open_shared(const std::string& path, const Opening& opening) {
    Handle handle(::CreateFileW(system_path(path).c_str(), opening.access,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                opening.disposition, opening.flags, nullptr));
    if (!handle) {
        fail_at(path);
        return Descriptor(-1);
    }
    Descriptor descriptor(
        ::_open_osfhandle(reinterpret_cast<std::intptr_t>(handle.get()), _O_BINARY | _O_NOINHERIT));
    if (descriptor.number() >= 0) // it has the handle from here on
        (void)handle.take();
    return descriptor;
}

HANDLE handle_of(int descriptor) noexcept {
    return descriptor < 0 ? INVALID_HANDLE_VALUE : reinterpret_cast<HANDLE>(::_get_osfhandle(descriptor));
}

bool lock_whole(int descriptor, bool exclusive) noexcept {
    OVERLAPPED place{};
    place.OffsetHigh = kWholeHigh;
    const HANDLE handle = handle_of(descriptor);
    (void)::UnlockFileEx(handle, 0, 1, 0, &place);
    const DWORD how = exclusive ? LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY : 0;
    return ::LockFileEx(handle, how, 0, 1, 0, &place) != 0 || fail();
}

} // namespace core::windows
