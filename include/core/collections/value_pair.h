// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

#include <cstddef>

/// Pairs of a key and a value: what walking a structure or a map yields. Scripts know them as "KeyAndValue".
namespace core {

inline constexpr GUID kValuePairClass = "556b08ab-8ef5-4635-9698-c19f7e52aaf3"_guid;
inline constexpr GUID kValuePairType = "850afa6f-5244-482f-9729-d78ec65ff607"_guid;

/// A pair as it was when the walk began: what happens to the collection afterwards does not change it.
class IValuePair : public IUnknown {
  public:
    static constexpr GUID IID = "f5b3254c-60ea-4917-840d-becc7d7083c6"_guid;

    [[nodiscard]] virtual const Value& key() const noexcept = 0;
    [[nodiscard]] virtual const Value& value() const noexcept = 0;

  protected:
    ~IValuePair() = default;
};

[[nodiscard]] CORE_API InterfacePtr<IValuePair> create_value_pair(Value key, Value value);

/// What structures and maps have in common. Everything borrowed from them is valid until their next change;
/// reaching a structure's keys as properties counts as one, since it may close the gaps of erased pairs.
class IValuePairs : public IUnknown {
  public:
    static constexpr GUID IID = "0312d65c-4795-41d2-9b55-1e002d5aad45"_guid;

    struct View {
        const Value* key = nullptr;
        const Value* value = nullptr;
    };

    [[nodiscard]] virtual std::size_t count() const noexcept = 0;
    /// Walks the pairs in the order of insertion without making objects of them: stores the next one and
    /// returns true, or returns false at the end. `place` begins at 0 and is for this function alone.
    virtual bool next(std::size_t& place, View& pair) const noexcept = 0;
    virtual void clear() noexcept = 0;

  protected:
    ~IValuePairs() = default;
};

} // namespace core
