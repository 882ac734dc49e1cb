// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <iterator>
#include <type_traits>
#include <utility>

namespace core {

/// Walks over what has an index: `Range` has an operator[], whose results the walk yields. The range is
/// borrowed and must outlive the walk.
template <class Range>
class IndexIterator {
  public:
    using iterator_concept = std::forward_iterator_tag; ///< any number of walks over one range
    using iterator_category = std::input_iterator_tag;  ///< elements are made when they are asked for
    using difference_type = std::ptrdiff_t;             ///< between two places of one range
    /// What the walk yields.
    using value_type = std::remove_cvref_t<decltype(std::declval<const Range&>()[std::size_t{}])>;
    using reference = value_type; ///< an element is a value of its own
    using pointer = void;         ///< an element has no address

    /// Walks over nothing.
    IndexIterator() noexcept = default;
    /// Walks over `range` from an index on.
    IndexIterator(const Range& range, std::size_t index) noexcept : range_(&range), index_(index) {}

    /// Returns the element. Throws what the range throws.
    reference operator*() const { return (*range_)[index_]; }
    /// Goes on to the next element.
    IndexIterator& operator++() noexcept {
        ++index_;
        return *this;
    }
    /// Goes on to the next element and returns where it was.
    IndexIterator operator++(int) noexcept {
        IndexIterator before = *this;
        ++index_;
        return before;
    }
    friend bool operator==(const IndexIterator&, const IndexIterator&) = default;

  private:
    const Range* range_ = nullptr;
    std::size_t index_ = 0;
};

} // namespace core
