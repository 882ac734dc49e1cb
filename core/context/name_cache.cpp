// SPDX-License-Identifier: Apache-2.0
#include "core/strings/folded_name.h"
#include "core/strings/hash_index.h"

#include <core/context/name_cache.h>
#include <core/strings/compare.h>

#include <algorithm>
#include <limits>
#include <new>
#include <vector>

namespace core {
namespace {

template <class Name>
int walk(int count, const wchar* wanted, Name name) {
    if (wanted == nullptr)
        return -1;
    for (int number = 0; number < count; ++number) {
        for (int alias = 0;; ++alias) {
            const wchar* const text = name(number, alias);
            if (text == nullptr)
                break;
            if (compare_nocase(text, wanted) == 0)
                return number;
        }
    }
    return -1;
}

auto props_of(const IContextDef& def) {
    return [&def](int prop, int alias) { return def.getPropName(prop, alias); };
}

auto methods_of(const IContextDef& def) {
    return [&def](int method, int alias) { return def.getMethodName(method, alias); };
}

} // namespace

/// The names stand one behind the other in `words`: each a word with its number and the length of its
/// folding, then the words of the folding. A name's position is that of its first word.
struct NameTable::Content {
    [[nodiscard]] HashIndex::Position find(const FoldedName& name) const noexcept {
        return index.find(name.hash(), [&](HashIndex::Position position) {
            return lengthAt(position) == name.length() && name.isSame(words.data() + position + 1);
        });
    }
    [[nodiscard]] std::size_t lengthAt(HashIndex::Position position) const noexcept {
        return static_cast<std::size_t>(words[position] >> 32);
    }
    [[nodiscard]] int numberAt(HashIndex::Position position) const noexcept {
        return static_cast<std::int32_t>(words[position]);
    }
    void add(const FoldedName& name, int number) {
        const std::size_t position = words.size();
        if (position >= HashIndex::kNone || name.length() > std::numeric_limits<std::uint32_t>::max())
            throw std::bad_alloc();
        index.reserve(index.size() + 1);
        name.appendTo(words, std::uint64_t{name.length()} << 32 | static_cast<std::uint32_t>(number));
        index.add(name.hash(), static_cast<HashIndex::Position>(position));
    }

    HashIndex index;
    std::vector<std::uint64_t> words;
};

NameTable::NameTable() noexcept = default;
NameTable::NameTable(NameTable&& other) noexcept = default;
NameTable& NameTable::operator=(NameTable&& other) noexcept = default;
NameTable::~NameTable() = default;

void NameTable::reserve(int count) {
    if (!content_)
        content_ = std::make_unique<Content>();
    content_->index.reserve(2 * static_cast<std::size_t>(std::max(count, 0)));
}

void NameTable::add(wstring_view name, int number) {
    if (!content_)
        content_ = std::make_unique<Content>();
    const FoldedName folded(name);
    if (content_->find(folded) == HashIndex::kNone)
        content_->add(folded, number);
}

void NameTable::clear() noexcept {
    content_.reset();
}

int NameTable::find(wstring_view name) const noexcept {
    if (!content_)
        return -1;
    const HashIndex::Position position = content_->find(FoldedName(name));
    return position != HashIndex::kNone ? content_->numberAt(position) : -1;
}

std::size_t NameTable::size() const noexcept {
    return content_ ? content_->index.size() : 0;
}

void ContextDefCached::initPropsCache(const IContextDef& def) const {
    props_.table.build(def.getNProps(), props_of(def));
    props_.built = true;
}

void ContextDefCached::initMethodsCache(const IContextDef& def) const {
    methods_.table.build(def.getNMethods(), methods_of(def));
    methods_.built = true;
}

int ContextDefNoncached::findProp(const IContextDef& def, const wchar* name) const {
    return walk(def.getNProps(), name, props_of(def));
}

int ContextDefNoncached::findMethod(const IContextDef& def, const wchar* name) const {
    return walk(def.getNMethods(), name, methods_of(def));
}

} // namespace core
