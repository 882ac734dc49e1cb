// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>

#include <cstdint>

namespace core {

/// How deeply values stand inside values. The same limit binds the writer and the reader, so that what was
/// written can be read, and neither can be made to overflow the stack.
class Nesting {
  public:
    /// How many values may stand inside each other.
    static constexpr std::int32_t kMaxDepth = 1000;

    /// One level of nesting, as long as it lives.
    class Level {
      public:
        /// Goes one level down. Throws ListStreamException ("IDS_NESTING_TOO_DEEP") when that is one too
        /// many. `nesting` must outlive the level.
        explicit Level(Nesting& nesting) : nesting_(nesting) {
            if (nesting.depth_ >= kMaxDepth)
                fail();
            ++nesting.depth_;
        }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
        /// Goes one level up.
        ~Level() { --nesting_.depth_; }

      private:
        [[noreturn]] CORE_API static void fail();
        Nesting& nesting_;
    };

  private:
    std::int32_t depth_ = 0;
};

} // namespace core
