// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/ivalue.h>

namespace core {

class TableData;

/// A script's object for a part of a table (a column, an index): it keeps the table alive, and learns when
/// the part is removed. A part has one such object at a time.
template <class Part>
class TableHandle {
  public:
    TableHandle(IValue& self, IValue& owner, TableData& data, Part& part) noexcept
        : self_(self), owner_(&owner), data_(data), part_(&part) {
        part.handle_ = this;
    }
    TableHandle(const TableHandle&) = delete;
    TableHandle& operator=(const TableHandle&) = delete;
    ~TableHandle() {
        if (part_ != nullptr)
            part_->handle_ = nullptr;
    }

    /// Returns the object itself.
    [[nodiscard]] IValue& self() const noexcept { return self_; }
    [[nodiscard]] const InterfacePtr<IValue>& owner() const noexcept { return owner_; }
    [[nodiscard]] TableData& data() const noexcept { return data_; }
    /// Returns the part, or null when it has been removed.
    [[nodiscard]] Part* part() const noexcept { return part_; }
    /// Returns the name that a removed part had last, so that an error can say what is gone.
    [[nodiscard]] const wstring& lastName() const noexcept { return lastName_; }
    void setLastName(wstring name) noexcept { lastName_ = std::move(name); }

  private:
    template <class>
    friend class TablePart;

    IValue& self_;
    InterfacePtr<IValue> owner_;
    TableData& data_;
    Part* part_;
    wstring lastName_;
};

/// The base of such a part.
template <class Part>
class TablePart {
  public:
    TablePart() = default;
    TablePart(const TablePart&) = delete;
    TablePart& operator=(const TablePart&) = delete;

    [[nodiscard]] TableHandle<Part>* handle() const noexcept { return handle_; }

  protected:
    ~TablePart() {
        if (handle_ != nullptr)
            handle_->part_ = nullptr;
    }

  private:
    friend class TableHandle<Part>;
    TableHandle<Part>* handle_ = nullptr;
};

} // namespace core
