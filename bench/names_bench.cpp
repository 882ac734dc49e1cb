// SPDX-License-Identifier: Apache-2.0
// Names and patterns: comparison beside QString, hashing beside ICU's folding with absl's hash, LIKE beside
// compiled PCRE2 expressions and SQLite's LIKE. Every benchmark goes round 64 texts.
#define PCRE2_CODE_UNIT_WIDTH 16
#include <core/locales.h>
#include <core/runtime/utf8.h>
#include <core/strings.h>

#include <absl/hash/hash.h>
#include <benchmark/benchmark.h>
#include <pcre2.h>
#include <sqlite3.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <QString>
#include <random>
#include <string>
#include <vector>

namespace {

using core::wchar;
using core::wstring;
using core::wstring_view;

constexpr std::size_t kCount = 64; // a power of two

std::vector<wstring> random_words(wstring_view letters, std::size_t length) {
    std::mt19937 random(1);
    std::vector<wstring> words(kCount);
    for (wstring& word : words)
        for (std::size_t i = 0; i < length; ++i)
            word += letters[random() % letters.size()];
    return words;
}

constexpr wstring_view kLatin = u"abcdefghijklmnopqrstuvwxyz";
constexpr wstring_view kCyrillic = u"абвгдежзийклмнопрстуфхцчшщъыьэюя";

template <class Work>
void each(benchmark::State& state, Work work) {
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(work(i));
        i = (i + 1) % kCount;
    }
}

// Comparison of 12 letters.

struct Pairs {
    std::vector<wstring> words;
    std::vector<wstring> others;
    Pairs(wstring_view letters, bool otherCase) : words(random_words(letters, 12)) {
        for (const wstring& word : words)
            others.push_back(otherCase ? core::to_upper(word) : word);
    }
};

void compare_core(benchmark::State& state, wstring_view letters, bool otherCase) {
    const Pairs pairs(letters, otherCase);
    each(state, [&](std::size_t i) { return core::compare_nocase(pairs.words[i], pairs.others[i]); });
}

void compare_qt(benchmark::State& state, wstring_view letters, bool otherCase) {
    const Pairs pairs(letters, otherCase);
    std::vector<QString> words;
    std::vector<QString> others;
    for (std::size_t i = 0; i < kCount; ++i) {
        words.push_back(QString::fromStdU16String(pairs.words[i]));
        others.push_back(QString::fromStdU16String(pairs.others[i]));
    }
    each(state, [&](std::size_t i) { return words[i].compare(others[i], Qt::CaseInsensitive); });
}

BENCHMARK_CAPTURE(compare_core, cyrillic_other_case, kCyrillic, true);
BENCHMARK_CAPTURE(compare_qt, cyrillic_other_case, kCyrillic, true);
BENCHMARK_CAPTURE(compare_core, latin_other_case, kLatin, true);
BENCHMARK_CAPTURE(compare_qt, latin_other_case, kLatin, true);
BENCHMARK_CAPTURE(compare_core, equal, kCyrillic, false);
BENCHMARK_CAPTURE(compare_qt, equal, kCyrillic, false);

// Hash of 12 letters, of which some are upper-case.

std::vector<wstring> titles(wstring_view letters) {
    std::vector<wstring> words = random_words(letters, 12);
    for (wstring& word : words)
        word[0] = core::to_upper(word[0]);
    return words;
}

void hash_core(benchmark::State& state, wstring_view letters) {
    const std::vector<wstring> words = titles(letters);
    each(state, [&](std::size_t i) { return core::hash_nocase(words[i]); });
}

void hash_icu_absl(benchmark::State& state, wstring_view letters) {
    const std::vector<wstring> words = titles(letters);
    each(state, [&](std::size_t i) {
        wchar folded[512];
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length =
            u_strFoldCase(folded, 512, words[i].data(), static_cast<std::int32_t>(words[i].size()),
                          U_FOLD_CASE_DEFAULT, &status);
        return absl::HashOf(wstring_view(folded, static_cast<std::size_t>(length)));
    });
}

BENCHMARK_CAPTURE(hash_core, cyrillic, kCyrillic);
BENCHMARK_CAPTURE(hash_icu_absl, cyrillic, kCyrillic);
BENCHMARK_CAPTURE(hash_core, latin, kLatin);
BENCHMARK_CAPTURE(hash_icu_absl, latin, kLatin);

void valid_name_core(benchmark::State& state, wstring_view letters) {
    const std::vector<wstring> words = titles(letters);
    each(state, [&](std::size_t i) { return core::is_valid_name(words[i]); });
}
BENCHMARK_CAPTURE(valid_name_core, cyrillic, kCyrillic);

// LIKE over lines of about 100 letters, put together from the words of a trading
// company. Every fourth matches.

struct Question {
    wstring_view like;
    wstring_view regex; ///< the same as an expression
    wstring_view
        sample; ///< what every fourth line holds; at its beginning if the pattern begins with a letter
};
constexpr Question kPrefix = {u"накладная%", u"^накладная", u"накладная"};
constexpr Question kContains = {u"%поступление%", u"поступление", u"поступление"};
constexpr Question kMixed = {u"%order_0%item%2024%", u"order.0.*item.*2024", u"order 07 item 3 of 2024"};

const std::vector<wstring> kRussian = {u"поставка", u"договор",   u"Покупатель", u"товар", u"склад",
                                       u"по",       u"остаток",   u"продажа",    u"счёт",  u"на",
                                       u"оплата",   u"Поставщик", u"заказ",      u"от",    u"количество",
                                       u"цена",     u"сумма",     u"и"};
const std::vector<wstring> kEnglish = {
    u"delivery", u"contract", u"Customer", u"goods", u"store", u"of",       u"balance", u"sale",  u"invoice",
    u"to",       u"payment",  u"Supplier", u"or",    u"from",  u"quantity", u"price",   u"total", u"and"};

std::vector<wstring> lines(const Question& question, const std::vector<wstring>& words) {
    std::mt19937 random(1);
    std::vector<wstring> lines(kCount);
    for (std::size_t i = 0; i < kCount; ++i) {
        wstring& line = lines[i];
        const std::size_t sample = i % 4 != 0 ? 1000 : question.like[0] == u'%' ? 60 : 0;
        while (line.size() < 100) {
            const bool here = line.size() >= sample && line.find(question.sample) == wstring::npos;
            line += here ? wstring(question.sample) : words[random() % words.size()];
            line += u' ';
        }
    }
    return lines;
}

void like_core(benchmark::State& state, const Question& question, const std::vector<wstring>& words,
               core::LikeCase letterCase) {
    const std::vector<wstring> texts = lines(question, words);
    const core::LikePattern pattern(question.like, 0, letterCase);
    each(state, [&](std::size_t i) { return pattern.matches(texts[i]); });
}

void like_core_call(benchmark::State& state, const Question& question, const std::vector<wstring>& words) {
    const std::vector<wstring> texts = lines(question, words);
    each(state, [&](std::size_t i) { return core::compare_nocase_like(texts[i], question.like); });
}

void like_pcre(benchmark::State& state, const Question& question, const std::vector<wstring>& words,
               core::LikeCase letterCase) {
    const std::vector<wstring> texts = lines(question, words);
    int error = 0;
    PCRE2_SIZE offset = 0;
    const std::uint32_t options =
        PCRE2_DOTALL | (letterCase == core::LikeCase::ignore ? PCRE2_CASELESS | PCRE2_UCP : 0U);
    pcre2_code* const code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(question.regex.data()),
                                           question.regex.size(), options, &error, &offset, nullptr);
    pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
    pcre2_match_data* const match = pcre2_match_data_create_from_pattern(code, nullptr);
    each(state, [&](std::size_t i) {
        return pcre2_jit_match(code, reinterpret_cast<PCRE2_SPTR>(texts[i].data()), texts[i].size(), 0, 0,
                               match, nullptr) >= 0;
    });
    pcre2_match_data_free(match);
    pcre2_code_free(code);
}

void like_sqlite(benchmark::State& state, const Question& question, const std::vector<wstring>& words) {
    std::vector<std::string> texts;
    for (const wstring& line : lines(question, words))
        texts.push_back(core::to_utf8(line));
    const std::string pattern = core::to_utf8(question.like);
    each(state, [&](std::size_t i) { return sqlite3_strlike(pattern.c_str(), texts[i].c_str(), 0) == 0; });
}

BENCHMARK_CAPTURE(like_core, prefix_exact, kPrefix, kRussian, core::LikeCase::exact);
BENCHMARK_CAPTURE(like_pcre, prefix_exact, kPrefix, kRussian, core::LikeCase::exact);
BENCHMARK_CAPTURE(like_core, prefix_nocase, kPrefix, kRussian, core::LikeCase::ignore);
BENCHMARK_CAPTURE(like_pcre, prefix_nocase, kPrefix, kRussian, core::LikeCase::ignore);
BENCHMARK_CAPTURE(like_core, contains_exact, kContains, kRussian, core::LikeCase::exact);
BENCHMARK_CAPTURE(like_pcre, contains_exact, kContains, kRussian, core::LikeCase::exact);
BENCHMARK_CAPTURE(like_core, contains_nocase, kContains, kRussian, core::LikeCase::ignore);
BENCHMARK_CAPTURE(like_pcre, contains_nocase, kContains, kRussian, core::LikeCase::ignore);
BENCHMARK_CAPTURE(like_core, mixed_nocase, kMixed, kEnglish, core::LikeCase::ignore);
BENCHMARK_CAPTURE(like_core_call, mixed_nocase, kMixed, kEnglish);
BENCHMARK_CAPTURE(like_sqlite, mixed_nocase, kMixed, kEnglish);

} // namespace
