// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/containers/parts.h"

#include <core/containers/stored_value.h>
#include <core/context/script_object.h>

namespace core {

class StoredValue : public ScriptObject<StoredValue, IStoredValue, IPersistableObject, IValueLoader> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"StoredValue", u"ХранимоеЗначение"},
        .type = kStoredValueType,
        .object = kStoredValueClass,
        .presentation = "IDS_TYPE_PRESENTATION_STOREDVALUE",
        .arguments = {0, 1},
    };

    explicit StoredValue(Value value = {}) noexcept : value_(std::move(value)) {}
    StoredValue(const StoredValue&) = delete;
    StoredValue& operator=(const StoredValue&) = delete;
    ~StoredValue() { leave(); }

    static GenericValue construct(std::span<GenericValue> arguments);
    static auto members() {
        return core::members(property(
                                 u"Value", u"Значение", [](const StoredValue& self) { return self.value(); },
                                 [](StoredValue& self, const Value& value) { self.setValue(value); }),
                             property(u"Loaded", u"Загружено", &StoredValue::isLoaded));
    }

    // IStoredValue
    const Value& value() const override;
    void setValue(Value value) override;
    bool isLoaded() const noexcept override { return isLoaded_; }

    /// Returns the part that the object was read from, borrowed; null where it is not of that inner file.
    [[nodiscard]] const wstring* partIn(const StorageRW& storage, wstring_view root) const {
        return source_ && source_->isOf(storage, root) ? &part_ : nullptr;
    }

    // IPersistableObject and IValueLoader; the body is {0, value}, or {1, name of the part}
    void serialize(IOutPersistenceStorage* storage) const override;
    void deserialize(IInPersistenceStorage* storage) override;
    GenericValue load(IInPersistenceStorage* storage) override;

  private:
    void leave() noexcept {
        if (source_)
            source_->leave(part_, *this);
    }

    mutable Value value_;
    mutable bool isLoaded_ = true;
    wstring part_;
    PartSourcePtr source_; // null for what was not read in parts
};

} // namespace core
