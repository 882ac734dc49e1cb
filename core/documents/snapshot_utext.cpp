// SPDX-License-Identifier: Apache-2.0
#include "core/documents/snapshot_utext.h"

#include "core/documents/piece_search.h"

#include <algorithm>

// How ICU reads a text in pieces. Its pieces are the runs of the tree, as they lie in memory.
namespace core::detail {
namespace {

[[nodiscard]] const TextSnapshot& snapshot_of(const UText* text) noexcept {
    return *static_cast<const TextSnapshot*>(text->context);
}

std::int64_t U_CALLCONV length(UText* text) {
    return static_cast<std::int64_t>(snapshot_of(text).size());
}

void set_chunk(UText* text, const UnitRun& run, std::int64_t index) noexcept {
    text->chunkContents = run.text.data();
    text->chunkLength = static_cast<std::int32_t>(run.text.size());
    text->chunkNativeStart = static_cast<std::int64_t>(run.offset);
    text->chunkNativeLimit = text->chunkNativeStart + text->chunkLength;
    text->nativeIndexingLimit = text->chunkLength;
    text->chunkOffset = static_cast<std::int32_t>(index - text->chunkNativeStart);
}

/// Makes the units at hand from `index` on, or those in front of it; false at that end of the text.
UBool U_CALLCONV access(UText* text, std::int64_t index, UBool forward) {
    const TextSnapshot& snapshot = snapshot_of(text);
    const auto size = static_cast<std::int64_t>(snapshot.size());
    index = std::clamp<std::int64_t>(index, 0, size);
    const UBool there = forward != 0 ? index < size : index > 0;
    if (size == 0) {
        set_chunk(text, {u"", 0}, 0);
        return 0;
    }
    // At an end of the text the units on its other side are at hand.
    const std::int64_t inside = forward ? std::min(index, size - 1) : std::max<std::int64_t>(index - 1, 0);
    if (inside < text->chunkNativeStart || inside >= text->chunkNativeLimit)
        set_chunk(text, run_at(snapshot.root(), static_cast<std::uint64_t>(inside)), index);
    else
        text->chunkOffset = static_cast<std::int32_t>(index - text->chunkNativeStart);
    return there;
}

std::int32_t U_CALLCONV extract(UText* text, std::int64_t begin, std::int64_t end, UChar* out,
                                std::int32_t capacity, UErrorCode* code) {
    if (U_FAILURE(*code))
        return 0;
    if (capacity < 0 || (out == nullptr && capacity > 0) || begin > end) {
        *code = begin > end ? U_INDEX_OUTOFBOUNDS_ERROR : U_ILLEGAL_ARGUMENT_ERROR;
        return 0;
    }
    const TextSnapshot& snapshot = snapshot_of(text);
    const auto size = static_cast<std::int64_t>(snapshot.size());
    const std::int64_t first = std::clamp<std::int64_t>(begin, 0, size);
    const std::int64_t last = std::clamp<std::int64_t>(end, 0, size);
    const std::int64_t copied = std::min<std::int64_t>(last - first, capacity);
    for (std::int64_t done = 0; done < copied;) {
        const auto at = static_cast<std::uint64_t>(first + done);
        const wstring_view units =
            run_at(snapshot.root(), at).from(at).substr(0, static_cast<std::size_t>(copied - done));
        std::copy(units.begin(), units.end(), out + done);
        done += static_cast<std::int64_t>(units.size());
    }
    access(text, last, true);
    const std::int64_t whole = last - first;
    if (whole < capacity)
        out[whole] = 0;
    else
        *code = whole == capacity ? U_STRING_NOT_TERMINATED_WARNING : U_BUFFER_OVERFLOW_ERROR;
    return static_cast<std::int32_t>(whole);
}

UText* U_CALLCONV clone(UText* into, const UText* from, UBool deep, UErrorCode* code);

constexpr UTextFuncs make_functions() {
    UTextFuncs functions{};
    functions.tableSize = sizeof(UTextFuncs);
    functions.clone = &clone;
    functions.nativeLength = &length;
    functions.access = &access;
    functions.extract = &extract;
    return functions;
}

constexpr UTextFuncs kFunctions = make_functions();

[[nodiscard]] UText* open(UText* into, const void* context, UErrorCode* code) noexcept {
    UText* const text = utext_setup(into, 0, code);
    if (U_FAILURE(*code))
        return text;
    text->pFuncs = &kFunctions;
    text->context = context;
    set_chunk(text, {u"", 0}, 0);
    return text;
}

UText* U_CALLCONV clone(UText* into, const UText* from, UBool deep, UErrorCode* code) {
    if (U_FAILURE(*code))
        return into;
    if (deep) { // nobody asks for a text of its own
        *code = U_UNSUPPORTED_ERROR;
        return into;
    }
    const std::int64_t index = from->chunkNativeStart + from->chunkOffset;
    UText* const text = open(into, from->context, code);
    if (U_SUCCESS(*code))
        access(text, index, true);
    return text;
}

} // namespace

UText* open_snapshot(const TextSnapshot& text, UErrorCode& code) noexcept {
    return open(nullptr, &text, &code);
}

} // namespace core::detail
