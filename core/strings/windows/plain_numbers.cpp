// SPDX-License-Identifier: Apache-2.0
#include "core/strings/plain_numbers.h"

#include <locale.h>

#include <new>
#include <string>

namespace core {
namespace {

struct Before {
    int mode;         // whether the thread had a locale of its own
    std::string name; // of the locale for numbers
};

} // namespace

PlainNumbers::PlainNumbers() noexcept : before_(nullptr) {
    const int mode = _configthreadlocale(_ENABLE_PER_THREAD_LOCALE);
    try {
        before_ = new Before{mode, setlocale(LC_NUMERIC, nullptr)};
        setlocale(LC_NUMERIC, "C");
    } catch (const std::bad_alloc&) { // the numbers are written as the program has it
        _configthreadlocale(mode);
    }
}

PlainNumbers::~PlainNumbers() {
    const auto* const before = static_cast<Before*>(before_);
    if (before == nullptr)
        return;
    setlocale(LC_NUMERIC, before->name.c_str()); // which leaving the thread's own locale alone does not do
    _configthreadlocale(before->mode);
    delete before;
}

} // namespace core
