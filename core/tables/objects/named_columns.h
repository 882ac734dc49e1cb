// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"

#include <core/context/context_impl.h>

namespace core {

/// A context with a property for every column of a table, behind those of T's own table: so a script writes
/// Row.Price or Table.Columns.Price. The names are those of the moment. `T` has tableData(),
/// getColumn(position) and, where columns are written to through it, setColumn(position, value).
template <class T>
class NamedColumns : public IContextImpl<IContextDefImpl<T>> {
    using Base = IContextImpl<IContextDefImpl<T>>;

  public:
    int getNProps() const override { return Base::getNProps() + static_cast<int>(data().columnCount()); }
    const wchar* getPropName(int prop, int alias) const override {
        const auto column = columnOf(prop);
        if (!column)
            return Base::getPropName(prop, alias);
        return alias == kEnglish || alias == kRussian ? data().column(*column).info.name.c_str() : nullptr;
    }
    bool isPropReadable(int prop) const override { return columnOf(prop) || Base::isPropReadable(prop); }
    bool isPropWritable(int prop) const override {
        return columnOf(prop) ? kWritable : Base::isPropWritable(prop);
    }
    int findProp(const wchar* name) const override {
        const int own = Base::getNProps() != 0 ? Base::findProp(name) : -1;
        if (own >= 0)
            return own;
        const auto column = name != nullptr ? data().findColumn(wstring_view(name)) : std::nullopt;
        return column ? Base::getNProps() + static_cast<int>(*column) : -1;
    }

    void getPropVal(int prop, GenericValue& out) override {
        if (const auto column = columnOf(prop))
            out = self().getColumn(*column);
        else
            Base::getPropVal(prop, out);
    }
    void setPropVal(int prop, const GenericValue& value) override {
        const auto column = columnOf(prop);
        if (!column) {
            Base::setPropVal(prop, value);
            return;
        }
        if constexpr (kWritable)
            self().setColumn(*column, value);
        else
            detail::unwritable_property(getPropName(prop, kEnglish));
    }

  protected:
    ~NamedColumns() = default;

    /// The column that a property stands for; none for one of T's own table.
    [[nodiscard]] std::optional<std::size_t> columnOf(int prop) const noexcept {
        const int column = prop - Base::getNProps();
        const bool here = column >= 0 && static_cast<std::size_t>(column) < data().columnCount();
        return here ? std::optional(static_cast<std::size_t>(column)) : std::nullopt;
    }

  private:
    static constexpr bool kWritable = requires(T & object, const GenericValue& value) {
        object.setColumn(std::size_t{}, value);
    };

    [[nodiscard]] T& self() noexcept { return static_cast<T&>(*this); }
    [[nodiscard]] const TableData& data() const noexcept { return static_cast<const T&>(*this).tableData(); }
};

} // namespace core
