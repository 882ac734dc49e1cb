// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers/numeric.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace core {

/// The payload of a Number, used as a pointer to it would be. It is borrowed from the Number's object or made
/// for the occasion, so it is valid as long as both the value and the reference live.
class NumericRef {
  public:
    /// Refers to no number.
    NumericRef() noexcept = default;
    /// Refers to `number`, which must outlive the reference.
    explicit NumericRef(const Numeric& number) noexcept : number_(&number) {}
    /// Makes a number and refers to it.
    explicit NumericRef(std::int64_t whole) noexcept : number_(&made_.emplace(whole)) {}
    NumericRef(const NumericRef&) = delete;
    NumericRef& operator=(const NumericRef&) = delete;

    /// Returns the number, which must be there.
    const Numeric& operator*() const noexcept { return *number_; }
    /// Returns the number's address, or null.
    const Numeric* operator->() const noexcept { return number_; }
    /// Returns whether there is a number.
    explicit operator bool() const noexcept { return number_ != nullptr; }
    /// Returns whether there is no number.
    friend bool operator==(const NumericRef& ref, std::nullptr_t) noexcept { return ref.number_ == nullptr; }

  private:
    std::optional<Numeric> made_;
    const Numeric* number_ = nullptr;
};

} // namespace core
