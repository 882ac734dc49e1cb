// SPDX-License-Identifier: Apache-2.0
// Two numbers from text: what is read must be written and read back alike, and arithmetic on numbers of
// moderate size must agree with an independent model.
#include <core/numbers.h>

#include <boost/multiprecision/cpp_int.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using boost::multiprecision::cpp_int;
using core::Numeric;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

cpp_int power(std::int64_t limbs) {
    return pow(cpp_int(1'000'000'000), static_cast<unsigned>(limbs));
}

cpp_int scaled(const Numeric& n, std::int64_t scale) {
    cpp_int value = 0;
    for (std::size_t i = n.limbs().size(); i-- > 0;) {
        value = value * 1'000'000'000 + n.limbs()[i];
    }
    value *= power(scale - n.fractionLimbs());
    return n.sign() < 0 ? cpp_int(-value) : value;
}

void check_text(const Numeric& n) {
    const core::wstring text = n.toString();
    const core::wchar* end = nullptr;
    require(Numeric::fromString(text, &end) == n);
    require(end == text.data() + text.size());
}

void check_arithmetic(const Numeric& a, const Numeric& b) {
    const std::int64_t scale = std::max({a.fractionLimbs(), b.fractionLimbs(), 0});
    const cpp_int x = scaled(a, scale);
    const cpp_int y = scaled(b, scale);
    require(a.compare(b) == (x < y ? -1 : x > y ? 1 : 0));
    require(scaled(a + b, scale) == x + y);
    require(scaled(a - b, scale) == x - y);
    require(scaled(a * b, 2 * scale) == x * y);
    if (b != 0) {
        // The quotient is at most half a unit of its last limb away.
        const std::int64_t last = std::max(a.fractionLimbs(), 0) - b.fractionLimbs() +
                                  static_cast<std::int64_t>(b.limbs().size()) + 2;
        const std::int64_t places = std::max<std::int64_t>(last, 0);
        const cpp_int error = x * power(places) - scaled(a / b, places) * y;
        require(abs(error) * 2 <= abs(y) * power(places - last));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const char* end = nullptr;
    const Numeric a = Numeric::fromString(text, &end);
    require(end >= text.data() && end <= text.data() + text.size());
    const Numeric b = Numeric::fromString(text.substr(static_cast<std::size_t>(end - text.data())));
    check_text(a);
    check_text(b);
    if (size <= 2000) {
        check_arithmetic(a, b);
    }
    return 0;
}
