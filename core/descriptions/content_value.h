// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def_ext.h>
#include <core/persistence/persistence.h>
#include <core/runtime/internal_class.h>
#include <core/values/value_impl.h>

namespace core {

/// What the objects of this folder have in common: each is an immutable content as a script value.
/// Values of one class are equal when their contents are, and are written as their contents.
/// `Self` adds its tables and type().
template <class Self, class C, const GUID* clsid>
class ContentValue : public IValueImpl,
                     public IContextImpl<IContextDefImpl<Self>>,
                     public ContextDefExtImpl<Self>,
                     public IPersistableObjectImpl<Self, clsid> {
  public:
    using Content = C;
    using Interfaces = InterfaceList<IValue, IContext_, IContextDef, IContextDefExt, IPersistableObject>;

    [[nodiscard]] static GenericValue make(Content content) { return make_object<Self>(std::move(content)); }
    /// The content of a value of this class, borrowed; null for any other value.
    [[nodiscard]] static const Content* of(const Value& value) noexcept {
        return value.isObject() && value.object()->getType() == Self::type()
                   ? &static_cast<const Self*>(value.object())->content_
                   : nullptr;
    }
    [[nodiscard]] static std::span<const Method<Self>> methods() noexcept { return {}; }

    IType* getType() const noexcept override { return Self::type(); }
    bool getString(wstring& out) const override {
        out = Self::type()->presentation();
        return true;
    }
    bool isEqual(const IValue* other) const noexcept override {
        return other != nullptr && other->getType() == Self::type() &&
               static_cast<const Self*>(other)->content_ == content_;
    }
    std::int32_t hashCode() const noexcept override { return content_.hash(); }
    void serialize(IOutPersistenceStorage* storage) const override {
        to_stream(storage->listStream(), content_);
    }
    void deserialize(IInPersistenceStorage* storage) override {
        from_stream(storage->listStream(), content_);
    }

  protected:
    ContentValue() = default;
    explicit ContentValue(Content content) noexcept : content_(std::move(content)) {}
    ~ContentValue() = default;

    [[nodiscard]] const Content& content() const noexcept { return content_; }

  private:
    Content content_;
};

} // namespace core
