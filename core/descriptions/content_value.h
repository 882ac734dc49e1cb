// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/arguments.h>
#include <core/context/script_object.h>

namespace core {

/// What the objects of this folder have in common: each is an immutable content as a script value.
/// Values of one class are equal when their contents are, and are written as their contents.
template <class T, class C>
class ContentValue : public ScriptObject<T, IPersistableObject> {
  public:
    using Content = C;

    [[nodiscard]] static GenericValue make(Content content) { return make_object<T>(std::move(content)); }
    /// The content of a value of this class, borrowed; null for any other value.
    [[nodiscard]] static const Content* contentOf(const Value& value) noexcept {
        const T* const object = T::of(value);
        return object != nullptr ? &object->content_ : nullptr;
    }

    bool isEqual(const IValue* other) const noexcept override {
        const T* const object = T::of(other);
        return object != nullptr && object->content_ == content_;
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
