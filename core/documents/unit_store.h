// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace core::detail {

/// Units that never change once they are written, and where the line ends among them are. One thread appends;
/// any thread reads what was written before it was told of it.
///
/// An end counts at its first unit, so that what is known of the units in front never depends on those that
/// come later. An LF behind a CR is the second unit of that end. Every kBlock units the number of ends so far
/// is kept: counting and finding ends look at one block of units, however long the text is.
class UnitStore {
  public:
    static constexpr std::uint32_t kBlock = 256;
    static constexpr std::uint32_t kMost = std::uint32_t{1} << 20; ///< the largest capacity

    /// Makes an empty store with one holder. Throws std::bad_alloc.
    [[nodiscard]] static UnitStore* create(std::uint32_t capacity, bool unicodeEnds);

    void hold() const noexcept { holders_.fetch_add(1, std::memory_order_relaxed); }
    void release() const noexcept;

    /// Writes units behind those that are there, for which there is room; returns the offset of the first.
    std::uint32_t append(wstring_view text) noexcept;
    [[nodiscard]] std::uint32_t room() const noexcept { return capacity_ - size_; }
    [[nodiscard]] std::uint32_t size() const noexcept { return size_; }
    [[nodiscard]] std::uint32_t capacity() const noexcept { return capacity_; }

    [[nodiscard]] const wchar* units() const noexcept { return units_; }
    /// How many ends the range has when it stands alone.
    [[nodiscard]] std::uint32_t countEnds(std::uint32_t begin, std::uint32_t end) const noexcept;
    /// The offset of the first unit of end `number` of the range, from 0; there must be so many.
    [[nodiscard]] std::uint32_t findEnd(std::uint32_t begin, std::uint32_t end,
                                        std::uint32_t number) const noexcept;

  private:
    UnitStore(std::uint32_t capacity, bool unicodeEnds, wchar* units, std::uint32_t* counts) noexcept
        : capacity_(capacity), unicodeEnds_(unicodeEnds), units_(units), counts_(counts) {}

    [[nodiscard]] bool isEnd(std::uint32_t at) const noexcept;
    [[nodiscard]] std::uint32_t countBlock(std::uint32_t begin, std::uint32_t end) const noexcept;
    [[nodiscard]] std::uint32_t endsBefore(std::uint32_t at) const noexcept;
    [[nodiscard]] bool dividesEnd(std::uint32_t at) const noexcept {
        return at > 0 && units_[at] == u'\n' && units_[at - 1] == u'\r';
    }

    mutable std::atomic<std::uint32_t> holders_{1};
    std::uint32_t capacity_;
    std::uint32_t size_ = 0;
    bool unicodeEnds_;
    wchar* units_;
    std::uint32_t* counts_; // counts_[k]: ends in front of unit k * kBlock
};

/// A counted reference to an object with hold() and release(); may be null.
template <class T>
class Held {
  public:
    Held() noexcept = default;
    /// Takes over a reference.
    explicit Held(T* taken) noexcept : object_(taken) {}
    /// Adds a reference; `object` may be null.
    [[nodiscard]] static Held share(T* object) noexcept {
        if (object != nullptr)
            object->hold();
        return Held(object);
    }
    Held(const Held& other) noexcept : object_(other.object_) {
        if (object_ != nullptr)
            object_->hold();
    }
    Held(Held&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Held& operator=(Held other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Held() {
        if (object_ != nullptr)
            object_->release();
    }
    [[nodiscard]] T* get() const noexcept { return object_; }
    /// Gives the reference away.
    [[nodiscard]] T* detach() noexcept { return std::exchange(object_, nullptr); }
    T* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

  private:
    T* object_ = nullptr;
};

using StoreRef = Held<UnitStore>;

} // namespace core::detail
