// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>

#include <cstdint>

namespace core {

/// How deeply values stand inside values. The same limit binds the writer and the reader, so that what was
/// written can be read, and neither can be made to overflow the stack.
class Nesting {
  public:
    static constexpr std::int32_t kMaxDepth = 1000;

    /// One level down while it lives. ListStreamException when that is one too many.
    class Level {
      public:
        explicit Level(Nesting& nesting) : nesting_(nesting) {
            if (nesting.depth_ >= kMaxDepth)
                fail();
            ++nesting.depth_;
        }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
        ~Level() { --nesting_.depth_; }

      private:
        [[noreturn]] CORE_API static void fail();
        Nesting& nesting_;
    };

  private:
    std::int32_t depth_ = 0;
};

} // namespace core
