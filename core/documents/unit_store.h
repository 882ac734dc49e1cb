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
/// come later. An LF behind a CR is the second unit of that end. Each unit has a bit that says whether an end
/// begins there, and every kBlock units the number of ends so far is kept. Ends are counted and found in the
/// bits, which are near where the units are in no cache.
class UnitStore {
  public:
    static constexpr std::uint32_t kBlock = 256;
    static constexpr std::uint32_t kMost = std::uint32_t{1} << 20; ///< the capacity for long texts

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
    /// How many ends begin in front of an offset.
    [[nodiscard]] std::uint32_t endsBefore(std::uint32_t at) const noexcept;
    /// The offset at which end `number` begins, from 0, which is one of the ends from `first` to `last` that
    /// begin in a range.
    [[nodiscard]] std::uint32_t findEnd(std::uint32_t begin, std::uint32_t end, std::uint32_t first,
                                        std::uint32_t last, std::uint32_t number) const noexcept;
    /// Whether an end may have two units.
    [[nodiscard]] bool hasCr() const noexcept { return hasCr_.load(std::memory_order_relaxed); }

    // What is asked of single units looks at a unit only where the bits leave a doubt.

    [[nodiscard]] bool isLf(std::uint32_t at) const noexcept {
        return (beginsEnd(at) || (at > 0 && beginsEnd(at - 1))) && units_[at] == u'\n';
    }
    [[nodiscard]] bool isCr(std::uint32_t at) const noexcept { return beginsEnd(at) && units_[at] == u'\r'; }
    /// Whether the units at an offset and in front of it are one end.
    [[nodiscard]] bool dividesEnd(std::uint32_t at) const noexcept {
        return at > 0 && beginsEnd(at - 1) && units_[at] == u'\n' && units_[at - 1] == u'\r';
    }

  private:
    using Word = std::atomic<std::uint64_t>; ///< the bits of later units may be set while others read

    UnitStore(std::uint32_t capacity, bool unicodeEnds, std::uint32_t* counts, Word* bits,
              wchar* units) noexcept
        : capacity_(capacity), unicodeEnds_(unicodeEnds), counts_(counts), bits_(bits), units_(units) {}

    [[nodiscard]] std::uint64_t bits(std::uint32_t word) const noexcept {
        return bits_[word].load(std::memory_order_relaxed);
    }
    [[nodiscard]] bool beginsEnd(std::uint32_t at) const noexcept {
        return (bits(at / 64) >> at % 64 & 1) != 0;
    }
    [[nodiscard]] std::uint64_t look(std::uint32_t begin, std::uint32_t count) noexcept;

    mutable std::atomic<std::uint32_t> holders_{1};
    std::uint32_t capacity_;
    std::uint32_t size_ = 0;
    bool unicodeEnds_;
    std::atomic<bool> hasCr_{false};
    std::uint32_t* counts_; // counts_[k]: ends in front of unit k * kBlock
    Word* bits_;
    wchar* units_;
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
