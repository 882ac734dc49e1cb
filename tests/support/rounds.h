// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstdlib>

/// What tests ask of the system that it is run on.
namespace support {

/// CORE_NIGHTLY: the slow tests run long only at night.
inline bool is_nightly() {
    return std::getenv("CORE_NIGHTLY") != nullptr;
}

/// How often a long test does its work: `usual`, `nightly` with CORE_NIGHTLY, and a tenth of the usual with
/// CORE_SLOW, which is set where an emulator runs the tests.
template <std::integral Number>
Number rounds(Number usual, Number nightly) {
    if (is_nightly())
        return nightly;
    return std::getenv("CORE_SLOW") != nullptr ? (usual + 9) / 10 : usual;
}

/// The same for a test that a night makes no longer.
template <std::integral Number>
Number rounds(Number usual) {
    return rounds(usual, usual);
}

} // namespace support
