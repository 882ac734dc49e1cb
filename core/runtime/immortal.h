// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace core::detail {

/// A static object that is made before the program runs and never destroyed: what outlives the library's
/// other statics may still use it, and its first use needs no memory. For static variables, `constinit` where
/// what they hold is so everywhere: there are systems whose mutex is not, and where its first use makes it.
template <class T>
class Immortal {
  public:
    constexpr Immortal() noexcept : object_() {}
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;
    ~Immortal() {} // leaves the object alone

    [[nodiscard]] constexpr T& operator*() noexcept { return object_; }

  private:
    union {
        T object_;
    };
};

} // namespace core::detail
