// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace host::detail {

/// Counts the threads that are inside of something, so that what they may still use is kept until they have
/// left it. The count is spread, because threads that write to one place wait for each other.
class Readers {
  public:
    /// One thread, inside as long as the scope lives.
    class Scope {
      public:
        explicit Scope(Readers& readers) noexcept : count_(readers.own()) { count_.fetch_add(1); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope() { count_.fetch_sub(1); }

      private:
        std::atomic<std::int32_t>& count_;
    };

    /// Whether all threads that were inside when the caller took something out of their reach have left.
    [[nodiscard]] bool none() const noexcept {
        for (const Part& part : parts_) {
            if (part.count.load() != 0)
                return false;
        }
        return true;
    }

  private:
    static constexpr std::size_t kParts = 16;
    static constexpr std::size_t kCacheLine = 64;

    struct Part {
        std::atomic<std::int32_t> count{0};
        std::array<char, kCacheLine - sizeof(std::atomic<std::int32_t>)> space{};
    };

    std::atomic<std::int32_t>& own() noexcept {
        static std::atomic<std::size_t> threads{0};
        thread_local const std::size_t part = threads.fetch_add(1, std::memory_order_relaxed) % kParts;
        return parts_[part].count;
    }

    std::array<Part, kParts> parts_;
};

} // namespace host::detail
