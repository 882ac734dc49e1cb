// SPDX-License-Identifier: Apache-2.0
#include "host/library/regex.h"

#include <core/runtime/errors.h>
#include <core/runtime/threads/thread.h>
#include <core/script/text_match.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>

#include <unicode/uregex.h>

#include <algorithm>
#include <limits>
#include <new>

namespace core::script {
namespace {

constexpr std::int32_t kMostSteps = 3000; // of ICU's, a few milliseconds each

struct Closes {
    void operator()(URegularExpression* regex) const noexcept { uregex_close(regex); }
};

std::int32_t length_of(wstring_view text) {
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        throw_error<ConverterException>(messages::kStringTooLong);
    return static_cast<std::int32_t>(text.size());
}

/// Asked by ICU at each of its steps.
UBool goes_on(const void*, std::int32_t) noexcept {
    try {
        Thread::check();
        return true;
    } catch (const ThreadDeath&) { // thrown again when ICU has returned
        return false;
    }
}

void require(UErrorCode code) {
    if (code == U_REGEX_STOPPED_BY_CALLER)
        Thread::check();
    if (code == U_REGEX_TIME_OUT || code == U_REGEX_STACK_OVERFLOW)
        throw_error<ContextException>("IDS_SCRIPT_REGEX_TOO_LONG");
    if (code == U_MEMORY_ALLOCATION_ERROR)
        throw std::bad_alloc();
    if (U_FAILURE(code))
        throw_error<ContextException>("IDS_SCRIPT_REGEX_GROUP");
}

} // namespace

struct Regex::Impl {
    std::unique_ptr<URegularExpression, Closes> regex;
    wstring_view text;

    [[nodiscard]] std::size_t edge(std::int32_t (*ask)(URegularExpression*, std::int32_t, UErrorCode*),
                                   std::int32_t group) const {
        UErrorCode code = U_ZERO_ERROR;
        const std::int32_t offset = ask(regex.get(), group, &code);
        return offset < 0 ? wstring_view::npos : static_cast<std::size_t>(offset);
    }
};

Regex::Regex(wstring_view pattern, wstring_view text) : impl_(std::make_unique<Impl>()) {
    UErrorCode code = U_ZERO_ERROR;
    UParseError place{};
    impl_->regex.reset(uregex_open(pattern.data(), length_of(pattern), 0, &place, &code));
    if (code == U_MEMORY_ALLOCATION_ERROR)
        throw std::bad_alloc();
    if (U_FAILURE(code)) {
        throw_error<ContextException>("IDS_SCRIPT_REGEX_MALFORMED",
                                      {wstring(pattern), string_intto(std::max(place.line, 1)),
                                       string_intto(std::max(place.offset, 0) + 1)});
    }
    impl_->text = text;
    uregex_setTimeLimit(impl_->regex.get(), kMostSteps, &code);
    uregex_setMatchCallback(impl_->regex.get(), &goes_on, nullptr, &code);
    uregex_setText(impl_->regex.get(), text.data(), length_of(text), &code);
    require(code);
}

Regex::~Regex() = default;

bool Regex::find(std::size_t from) {
    UErrorCode code = U_ZERO_ERROR;
    const bool found = from <= impl_->text.size() &&
                       uregex_find(impl_->regex.get(), static_cast<std::int32_t>(from), &code) != 0;
    require(code);
    return found;
}

bool Regex::next() {
    UErrorCode code = U_ZERO_ERROR;
    const bool found = uregex_findNext(impl_->regex.get(), &code) != 0;
    require(code);
    return found;
}

std::size_t Regex::begin() const {
    return impl_->edge(uregex_start, 0);
}

std::size_t Regex::end() const {
    return impl_->edge(uregex_end, 0);
}

GenericValue Regex::match() const {
    UErrorCode code = U_ZERO_ERROR;
    const std::int32_t count = uregex_groupCount(impl_->regex.get(), &code);
    require(code);
    std::vector<Value> groups;
    for (std::int32_t group = 1; group <= count; ++group) {
        const std::size_t first = impl_->edge(uregex_start, group);
        const std::size_t last = impl_->edge(uregex_end, group);
        groups.push_back(first == wstring_view::npos ? Value()
                                                     : Value(impl_->text.substr(first, last - first)));
    }
    return create_text_match(impl_->text.substr(begin(), end() - begin()), begin() + 1, std::move(groups));
}

wstring Regex::replaced(wstring_view replacement) {
    UErrorCode code = U_ZERO_ERROR;
    const std::int32_t given = length_of(replacement);
    const std::int32_t count =
        uregex_replaceAll(impl_->regex.get(), replacement.data(), given, nullptr, 0, &code);
    if (code == U_BUFFER_OVERFLOW_ERROR || code == U_STRING_NOT_TERMINATED_WARNING)
        code = U_ZERO_ERROR;
    require(code);
    wstring result(static_cast<std::size_t>(count), u'\0');
    if (count > 0)
        uregex_replaceAll(impl_->regex.get(), replacement.data(), given, result.data(), count, &code);
    require(code);
    return result;
}

} // namespace core::script
