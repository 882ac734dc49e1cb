// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/unit_store.h"

#include <cstdint>

namespace core::detail {

/// What is known of some units without looking at them.
struct UnitSum {
    std::uint64_t units = 0;
    std::uint64_t ends = 0; ///< line ends, when the units stand alone
    bool beginsLf = false;  ///< whether the first unit is LF
    bool endsCr = false;    ///< whether the last unit is CR
};

/// The units of a store from `begin` on: what a tree keeps of a piece beside its sum.
struct PiecePlace {
    std::uint32_t begin = 0;
    std::uint32_t rank = 0; ///< the ends of the store in front of `begin`
};

/// A range of a store, never empty.
struct Piece {
    StoreRef store;
    PiecePlace place;
    std::uint32_t end = 0;
    std::uint32_t ends = 0; ///< line ends, when the piece stands alone
    bool beginsLf = false;
    bool endsCr = false;

    Piece() noexcept = default;
    Piece(StoreRef from, std::uint32_t first, std::uint32_t last) noexcept
        : store(std::move(from)), place{first, first == 0 ? 0 : store->endsBefore(first)}, end(last),
          beginsLf(store->isLf(first)) {
        count();
    }
    /// Takes over a reference to the store of a piece that a tree holds.
    Piece(StoreRef from, PiecePlace first, const UnitSum& sum) noexcept
        : store(std::move(from)), place(first), end(first.begin + static_cast<std::uint32_t>(sum.units)),
          ends(static_cast<std::uint32_t>(sum.ends)), beginsLf(sum.beginsLf), endsCr(sum.endsCr) {}

    [[nodiscard]] std::uint32_t begin() const noexcept { return place.begin; }
    [[nodiscard]] std::uint32_t size() const noexcept { return end - place.begin; }
    [[nodiscard]] wstring_view text() const noexcept { return {store->units() + place.begin, size()}; }
    [[nodiscard]] UnitSum sum() const noexcept { return {size(), ends, beginsLf, endsCr}; }
    /// Whether `next` goes on in the store where this piece ends.
    [[nodiscard]] bool continues(const Piece& next) const noexcept {
        return store && store.get() == next.store.get() && end == next.place.begin;
    }
    /// Sets what is known of the end, which has moved.
    void count() noexcept {
        ends = store->endsBefore(end) - place.rank + (beginsLf && store->dividesEnd(place.begin) ? 1 : 0);
        endsCr = store->isCr(end - 1);
    }
    /// Takes in a piece that continues this one.
    void append(const Piece& next) noexcept {
        ends += next.ends - (endsCr && next.beginsLf ? 1 : 0);
        end = next.end;
        endsCr = next.endsCr;
    }
    /// Keeps the units in front of `middle`, an offset in the store that is in the piece, and returns the
    /// others.
    [[nodiscard]] Piece cut(std::uint32_t middle) noexcept {
        const UnitSum all = sum();
        Piece rest = *this;
        end = middle;
        count();
        rest.place = {middle, place.rank + ends - (beginsLf && store->dividesEnd(place.begin) ? 1 : 0)};
        rest.beginsLf = store->isLf(middle);
        rest.ends = static_cast<std::uint32_t>(all.ends) - ends + (endsCr && rest.beginsLf ? 1 : 0);
        return rest;
    }
};

} // namespace core::detail
