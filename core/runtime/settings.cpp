// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/settings.h>

namespace core {

const Settings& current_settings() noexcept {
    static const Settings defaults;
    return defaults;
}

} // namespace core
