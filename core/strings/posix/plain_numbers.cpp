// SPDX-License-Identifier: Apache-2.0
#include "core/strings/plain_numbers.h"

#include <locale.h>

namespace core {
namespace {

locale_t plain() noexcept {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

} // namespace

PlainNumbers::PlainNumbers() noexcept : before_(uselocale(plain())) {}

PlainNumbers::~PlainNumbers() {
    uselocale(static_cast<locale_t>(before_));
}

} // namespace core
