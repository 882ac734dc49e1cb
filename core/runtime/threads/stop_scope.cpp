// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/thread_record.h"

#include <core/runtime/threads/stop_scope.h>

#include <utility>

namespace core {

StopScope::StopScope(StopToken token)
    : token_(std::move(token)), around_(std::exchange(detail::own_record().stops, this)) {}

StopScope::~StopScope() {
    detail::own_record().stops = around_;
}

bool StopScope::requested() const noexcept {
    return token_.requested() || (around_ != nullptr && around_->requested());
}

} // namespace core
