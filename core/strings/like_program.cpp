// SPDX-License-Identifier: Apache-2.0
#include "core/strings/like_program.h"

#include "core/strings/folding.h"

#include <algorithm>

namespace core {
namespace {

struct ExactUnits {
    [[nodiscard]] wchar operator()(wchar c) const noexcept { return c; }
};

struct FoldedUnits {
    const FoldTable& table = FoldTable::instance();
    [[nodiscard]] wchar operator()(wchar c) const noexcept { return table.simple(c); }
};

} // namespace

/// Matches a text whose units are seen through `Fold`.
template <class Fold>
class LikeProgram::Matcher {
  public:
    explicit Matcher(const LikeProgram& program) noexcept : program_(program) {}

    [[nodiscard]] bool matches(wstring_view text) const noexcept {
        const auto& runs = program_.runs_;
        const Run& head = runs.front();
        const Run& tail = runs.back();
        if (runs.size() == 1)
            return text.size() == head.length && matchesAt(head, text.data());
        if (text.size() < head.length || text.size() - head.length < tail.length)
            return false;
        const wchar* at = text.data();
        const wchar* end = at + text.size();
        if (!matchesAt(head, at) || !matchesAt(tail, end - tail.length))
            return false;
        at += head.length;
        end -= tail.length;
        for (auto run = runs.begin() + 1; run != runs.end() - 1; ++run) {
            at = find(*run, at, end);
            if (at == nullptr)
                return false;
            at += run->length;
        }
        return true;
    }

  private:
    [[nodiscard]] bool matchesAt(const Run& run, const wchar* text) const noexcept {
        const wchar* const units = program_.units_.data() + run.first;
        if (run.literal)
            return std::equal(units, units + run.length, text,
                              [this](wchar unit, wchar c) { return unit == fold_(c); });
        const Element* const elements = program_.elements_.data() + run.first;
        for (std::size_t i = 0; i < run.length; ++i) {
            const Element element = elements[i];
            const bool matching = element == kUnit  ? units[i] == fold_(text[i])
                                  : element == kAny ? true
                                                    : program_.sets_[element - kSet].matches(fold_(text[i]));
            if (!matching)
                return false;
        }
        return true;
    }

    // The first position in [at, end) where `run` matches; null if none exists.
    [[nodiscard]] const wchar* find(const Run& run, const wchar* at, const wchar* end) const noexcept {
        if (static_cast<std::size_t>(end - at) < run.length)
            return nullptr;
        const wchar* const stop = end - run.length + 1;
        for (; at != stop; ++at) {
            if (run.hasUnit) {
                const wchar* const near =
                    find_pair(run.pair, at + run.near, static_cast<std::size_t>(stop - at));
                if (near == nullptr)
                    return nullptr;
                at = near - run.near;
            }
            if (matchesAt(run, at))
                return at;
        }
        return nullptr;
    }

    const LikeProgram& program_;
    Fold fold_;
};

bool LikeProgram::matches(wstring_view text) const noexcept {
    return letterCase_ == LikeCase::exact ? Matcher<ExactUnits>(*this).matches(text)
                                          : Matcher<FoldedUnits>(*this).matches(text);
}

} // namespace core
