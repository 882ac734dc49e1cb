// SPDX-License-Identifier: Apache-2.0
#include "core/strings/case_variants.h"
#include "core/strings/fold_table.h"
#include "core/strings/scan.h"

#include <core/runtime/utf8.h>
#include <core/strings/like.h>

#include <algorithm>
#include <optional>

namespace core {

/// Turns the text of a pattern into runs of elements.
class LikePattern::Parser {
  public:
    explicit Parser(LikePattern& pattern) : out_(pattern), text_(pattern.pattern_) {}

    void parse() {
        bool afterPercent = false;
        out_.runs_.emplace_back();
        while (at_ < text_.size()) {
            const wchar c = text_[at_++];
            const bool escapes = c == out_.escape_ && c != 0;
            const bool percent = c == u'%' && !escapes;
            if (escapes)
                addUnit(at_ < text_.size() ? text_[at_++] : c);
            else if (percent && !afterPercent)
                startRun();
            else if (c == u'_')
                add(kAny, 0);
            else if (c == u'[')
                addSet();
            else if (!percent)
                addUnit(c);
            afterPercent = percent;
        }
        finishRun();
    }

  private:
    [[nodiscard]] bool ignoresCase() const noexcept { return out_.letterCase_ == LikeCase::ignore; }

    void add(std::uint32_t element, wchar unit) {
        out_.elements_.push_back(element);
        out_.units_.push_back(unit);
    }
    void addUnit(wchar c) { add(kUnit, ignoresCase() ? FoldTable::instance().simple(c) : c); }

    void startRun() {
        finishRun();
        out_.runs_.emplace_back().first = out_.elements_.size();
    }

    void finishRun() {
        Run& run = out_.runs_.back();
        run.length = out_.elements_.size() - run.first;
        const auto elements = out_.elements_.begin() + static_cast<std::ptrdiff_t>(run.first);
        run.literal = std::all_of(elements, out_.elements_.end(), [](auto e) { return e == kUnit; });
        run.anchor = static_cast<std::size_t>(std::find(elements, out_.elements_.end(), kUnit) - elements);
        if (run.anchor == run.length)
            return;
        const wchar unit = out_.units_[run.first + run.anchor];
        if (ignoresCase())
            run.units = CaseVariants::instance().of(unit);
        else
            run.units.fill(unit);
    }

    // The text behind "[", up to and with "]".
    void addSet() {
        Set set;
        if (at_ < text_.size() && text_[at_] == u'^') {
            set.negated = true;
            ++at_;
        }
        while (at_ < text_.size() && text_[at_] != u']') {
            wchar first = text_[at_++];
            wchar last = first;
            if (at_ + 1 < text_.size() && text_[at_] == u'-' && text_[at_ + 1] != u']') {
                last = text_[at_ + 1];
                at_ += 2;
            }
            if (first > last)
                std::swap(first, last);
            set.ranges.emplace_back(first, last);
        }
        ++at_;
        if (ignoresCase())
            addFoldings(set);
        mergeRanges(set);
        add(kSet + static_cast<std::uint32_t>(out_.sets_.size()), 0);
        out_.sets_.push_back(std::move(set));
    }

    static void addFoldings(Set& set) {
        mergeRanges(set); // so that no unit is visited twice, however the set is written
        const auto members = set.ranges;
        for (const auto& [first, last] : members)
            CaseVariants::instance().forEachFolding(
                first, last, [&](wchar folded) { set.ranges.emplace_back(folded, folded); });
    }

    static void mergeRanges(Set& set) {
        auto& ranges = set.ranges;
        std::ranges::sort(ranges);
        std::size_t kept = 0;
        for (const auto& range : ranges) {
            if (kept > 0 && range.first <= ranges[kept - 1].second + 1)
                ranges[kept - 1].second = std::max(ranges[kept - 1].second, range.second);
            else
                ranges[kept++] = range;
        }
        ranges.resize(kept);
        for (const auto& [first, last] : ranges)
            for (unsigned c = first; c <= last && c < 256; ++c)
                set.low[c / 64] |= std::uint64_t{1} << c % 64;
    }

    LikePattern& out_;
    wstring_view text_;
    std::size_t at_ = 0;
};

bool LikePattern::Set::matches(wchar c) const noexcept {
    if (c < 256)
        return ((low[c / 64] >> c % 64 & 1) != 0) != negated;
    const auto after = std::ranges::upper_bound(ranges, c, {}, &std::pair<wchar, wchar>::first);
    return (after != ranges.begin() && c <= std::prev(after)->second) != negated;
}

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
class LikePattern::Matcher {
  public:
    explicit Matcher(const LikePattern& pattern) noexcept : pattern_(pattern) {}

    [[nodiscard]] bool matches(wstring_view text) const noexcept {
        const auto& runs = pattern_.runs_;
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
        // Every element takes exactly one unit, so the first place for a run leaves the most to the next.
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
        const wchar* const units = pattern_.units_.data() + run.first;
        if (run.literal)
            return std::equal(units, units + run.length, text,
                              [this](wchar unit, wchar c) { return unit == fold_(c); });
        const std::uint32_t* const elements = pattern_.elements_.data() + run.first;
        for (std::size_t i = 0; i < run.length; ++i) {
            const std::uint32_t element = elements[i];
            if (element == kUnit ? units[i] != fold_(text[i])
                                 : element != kAny && !pattern_.sets_[element - kSet].matches(fold_(text[i])))
                return false;
        }
        return true;
    }

    // The first place in [at, end) where `run` matches; null if there is none.
    [[nodiscard]] const wchar* find(const Run& run, const wchar* at, const wchar* end) const noexcept {
        if (static_cast<std::size_t>(end - at) < run.length)
            return nullptr;
        const wchar* const last = end - run.length;
        for (;; ++at) {
            if (run.anchor < run.length)
                at = find_one_of(at + run.anchor, last + run.anchor + 1, run.units) - run.anchor;
            if (at > last)
                return nullptr;
            if (matchesAt(run, at))
                return at;
        }
    }

    const LikePattern& pattern_;
    Fold fold_;
};

LikePattern::LikePattern(wstring_view pattern, wchar escape, LikeCase letterCase)
    : pattern_(pattern), escape_(escape), letterCase_(letterCase) {
    Parser(*this).parse();
}

bool LikePattern::matches(wstring_view text) const noexcept {
    return letterCase_ == LikeCase::exact ? Matcher<ExactUnits>(*this).matches(text)
                                          : Matcher<FoldedUnits>(*this).matches(text);
}

namespace {

bool matches_like(wstring_view text, wstring_view pattern, wchar escape, LikeCase letterCase) {
    constexpr std::size_t kLongestKept = 256;
    if (pattern.size() > kLongestKept)
        return LikePattern(pattern, escape, letterCase).matches(text);
    thread_local std::optional<LikePattern> kept;
    if (!kept || kept->pattern() != pattern || kept->escape() != escape || kept->letterCase() != letterCase)
        kept.emplace(pattern, escape, letterCase);
    return kept->matches(text);
}

// A byte above 0x7F is a part of a character and escapes nothing.
wchar wide_escape(char escape) noexcept {
    return (escape & 0x80) == 0 ? static_cast<wchar>(escape) : u'\0';
}

} // namespace

bool compare_like(wstring_view text, wstring_view pattern, wchar escape) {
    return matches_like(text, pattern, escape, LikeCase::exact);
}

bool compare_like(std::string_view text, std::string_view pattern, char escape) {
    return compare_like(from_utf8(text), from_utf8(pattern), wide_escape(escape));
}

bool compare_nocase_like(wstring_view text, wstring_view pattern, wchar escape) {
    return matches_like(text, pattern, escape, LikeCase::ignore);
}

bool compare_nocase_like(std::string_view text, std::string_view pattern, char escape) {
    return compare_nocase_like(from_utf8(text), from_utf8(pattern), wide_escape(escape));
}

} // namespace core
