// SPDX-License-Identifier: Apache-2.0
#include "core/lists/float_token.h"

namespace core::detail {

FloatToken::Unit FloatToken::classify(int unit) noexcept {
    if (unit >= u'0' && unit <= u'9')
        return Unit::digit;
    switch (unit) {
    case u'-':
        return Unit::sign;
    case u'.':
        return Unit::point;
    case u'e':
    case u'E':
        return Unit::mark;
    case u'\t':
    case u'\n':
    case u'\r':
    case u' ':
        return Unit::space;
    default:
        return Unit::other;
    }
}

FloatToken::State FloatToken::after(State state, Unit unit) noexcept {
    using enum State;
    static constexpr State kAfter[][6] = {
        // digit, sign, point, exponent mark, space, other
        {integer, afterSign, fraction, fail, fail, fail},         // start
        {integer, fail, fraction, fail, fail, fail},              // afterSign
        {integer, accept, fraction, exponent, accept, accept},    // integer
        {fraction, accept, accept, exponent, accept, accept},     // fraction
        {exponentDigits, exponentSign, fail, fail, fail, fail},   // exponent
        {exponentDigits, fail, fail, fail, fail, fail},           // exponentSign
        {exponentDigits, accept, accept, accept, accept, accept}, // exponentDigits
    };
    return kAfter[static_cast<std::size_t>(state)][static_cast<std::size_t>(unit)];
}

FloatToken::Step FloatToken::next(int unit) noexcept {
    const State state = after(state_, classify(unit));
    if (state == State::accept)
        return Step::accept;
    if (state == State::fail || length_ == kMaxLength)
        return Step::fail;
    state_ = state;
    ++length_;
    return Step::take;
}

} // namespace core::detail
