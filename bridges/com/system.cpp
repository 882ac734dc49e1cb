// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/system.h"

#include "bridges/com/errors.h"

#include <atomic>

namespace core::com {
namespace {

std::atomic<bool> here{false};

} // namespace

void system_is_here() noexcept {
    here = true;
}

void require_system() {
    if (!here)
        throw_error<COMException>(messages::kNoSystem);
    APTTYPE kind{};
    APTTYPEQUALIFIER qualifier{};
    if (CoGetApartmentType(&kind, &qualifier) == CO_E_NOTINITIALIZED)
        check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), messages::kCallFailed, u"CoInitializeEx");
}

} // namespace core::com
