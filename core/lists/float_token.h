// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

namespace core::detail {

/// The machine that tells where a floating-point token ends. "." and "-.e5" are such tokens, "+1" is not.
class FloatToken {
  public:
    static constexpr std::size_t kMaxLength = 31;
    enum class Step { take, accept, fail };

    /// What to do with the next unit (negative at the end of the text): take it into the token, accept the
    /// token before it, or fail.
    [[nodiscard]] Step next(int unit) noexcept;
    [[nodiscard]] std::size_t length() const noexcept { return length_; }

  private:
    enum class State : std::uint8_t {
        start,
        afterSign,
        integer,
        fraction,
        exponent,
        exponentSign,
        exponentDigits,
        accept,
        fail
    };
    enum class Unit : std::uint8_t { digit, sign, point, mark, space, other };

    static Unit classify(int unit) noexcept;
    static State after(State state, Unit unit) noexcept;

    State state_ = State::start;
    std::size_t length_ = 0;
};

} // namespace core::detail
