// SPDX-License-Identifier: Apache-2.0
#include <core/types/typed_value.h>

namespace core {

void TypedValue::setDomain(TypeDomain domain) {
    value_ = domain.defaultValue();
    domain_ = std::move(domain);
}

void TypedValue::changeDomain(TypeDomain domain) {
    value_ = domain.adjust(value_);
    domain_ = std::move(domain);
}

} // namespace core
