// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unicode/ures.h>

#include <memory>

namespace core {

struct CloseBundle {
    void operator()(UResourceBundle* bundle) const noexcept { ures_close(bundle); }
};
using BundlePtr = std::unique_ptr<UResourceBundle, CloseBundle>;

} // namespace core
