// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/threads/errors.h>

#include <atomic>
#include <memory>
#include <utility>

namespace core {

/// Tells long work whether it was asked to stop. Copies tell the same. Threads: any.
class StopToken {
  public:
    /// Makes a token that never asks for a stop.
    StopToken() noexcept = default;
    /// Makes a token that asks for a stop as soon as `*requested` is true; null never asks.
    explicit StopToken(std::shared_ptr<const std::atomic<bool>> requested) noexcept
        : requested_(std::move(requested)) {}

    /// Whether a stop was asked for. It stays asked for.
    [[nodiscard]] bool requested() const noexcept {
        return requested_ != nullptr && requested_->load(std::memory_order_acquire);
    }
    /// Throws ThreadDeath if a stop was asked for.
    void check() const {
        if (requested())
            throw ThreadDeath();
    }

  private:
    std::shared_ptr<const std::atomic<bool>> requested_;
};

/// Asks long work to stop that was given one of its tokens. Copies ask the same work. Threads: any.
class StopSource {
  public:
    /// Makes a source that has not asked yet. Throws std::bad_alloc.
    StopSource() : requested_(std::make_shared<std::atomic<bool>>(false)) {}

    /// Asks for a stop; once more changes nothing.
    void request() noexcept { requested_->store(true, std::memory_order_release); }
    /// Returns a token of this source; it may outlive the source.
    [[nodiscard]] StopToken token() const noexcept { return StopToken(requested_); }

  private:
    std::shared_ptr<std::atomic<bool>> requested_;
};

} // namespace core
