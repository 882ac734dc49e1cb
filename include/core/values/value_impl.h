// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

namespace core {

/// The common base of value objects: no reading but an empty presentation, equal only to itself, hashed by
/// address. An object overrides what it does otherwise, and says its type.
class CORE_API IValueImpl : public IValue {
  public:
    const void* getDataPtr() const noexcept override { return nullptr; }
    bool getBoolean(bool& out) const override;
    bool getNumeric(Numeric& out) const override;
    bool getString(wstring& out) const override;
    bool getDate(Date& out) const override;
    bool isEqual(const IValue* other) const noexcept override { return this == other; }
    std::int32_t hashCode() const noexcept override;

  protected:
    ~IValueImpl() = default;
};

} // namespace core
