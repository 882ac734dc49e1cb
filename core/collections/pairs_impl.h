// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/collections/pair_table.h"
#include "core/collections/stored_count.h"
#include "core/collections/value_pair_impl.h"

#include <core/collections/terms.h>
#include <core/context/arguments.h>
#include <core/context/script_object.h>
#include <core/lists/list_out_stream.h>

namespace core {

/// What maps and structures are: pairs that can be counted, walked, written and read back. `I` is what they
/// offer to modules; T::take(table, pair) adds a pair that was read.
template <class T, class I>
class PairsImpl : public ScriptObject<T, I, IValueCollection, IPersistableObject> {
  public:
    using Interfaces = ScriptInterfaces<I, IValuePairs, IValueCollection, IPersistableObject>;

    // IValuePairs
    std::size_t count() const noexcept override { return table_.size(); }
    bool next(std::size_t& position, IValuePairs::View& pair) const noexcept override {
        const auto pairs = table_.pairs();
        while (position < pairs.size()) {
            const PairTable::Pair& found = pairs[position++];
            if (found.hash != 0) {
                pair = {&found.key, &found.value};
                return true;
            }
        }
        return false;
    }
    void clear() noexcept override { table_.clear(); }

    // IValueCollection
    InterfacePtr<IValueEnum> enumerate() override { return enumerate_pairs(table_); }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override {
        ListOutStream& out = storage->listStream();
        out.putBeginOfList();
        out.put(static_cast<std::int64_t>(table_.size()));
        for (const PairTable::Pair& pair : table_.pairs()) {
            if (pair.hash != 0)
                serialize_pair(storage, pair.key, pair.value);
        }
        out.putEndOfList();
    }
    void deserialize(IInPersistenceStorage* storage) override {
        ListInStream& in = storage->listStream();
        in.getBeginOfList();
        PairTable table; // grows with what is really there, whatever the count says
        for (std::int64_t count = get_count(in); count > 0; --count)
            T::take(table, deserialize_pair(storage));
        in.getEndOfList();
        std::swap(table_, table);
    }

  protected:
    ~PairsImpl() = default;

    // methods
    GenericValue callCount(std::span<GenericValue>) { return table_.size(); }
    GenericValue callClear(std::span<GenericValue>) {
        clear();
        return {};
    }

    mutable PairTable table_; // closing gaps does not change the pairs
};

} // namespace core
