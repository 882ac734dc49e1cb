// SPDX-License-Identifier: Apache-2.0
// Dates beside std::chrono (split, build, months) and strftime (text), over the same 1024 random moments.
#include <core/dates.h>

#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <ctime>
#include <random>
#include <vector>

namespace {

using namespace std::chrono;
using core::Date;
using Seconds = sys_seconds;

constexpr std::size_t kCount = 1024; // a power of two

/// Moments of the years 1900 to 2100, in every form that a benchmark starts from.
struct Moments {
    std::vector<Date> dates;
    std::vector<Seconds> points;
    std::vector<std::tm> calendar;
    std::vector<std::array<char, Date::kTextLength>> texts;

    Moments() {
        std::mt19937_64 random(1);
        const auto first = sys_days(year(1900) / 1 / 1);
        const auto span = static_cast<std::uint64_t>((sys_days(year(2100) / 1 / 1) - first) / seconds(1));
        for (std::size_t i = 0; i < kCount; ++i) {
            const Seconds point = first + seconds(random() % span);
            const std::time_t time = point.time_since_epoch().count();
            points.push_back(point);
            dates.push_back(Date(1970, 1, 1) + core::DateSpan(time * core::kTicksPerSecond));
            calendar.emplace_back();
            gmtime_r(&time, &calendar.back());
            texts.emplace_back();
            dates.back().toString(texts.back().data());
        }
    }
};

/// Runs `work` on one moment after the other.
template <class Work>
void each(benchmark::State& state, Work work) {
    static const Moments moments;
    std::size_t i = 0;
    for (auto _ : state) {
        work(moments, i);
        i = (i + 1) % kCount;
    }
}

struct Parts {
    int year, month, day, hour, minute, second;
};

void split_core(benchmark::State& state) {
    each(state, [](const Moments& m, std::size_t i) {
        Parts p;
        m.dates[i].split(p.year, p.month, p.day, p.hour, p.minute, p.second);
        benchmark::DoNotOptimize(p);
    });
}

void split_chrono(benchmark::State& state) {
    each(state, [](const Moments& m, std::size_t i) {
        const sys_days day = floor<days>(m.points[i]);
        const year_month_day date(day);
        const hh_mm_ss time(m.points[i] - day);
        Parts p{static_cast<int>(date.year()),
                static_cast<int>(static_cast<unsigned>(date.month())),
                static_cast<int>(static_cast<unsigned>(date.day())),
                static_cast<int>(time.hours().count()),
                static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count())};
        benchmark::DoNotOptimize(p);
    });
}

void build_core(benchmark::State& state) {
    each(state, [](const Moments& m, std::size_t i) {
        const std::tm& t = m.calendar[i];
        benchmark::DoNotOptimize(
            Date(t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec));
    });
}

void build_chrono(benchmark::State& state) {
    each(state, [](const Moments& m, std::size_t i) {
        const std::tm& t = m.calendar[i];
        const year_month_day date(year(t.tm_year + 1900), month(static_cast<unsigned>(t.tm_mon + 1)),
                                  day(static_cast<unsigned>(t.tm_mday)));
        // Checked, as ours is.
        benchmark::DoNotOptimize(date.ok() && t.tm_hour < 24 && t.tm_min < 60 && t.tm_sec < 60
                                     ? Seconds(sys_days(date)) + hours(t.tm_hour) + minutes(t.tm_min) +
                                           seconds(t.tm_sec)
                                     : Seconds());
    });
}

void add_month_core(benchmark::State& state) {
    each(state, [](const Moments& m, std::size_t i) {
        Date date = m.dates[i];
        benchmark::DoNotOptimize(date.addMonth(static_cast<int>(i % 24) - 11));
    });
}

void add_month_chrono(benchmark::State& state) {
    each(state, [](const Moments& m, std::size_t i) {
        const sys_days day = floor<days>(m.points[i]);
        year_month_day date = year_month_day(day) + months(static_cast<int>(i % 24) - 11);
        if (!date.ok())
            date = date.year() / date.month() / last;
        benchmark::DoNotOptimize(Seconds(sys_days(date)) + (m.points[i] - day));
    });
}

void format_core(benchmark::State& state) {
    each(state, [](const Moments& m, std::size_t i) {
        char text[Date::kTextLength + 1];
        *m.dates[i].toString(text) = '\0';
        benchmark::DoNotOptimize(text);
    });
}

void format_strftime(benchmark::State& state) {
    each(state, [](const Moments& m, std::size_t i) {
        char text[Date::kTextLength + 1];
        const std::time_t time = m.points[i].time_since_epoch().count();
        std::tm parts;
        gmtime_r(&time, &parts);
        benchmark::DoNotOptimize(std::strftime(text, sizeof text, "%Y%m%d%H%M%S", &parts));
        benchmark::DoNotOptimize(text);
    });
}

void parse_core(benchmark::State& state) {
    each(state, [](const Moments& m, std::size_t i) {
        benchmark::DoNotOptimize(Date::fromString(std::string_view(m.texts[i].data(), m.texts[i].size())));
    });
}

void local_time_core(benchmark::State& state) {
    const std::string zone = "Europe/Berlin";
    each(state, [&zone](const Moments& m, std::size_t i) {
        benchmark::DoNotOptimize(m.dates[i].toLocalTime(zone));
    });
}

void period_core(benchmark::State& state) {
    each(state, [](const Moments& m, std::size_t i) {
        // All variants in turn, in an order that no processor foresees.
        const auto variant = static_cast<core::StandardPeriodVariant>(1 + i * 29 % 47);
        const core::DatePeriod dates = core::StandardPeriod(variant).dates(m.dates[i], 1);
        benchmark::DoNotOptimize(dates);
    });
}

void period_chrono(benchmark::State& state) {
    each(state, [](const Moments& m, std::size_t i) { // this month alone
        const year_month_day date(floor<days>(m.points[i]));
        const sys_days begin = date.year() / date.month() / 1;
        const Seconds end = sys_days(date.year() / date.month() / last) + days(1) - seconds(1);
        benchmark::DoNotOptimize(begin);
        benchmark::DoNotOptimize(end);
    });
}

BENCHMARK(split_core);
BENCHMARK(split_chrono);
BENCHMARK(build_core);
BENCHMARK(build_chrono);
BENCHMARK(add_month_core);
BENCHMARK(add_month_chrono);
BENCHMARK(format_core);
BENCHMARK(format_strftime);
BENCHMARK(parse_core);
BENCHMARK(local_time_core);
BENCHMARK(period_core);
BENCHMARK(period_chrono);

} // namespace
