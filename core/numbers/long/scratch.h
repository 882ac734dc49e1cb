// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <span>

namespace core::limbs {

/// An uninitialised working area: on the stack up to `Inline` elements, else on the heap.
template <class T, std::size_t Inline>
class Scratch {
  public:
    explicit Scratch(std::size_t size) : size_(size) {
        if (size > Inline) {
            heap_.reset(new T[size]);
            data_ = heap_.get();
        }
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    [[nodiscard]] T* data() noexcept { return data_; }
    [[nodiscard]] std::span<T> span() noexcept { return {data_, size_}; }

  private:
    std::size_t size_;
    std::unique_ptr<T[]> heap_;
    T inline_[Inline];
    T* data_ = inline_;
};

} // namespace core::limbs
