// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def_ext.h>
#include <core/values/type_object.h>

namespace core {

/// What the script objects of this folder have in common: values that are presented by their type, with the
/// tables of properties and methods of `T`. `collection` and `itemType` are those of ContextDefExtImpl.
template <class T, bool collection = false, const GUID* itemType = nullptr,
          class Context = IContextImpl<IContextDefImpl<T>>>
class TableObject : public IValueImpl, public Context, public ContextDefExtImpl<T, collection, itemType> {
  public:
    bool getString(wstring& out) const override {
        out = this->getType()->presentation();
        return true;
    }

    static std::span<const Property<T>> properties() noexcept { return {}; }
    static std::span<const Method<T>> methods() noexcept { return {}; }

  protected:
    ~TableObject() = default;
};

} // namespace core
