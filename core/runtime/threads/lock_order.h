// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What the locks tell the search for circles (lock_order.cpp); nothing at all in a build without it.
namespace core::detail::lock_order {

#if defined(CORE_LOCK_CYCLES)

/// The calling thread is about to wait for a lock, for as long as it takes; it may have the lock already when
/// that can be had at once. Reports a circle that this order closes.
void willWait(const void* lock) noexcept;
/// The calling thread has taken a lock.
void locked(const void* lock) noexcept;
/// The calling thread gives a lock back.
void unlocked(const void* lock) noexcept;
/// A lock ends; another one may come to lie at its address.
void forget(const void* lock) noexcept;

#else

inline void willWait(const void*) noexcept {}
inline void locked(const void*) noexcept {}
inline void unlocked(const void*) noexcept {}
inline void forget(const void*) noexcept {}

#endif

} // namespace core::detail::lock_order
