// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/descriptions/content_value.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/objects/native_enumeration.h>
#include <core/presentation/presentation_values.h>

namespace core {

/// A presentation value as an object, which shows the content's own presentation.
template <class T, class C>
class ShownValue : public ContentValue<T, C> {
  public:
    bool getString(wstring& out) const override {
        out = this->content().presentation();
        return true;
    }

  protected:
    using ContentValue<T, C>::ContentValue;
    ~ShownValue() = default;
};

namespace detail {

/// The content of an object of class `T`; refuses any other value.
template <class T>
[[nodiscard]] const typename T::Content& content_from(const Value& value, ValueReceiver receiver) {
    const auto* const content = T::contentOf(value);
    if (content == nullptr)
        receiver.refuseType();
    return *content;
}

/// The content of an object of class `T`, or of a String with its text.
template <class T>
[[nodiscard]] typename T::Content content_or_text(const Value& value, ValueReceiver receiver) {
    if (value.kind() != ValueKind::string)
        return content_from<T>(value, receiver);
    const auto content = T::Content::fromText(text_from(value, receiver));
    if (!content)
        receiver.refuseValue();
    return *content;
}

/// An argument that may be left out.
template <class A>
[[nodiscard]] std::optional<A> optional_from(std::span<const GenericValue> arguments, int index) {
    const GenericValue& argument = optional_argument(arguments, static_cast<std::size_t>(index));
    return from_value<std::optional<A>>(argument, ValueReceiver::parameter(index));
}

} // namespace detail
} // namespace core
