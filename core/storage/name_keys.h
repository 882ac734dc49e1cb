// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace core {

/// A name that is looked for, with its case folding, by which names are in order. Borrows the name.
class CORE_API SoughtName {
  public:
    explicit SoughtName(wstring_view name);
    SoughtName(const SoughtName&) = delete;
    SoughtName& operator=(const SoughtName&) = delete;

    [[nodiscard]] wstring_view name() const noexcept { return name_; }
    [[nodiscard]] wstring_view folding() const noexcept { return folding_; }

  private:
    wstring_view name_;
    wstring_view folding_;
    std::array<wchar, 64> short_;
    wstring long_; // a folding that is longer than that
};

/// Numbers by which many names are compared quickly: the first four units of each folding behind those that
/// all of them begin with. Names with different numbers are in the order of these; what that of the others
/// is, compare_file_names() says.
class NameHeads {
  public:
    /// Takes note of what one of the names begins with.
    void add(wstring_view name);
    /// What the foldings of all names begin with.
    [[nodiscard]] const wstring& prefix() const noexcept { return prefix_; }
    /// The number of one of the names.
    [[nodiscard]] std::uint64_t of(wstring_view name) const noexcept;
    /// The number of any name that begins like them.
    [[nodiscard]] std::uint64_t ofFolding(wstring_view folding) const noexcept;

  private:
    wstring prefix_;
    bool isEmpty_ = true; // no name has been added
};

/// Sorted names one behind the other. Threads: one at a time, also for looking.
class CORE_API NameKeys {
  public:
    [[nodiscard]] std::size_t size() const noexcept { return ends_.size(); }
    [[nodiscard]] wstring_view at(std::size_t i) const noexcept {
        const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
        return wstring_view(text_).substr(begin, ends_[i] - begin);
    }
    [[nodiscard]] std::size_t endOf(std::size_t i) const noexcept { return ends_[i]; }
    [[nodiscard]] std::size_t bytes() const noexcept { return 2 * text_.size(); }
    void append(wstring_view key) {
        text_.append(key);
        ends_.push_back(text_.size());
    }
    /// The row of the greatest name that is not greater; the first one when all are greater. There is one.
    [[nodiscard]] std::size_t rowFor(const SoughtName& name) const;

  private:
    [[nodiscard]] bool hasNumbers() const;

    wstring text_;
    std::vector<std::size_t> ends_;
    // Made once so many names were looked for that it pays.
    mutable NameHeads heads_;
    mutable std::vector<std::uint64_t> numbers_;
    mutable unsigned searches_ = 0;
};

} // namespace core
