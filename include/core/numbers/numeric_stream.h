// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers/numeric.h>

#include <istream>
#include <ostream>

/// Numbers in expressions with streams.
namespace core {

inline wostream& operator<<(wostream& out, const Numeric& number) {
    return number.toStream(out);
}

/// Sets the fail bit, and leaves `number` as it was, when no number stands there.
inline wistream& operator>>(wistream& in, Numeric& number) {
    if (!number.fromStream(in)) {
        in.setstate(std::ios_base::failbit);
    }
    return in;
}

} // namespace core
