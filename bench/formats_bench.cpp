// SPDX-License-Identifier: Apache-2.0
// Numbers and dates as users see them: the library beside ICU and QLocale, in German and Russian, over the
// same 1024 values; amounts in words beside libnumbertext.
#include <core/locales.h>

#include <benchmark/benchmark.h>
#include <libnumbertext/Numbertext.hxx>
#include <unicode/decimfmt.h>
#include <unicode/smpdtfmt.h>

#include <QDate>
#include <QLocale>
#include <QString>
#include <memory>
#include <random>
#include <vector>

namespace {

using namespace core;

constexpr std::size_t kCount = 1024; // a power of two

struct Values {
    std::vector<double> numbers;
    std::vector<Numeric> decimals;
    std::vector<wstring> texts;
    std::vector<Date> dates;
    std::vector<QDate> qtDates;
    std::vector<UDate> icuDates;

    Values() {
        std::mt19937_64 random(1);
        const NumericFormat format(u"locale=de; fraction=2");
        for (std::size_t i = 0; i < kCount; ++i) {
            const auto cents = static_cast<std::int64_t>(random() % 10'000'000'000) - 5'000'000'000;
            decimals.push_back(Numeric::fromScaled(cents, 2));
            numbers.push_back(static_cast<double>(cents) / 100);
            texts.push_back(format.format(decimals.back()));
            const auto day = static_cast<int>(random() % 40'000);
            dates.push_back(Date(1950, 1, 1) + DateSpan(day * kTicksPerDay));
            qtDates.push_back(QDate(1950, 1, 1).addDays(day));
            icuDates.push_back((day - 7305.0) * 86'400'000);
        }
    }
};

template <class Work>
void each(benchmark::State& state, Work work) {
    static const Values values;
    std::size_t i = 0;
    for (auto _ : state) {
        work(values, i);
        i = (i + 1) % kCount;
    }
}

std::unique_ptr<icu::NumberFormat> icu_numbers() {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> format(
        icu::NumberFormat::createInstance(icu::Locale("de"), UNUM_DECIMAL, status));
    format->setMinimumFractionDigits(2);
    format->setMaximumFractionDigits(2);
    return format;
}

void number_core(benchmark::State& state) {
    const NumericFormat format(u"locale=de; fraction=2");
    wstring text;
    each(state, [&](const Values& v, std::size_t i) {
        format.format(v.decimals[i], text);
        benchmark::DoNotOptimize(text.data());
    });
}

void number_called(benchmark::State& state) {
    each(state, [&](const Values& v, std::size_t i) {
        benchmark::DoNotOptimize(format_number(v.decimals[i], u"locale=de; fraction=2"));
    });
}

void number_icu(benchmark::State& state) {
    const auto format = icu_numbers();
    each(state, [&](const Values& v, std::size_t i) {
        icu::UnicodeString text;
        benchmark::DoNotOptimize(format->format(v.numbers[i], text).getBuffer());
    });
}

void number_qt(benchmark::State& state) {
    const QLocale locale(QLocale::German);
    each(state, [&](const Values& v, std::size_t i) {
        benchmark::DoNotOptimize(locale.toString(v.numbers[i], 'f', 2));
    });
}

void parse_core(benchmark::State& state) {
    const NumericFormat format(u"locale=de; fraction=2");
    each(state, [&](const Values& v, std::size_t i) {
        Numeric number;
        benchmark::DoNotOptimize(format.parse(v.texts[i], number));
    });
}

void parse_icu(benchmark::State& state) {
    const auto format = icu_numbers();
    each(state, [&](const Values& v, std::size_t i) {
        UErrorCode status = U_ZERO_ERROR;
        icu::Formattable number;
        format->parse(icu::UnicodeString(false, v.texts[i].data(), static_cast<int>(v.texts[i].size())),
                      number, status);
        benchmark::DoNotOptimize(number);
    });
}

void parse_qt(benchmark::State& state) {
    const QLocale locale(QLocale::German);
    each(state, [&](const Values& v, std::size_t i) {
        const QString text = QString::fromRawData(reinterpret_cast<const QChar*>(v.texts[i].data()),
                                                  static_cast<int>(v.texts[i].size()));
        benchmark::DoNotOptimize(locale.toDouble(text));
    });
}

void date_core(benchmark::State& state) {
    const DateFormat format(u"locale=ru; date='d MMMM yyyy'");
    wstring text;
    each(state, [&](const Values& v, std::size_t i) {
        format.format(v.dates[i], text, DatePattern::date);
        benchmark::DoNotOptimize(text.data());
    });
}

void date_icu(benchmark::State& state) {
    UErrorCode status = U_ZERO_ERROR;
    icu::SimpleDateFormat format(u"d MMMM yyyy", icu::Locale("ru"), status);
    format.setTimeZone(*icu::TimeZone::getGMT());
    each(state, [&](const Values& v, std::size_t i) {
        icu::UnicodeString text;
        benchmark::DoNotOptimize(format.format(v.icuDates[i], text).getBuffer());
    });
}

void date_qt(benchmark::State& state) {
    const QLocale locale(QLocale::Russian);
    const QString pattern = QStringLiteral("d MMMM yyyy");
    each(state, [&](const Values& v, std::size_t i) {
        benchmark::DoNotOptimize(locale.toString(v.qtDates[i], pattern));
    });
}

void date_parsed(benchmark::State& state) {
    const DateFormat format(u"locale=ru; date='d MMMM yyyy'");
    each(state, [&](const Values&, std::size_t) {
        Date date;
        benchmark::DoNotOptimize(format.parse(u"29 февраля 2024", date, nullptr, DatePattern::date));
    });
}

void words_core(benchmark::State& state) {
    const WordsFormat format(u"locale=ru; currency=RUB", Locale("ru"));
    each(state, [&](const Values& v, std::size_t i) {
        benchmark::DoNotOptimize(format.format(v.decimals[i]).data());
    });
}

void words_numbertext(benchmark::State& state) {
    Numbertext speller;
    speller.set_prefix("/usr/share/libnumbertext/");
    if (!speller.load("ru")) {
        state.SkipWithError("libnumbertext has no rules for Russian");
        return;
    }
    each(state, [&](const Values& v, std::size_t i) {
        std::string text = "RUB " + std::to_string(v.numbers[i]);
        text.resize(text.size() - 4); // two digits of the fraction
        speller.numbertext(text, "ru");
        benchmark::DoNotOptimize(text.data());
    });
}

BENCHMARK(number_core)->Name("formats/number/core");
BENCHMARK(number_called)->Name("formats/number/core, by its string");
BENCHMARK(number_icu)->Name("formats/number/icu");
BENCHMARK(number_qt)->Name("formats/number/qt");
BENCHMARK(parse_core)->Name("formats/parse/core");
BENCHMARK(parse_icu)->Name("formats/parse/icu");
BENCHMARK(parse_qt)->Name("formats/parse/qt");
BENCHMARK(date_core)->Name("formats/date/core");
BENCHMARK(date_icu)->Name("formats/date/icu");
BENCHMARK(date_qt)->Name("formats/date/qt");
BENCHMARK(date_parsed)->Name("formats/date parsed/core");
BENCHMARK(words_core)->Name("formats/words/core");
BENCHMARK(words_numbertext)->Name("formats/words/numbertext");

} // namespace
