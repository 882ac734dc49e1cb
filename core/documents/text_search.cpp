// SPDX-License-Identifier: Apache-2.0
#include "core/documents/snapshot_utext.h"

#include <core/documents/errors.h>
#include <core/documents/text_search.h>
#include <core/runtime/threads/thread.h>
#include <core/strings/integer_text.h>

#include <unicode/uregex.h>

#include <algorithm>
#include <limits>
#include <new>

namespace core {
namespace {

constexpr std::int32_t kMostSteps = 3000; // of ICU's for one match, a few milliseconds each

struct ClosesRegex {
    void operator()(URegularExpression* regex) const noexcept { uregex_close(regex); }
};
struct ClosesText {
    void operator()(UText* text) const noexcept { utext_close(text); }
};

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
    if (code == U_MEMORY_ALLOCATION_ERROR)
        throw std::bad_alloc();
    if (U_FAILURE(code))
        throw_error<DocumentException>(messages::kTextQueryTooLong);
}

/// The pattern that matches a text literally.
[[nodiscard]] wstring literal_pattern(wstring_view text) {
    constexpr wstring_view kSpecial = u"\\^$.|?*+()[]{}-&#\"'~!<>=:,/ ";
    wstring pattern;
    for (const wchar unit : text) {
        if (kSpecial.find(unit) != wstring_view::npos)
            pattern += u'\\';
        pattern += unit;
    }
    return pattern;
}

} // namespace

class TextSearch::Engine {
  public:
    Engine(const TextSnapshot& text, std::uint64_t from) noexcept : text_(text), at_(from) {}
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    virtual ~Engine() = default;
    virtual std::optional<TextRange> next() = 0;
    [[nodiscard]] virtual wstring expand(wstring_view replacement) const { return wstring(replacement); }

  protected:
    TextSnapshot text_;
    std::uint64_t at_; ///< where the search goes on
};

class TextSearch::UnitEngine final : public Engine {
  public:
    UnitEngine(const TextSnapshot& text, wstring_view wanted, std::uint64_t from)
        : Engine(text, from), wanted_(wanted) {}

    std::optional<TextRange> next() override {
        const std::uint64_t size = text_.size();
        while (at_ + wanted_.size() <= size) {
            wstring_view units = text_.chunk(at_);
            if (units.size() < wanted_.size()) { // the match may go on in the next chunk
                const std::uint64_t joined = std::max<std::uint64_t>(wanted_.size() * 2, kJoined);
                window_ = text_.text({at_, std::min(size, at_ + joined)});
                units = window_;
            }
            if (const std::size_t found = units.find(wanted_); found != wstring_view::npos) {
                const TextRange range{at_ + found, at_ + found + wanted_.size()};
                at_ = range.end;
                return range;
            }
            at_ += units.size() - wanted_.size() + 1;
        }
        return std::nullopt;
    }

  private:
    static constexpr std::uint64_t kJoined = 512;
    wstring wanted_;
    wstring window_;
};

class TextSearch::RegexEngine final : public Engine {
  public:
    /// With `literal` the pattern is a quoted text, found in any case, and a replacement has no groups.
    RegexEngine(const TextSnapshot& text, const wstring& pattern, bool literal, std::uint64_t from)
        : Engine(text, from), literal_(literal) {
        UErrorCode code = U_ZERO_ERROR;
        UParseError place{};
        if (pattern.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
            throw_error<DocumentException>(messages::kTextQueryTooLong);
        const std::uint32_t flags =
            UREGEX_MULTILINE | (literal ? std::uint32_t{UREGEX_CASE_INSENSITIVE} : 0U);
        regex_.reset(
            uregex_open(pattern.data(), static_cast<std::int32_t>(pattern.size()), flags, &place, &code));
        if (code == U_MEMORY_ALLOCATION_ERROR)
            throw std::bad_alloc();
        if (U_FAILURE(code))
            throw_error<DocumentException>(messages::kTextQueryMalformed,
                                           {pattern, string_intto(std::max(place.offset, 0) + 1)});
        const std::unique_ptr<UText, ClosesText> units(detail::open_snapshot(text_, code));
        require(code);
        uregex_setTimeLimit(regex_.get(), kMostSteps, &code);
        uregex_setMatchCallback(regex_.get(), &goes_on, nullptr, &code);
        uregex_setUText(regex_.get(), units.get(), &code); // which makes a shallow copy of it
        require(code);
    }

    std::optional<TextRange> next() override {
        UErrorCode code = U_ZERO_ERROR;
        // The first search goes by the offset; later ones know themselves how to pass an empty match.
        const bool found = started_ ? uregex_findNext(regex_.get(), &code) != 0
                                    : uregex_find64(regex_.get(), static_cast<std::int64_t>(at_), &code) != 0;
        started_ = true;
        require(code);
        if (!found)
            return std::nullopt;
        return group(0);
    }

    [[nodiscard]] wstring expand(wstring_view replacement) const override {
        if (literal_)
            return Engine::expand(replacement);
        wstring text;
        for (std::size_t i = 0; i < replacement.size(); ++i) {
            const wchar unit = replacement[i];
            if (unit == u'\\' && i + 1 < replacement.size()) {
                text += replacement[++i];
            } else if (unit != u'$') {
                text += unit;
            } else {
                const std::size_t first = i + 1;
                std::int32_t number = 0;
                const std::int32_t count = groups();
                while (i + 1 < replacement.size() && isDigit(replacement[i + 1]) &&
                       (i + 1 == first || number * 10 + digit(replacement[i + 1]) <= count))
                    number = number * 10 + digit(replacement[++i]);
                if (i + 1 == first || number > count)
                    throw_error<DocumentException>(messages::kTextReplacement, {wstring(replacement)});
                text += text_.text(group(number));
            }
        }
        return text;
    }

  private:
    [[nodiscard]] static bool isDigit(wchar unit) noexcept { return unit >= u'0' && unit <= u'9'; }
    [[nodiscard]] static std::int32_t digit(wchar unit) noexcept { return unit - u'0'; }

    [[nodiscard]] std::int32_t groups() const {
        UErrorCode code = U_ZERO_ERROR;
        const std::int32_t count = uregex_groupCount(regex_.get(), &code);
        require(code);
        return count;
    }
    /// The range of a group; an empty one for a group that took no part.
    [[nodiscard]] TextRange group(std::int32_t number) const {
        UErrorCode code = U_ZERO_ERROR;
        const std::int64_t begin = uregex_start64(regex_.get(), number, &code);
        const std::int64_t end = uregex_end64(regex_.get(), number, &code);
        require(code);
        if (begin < 0)
            return {};
        return {static_cast<std::uint64_t>(begin), static_cast<std::uint64_t>(end)};
    }

    std::unique_ptr<URegularExpression, ClosesRegex> regex_; // refers to the snapshot of the base
    bool literal_;
    bool started_ = false;
};

TextSearch::TextSearch(const TextSnapshot& text, const TextQuery& query, std::uint64_t from) {
    static_cast<void>(text.chunk(from)); // throws for an offset behind the end
    if (query.text.empty())
        throw_error<DocumentException>(messages::kTextQueryEmpty);
    if (query.kind == TextQueryKind::exact)
        engine_ = std::make_unique<UnitEngine>(text, query.text, from);
    else if (query.kind == TextQueryKind::ignoreCase)
        engine_ = std::make_unique<RegexEngine>(text, literal_pattern(query.text), true, from);
    else
        engine_ = std::make_unique<RegexEngine>(text, query.text, false, from);
}

TextSearch::~TextSearch() = default;
TextSearch::TextSearch(TextSearch&& other) noexcept = default;
TextSearch& TextSearch::operator=(TextSearch&& other) noexcept = default;

std::optional<TextRange> TextSearch::next() {
    return engine_->next();
}

wstring TextSearch::expand(wstring_view replacement) const {
    return engine_->expand(replacement);
}

std::optional<TextRange> find(const TextSnapshot& text, const TextQuery& query, std::uint64_t from) {
    return TextSearch(text, query, from).next();
}

} // namespace core
