// SPDX-License-Identifier: Apache-2.0
#include "core/documents/unit_store.h"

#include "core/streams/ends_line.h"

#include <algorithm>
#include <bit>
#include <memory>
#include <new>

namespace core::detail {
namespace {

constexpr std::size_t kLine = 64;                        // bytes of memory that come together
constexpr std::uint32_t kWords = UnitStore::kBlock / 64; // of the bits of a block

/// The number of bits that are set. The general processor has no instruction for it, and a call costs more.
[[nodiscard]] std::uint32_t ones(std::uint64_t word) noexcept {
    word -= word >> 1 & 0x5555'5555'5555'5555U;
    word = (word & 0x3333'3333'3333'3333U) + (word >> 2 & 0x3333'3333'3333'3333U);
    word = (word + (word >> 4)) & 0x0F0F'0F0F'0F0F'0F0FU;
    return static_cast<std::uint32_t>(word * 0x0101'0101'0101'0101U >> 56);
}

struct IsCr {
    static bool one(wchar unit) noexcept { return unit == u'\r'; }
#ifdef __SSE2__
    static __m128i eight(__m128i units) noexcept {
        return _mm_cmpeq_epi16(units, _mm_set1_epi16(u'\r'));
    }
#endif
};

/// A bit for each of at most 64 units that passes a test.
template <class Test>
[[nodiscard]] std::uint64_t passing(const wchar* units, std::uint32_t count) noexcept {
    std::uint64_t found = 0;
    std::uint32_t at = 0;
#ifdef __SSE2__
    for (; at + 16 <= count; at += 16) {
        const auto* const sixteen = reinterpret_cast<const __m128i*>(units + at);
        const __m128i pass =
            _mm_packs_epi16(Test::eight(_mm_loadu_si128(sixteen)), Test::eight(_mm_loadu_si128(sixteen + 1)));
        found |= std::uint64_t{static_cast<std::uint32_t>(_mm_movemask_epi8(pass))} << at;
    }
#endif
    for (; at < count; ++at)
        found |= std::uint64_t{Test::one(units[at])} << at;
    return found;
}

} // namespace

UnitStore* UnitStore::create(std::uint32_t capacity, bool unicodeEnds) {
    // One block of memory: the store, the counts, the bits at the beginning of a line, the units.
    const std::size_t counts = capacity / kBlock + 1;
    const std::size_t words = counts * kWords; // all of a block, so that none is looked for in vain
    const std::size_t ahead = sizeof(UnitStore) + counts * sizeof(std::uint32_t);
    const std::size_t behind = words * sizeof(Word) + capacity * sizeof(wchar);
    auto* const memory = static_cast<std::byte*>(::operator new(ahead + kLine + behind));
    auto* const first = reinterpret_cast<std::uint32_t*>(memory + sizeof(UnitStore));
    first[0] = 0;
    void* aligned = memory + ahead;
    std::size_t space = kLine + behind;
    auto* const bits = static_cast<Word*>(std::align(kLine, behind, aligned, space));
    std::uninitialized_value_construct_n(bits, words);
    return new (memory) UnitStore(capacity, unicodeEnds, first, bits, reinterpret_cast<wchar*>(bits + words));
}

void UnitStore::release() const noexcept {
    if (holders_.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    auto* const self = const_cast<UnitStore*>(this);
    self->~UnitStore();
    ::operator delete(self);
}

/// The ends that begin among at most 64 units, which have been written. Notes whether there is a CR.
std::uint64_t UnitStore::look(std::uint32_t begin, std::uint32_t count) noexcept {
    const wchar* const units = units_ + begin;
    std::uint64_t ends =
        unicodeEnds_ ? passing<EndsUnicodeLine>(units, count) : passing<EndsLine>(units, count);
    if (ends == 0)
        return 0;
    const std::uint64_t crs = passing<IsCr>(units, count);
    if (crs != 0)
        hasCr_.store(true, std::memory_order_relaxed);
    const bool behindCr = begin > 0 && units_[begin - 1] == u'\r';
    for (std::uint64_t second = ends & (crs << 1 | (behindCr ? 1U : 0U)); second != 0; second &= second - 1) {
        const int at = std::countr_zero(second);
        if (units[at] == u'\n')
            ends &= ~(std::uint64_t{1} << at);
    }
    return ends;
}

std::uint32_t UnitStore::append(wstring_view text) noexcept {
    const std::uint32_t begin = size_;
    const std::uint32_t end = begin + static_cast<std::uint32_t>(text.size());
    std::copy(text.begin(), text.end(), units_ + begin);
    for (std::uint32_t at = begin; at < end;) {
        const std::uint32_t word = at / 64;
        const std::uint32_t count = std::min(64 - at % 64, end - at);
        if (const std::uint64_t ends = look(at, count); ends != 0) // nobody else writes
            bits_[word].store(bits(word) | ends << at % 64, std::memory_order_relaxed);
        at += count;
        if (at % kBlock == 0)
            counts_[at / kBlock] = counts_[at / kBlock - 1] + ones(bits(word - 3)) + ones(bits(word - 2)) +
                                   ones(bits(word - 1)) + ones(bits(word));
    }
    size_ = end;
    return begin;
}

std::uint32_t UnitStore::endsBefore(std::uint32_t at) const noexcept {
    std::uint32_t ends = counts_[at / kBlock];
    for (std::uint32_t word = at / kBlock * kWords; word < at / 64; ++word)
        ends += ones(bits(word));
    return ends + ones(bits(at / 64) & ((std::uint64_t{1} << at % 64) - 1));
}

std::uint32_t UnitStore::findEnd(std::uint32_t begin, std::uint32_t end, std::uint32_t first,
                                 std::uint32_t last, std::uint32_t number) const noexcept {
    // Ends stand evenly in most texts: the block is near the guess.
    const std::uint64_t share = std::uint64_t{number - first} * (end - begin) / (last - first);
    std::uint32_t low = (begin + static_cast<std::uint32_t>(share)) / kBlock;
    __builtin_prefetch(bits_ + std::size_t{low} * kWords);
    const std::uint32_t least = begin / kBlock;
    const std::uint32_t most = (end - 1) / kBlock;
    std::uint32_t high = low + 1; // counts_[low] <= number < counts_[high], where there is a block `high`
    for (std::uint32_t step = 1; low > least && counts_[low] > number; step *= 2) {
        high = low;
        low = low - least > step ? low - step : least;
    }
    for (std::uint32_t step = 1; high <= most && counts_[high] <= number; step *= 2) {
        low = high;
        high = most + 1 - high > step ? high + step : most + 1;
    }
    const std::uint32_t* const block = std::upper_bound(counts_ + low + 1, counts_ + high, number) - 1;
    const auto word = static_cast<std::uint32_t>(block - counts_) * kWords;
    std::uint32_t before = *block;
    std::uint32_t index = 0; // of the word, without a branch to guess
    for (std::uint32_t i = 0, ends = before; i + 1 < kWords; ++i) {
        ends += ones(bits(word + i));
        index += ends <= number ? 1 : 0;
        before = ends <= number ? ends : before;
    }
    std::uint64_t ends = bits(word + index);
    for (std::uint32_t left = number - before; left > 0; --left)
        ends &= ends - 1;
    return (word + index) * 64 + static_cast<std::uint32_t>(std::countr_zero(ends));
}

} // namespace core::detail
