// SPDX-License-Identifier: Apache-2.0
#include "core/locales/collation_keys.h"

#include "core/locales/collator.h"
#include "core/locales/letter_order.h"
#include "core/runtime/icu_length.h"
#include "core/runtime/threads/loop_check.h"

#include <core/runtime/errors.h>

#include <algorithm>

namespace core {
namespace {

/// Finding out how a language orders letters takes as long as so many keys.
constexpr std::size_t kManyTexts = 20'000;

void append_by_rules(std::string& keys, wstring_view text, const UCollator* collator) {
    const std::int32_t length = icu_length(text.size());
    const std::size_t begin = keys.size();
    // Room for common text at the first try; ICU tells how much it needs when that is not enough.
    std::size_t room = text.size() * 3 + 16;
    for (;;) {
        keys.resize(begin + room);
        const std::int32_t needed = ucol_getSortKey(
            collator, text.data(), length, reinterpret_cast<std::uint8_t*>(&keys[begin]), icu_length(room));
        if (needed <= 0)
            throw_error<ConverterException>(messages::kStringTooLong);
        const auto size = static_cast<std::size_t>(needed);
        if (size <= room) {
            keys.resize(begin + size - 1); // a key ends with a zero, which says nothing
            return;
        }
        room = size;
    }
}

} // namespace

CollationKeys::CollationKeys(std::span<const wstring_view> texts, const Locale& locale) {
    const UCollator* const collator = detail::collator_for(locale, UCOL_TERTIARY);
    ends_.reserve(texts.size());
    detail::LoopCheck check;
    const auto append_all = [&](auto append) {
        bytes_.clear();
        ends_.clear();
        return std::all_of(texts.begin(), texts.end(), [&](wstring_view text) {
            check();
            const bool done = append(text);
            ends_.push_back(bytes_.size());
            return done;
        });
    };
    // Keys of two makes do not compare: one text that needs the rules, and all go by them.
    if (texts.size() >= kManyTexts) {
        const detail::LetterOrder letters(collator);
        if (append_all([&](wstring_view text) { return letters.append(bytes_, text); }))
            return;
    }
    append_all([&](wstring_view text) {
        append_by_rules(bytes_, text, collator);
        return true;
    });
}

} // namespace core
