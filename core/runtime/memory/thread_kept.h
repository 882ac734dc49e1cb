// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

namespace core {

/// The object of a type that the calling thread keeps until it ends; made at the first call. `Tag` tells two
/// of one type apart. It stands behind a pointer, since the room for thread-local variables of a library that
/// is loaded late is small.
template <class T, class Tag = T>
T& thread_kept() {
    thread_local std::unique_ptr<T> kept;
    if (kept == nullptr)
        kept = std::make_unique<T>();
    return *kept;
}

} // namespace core
