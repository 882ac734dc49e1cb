// SPDX-License-Identifier: Apache-2.0
// Texts between bytes and UTF-16: the library beside ICU's own functions and the system's iconv.
#include <core/streams/converter.h>
#include <core/streams/text_reader.h>

#include <benchmark/benchmark.h>
#include <iconv.h>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace core;

constexpr std::size_t kUnits = std::size_t{1} << 20;

/// Words of Russian letters with blanks, commas and line ends between them.
const wstring& russian() {
    static const wstring text = [] {
        wstring made;
        for (std::size_t word = 0; made.size() < kUnits; ++word) {
            for (std::size_t i = 0; i < 2 + word * 7 % 9; ++i)
                made.push_back(static_cast<wchar>(u'а' + (word * 13 + i * 5) % 32));
            made += word % 11 == 10 ? u".\n" : word % 5 == 4 ? u", " : u" ";
        }
        return made;
    }();
    return text;
}

void count_bytes(benchmark::State& state, const std::string& bytes) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(bytes.size()));
}

void decode_core(benchmark::State& state, const char16_t* name) {
    const Encoding encoding(name);
    const std::string bytes = encode_text(russian(), encoding);
    std::vector<wchar> units(kUnits + 64);
    for (auto _ : state) {
        Decoder decoder(encoding);
        benchmark::DoNotOptimize(decoder.decode(std::as_bytes(std::span(bytes)), units, true));
    }
    count_bytes(state, bytes);
}
BENCHMARK_CAPTURE(decode_core, windows_1251, u"windows-1251");
BENCHMARK_CAPTURE(decode_core, utf8, u"UTF-8");

void decode_icu(benchmark::State& state, const char* name, const char16_t* ours) {
    const std::string bytes = encode_text(russian(), Encoding(ours));
    std::vector<wchar> units(kUnits + 64);
    UErrorCode status = U_ZERO_ERROR;
    UConverter* const converter = ucnv_open(name, &status);
    for (auto _ : state) {
        wchar* out = units.data();
        const char* in = bytes.data();
        ucnv_toUnicode(converter, &out, units.data() + units.size(), &in, bytes.data() + bytes.size(),
                       nullptr, true, &status);
        benchmark::DoNotOptimize(out);
    }
    ucnv_close(converter);
    count_bytes(state, bytes);
}
BENCHMARK_CAPTURE(decode_icu, windows_1251, "windows-1251", u"windows-1251");

void decode_icu_utf8(benchmark::State& state) {
    const std::string bytes = encode_text(russian(), Encoding());
    std::vector<wchar> units(kUnits + 64);
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        std::int32_t length = 0;
        u_strFromUTF8(units.data(), static_cast<std::int32_t>(units.size()), &length, bytes.data(),
                      static_cast<std::int32_t>(bytes.size()), &status);
        benchmark::DoNotOptimize(length);
    }
    count_bytes(state, bytes);
}
BENCHMARK(decode_icu_utf8);

void decode_iconv(benchmark::State& state, const char* name, const char16_t* ours) {
    std::string bytes = encode_text(russian(), Encoding(ours));
    std::vector<wchar> units(kUnits + 64);
    const ::iconv_t converter = ::iconv_open("UTF-16LE", name);
    for (auto _ : state) {
        char* in = bytes.data();
        char* out = reinterpret_cast<char*>(units.data());
        std::size_t left = bytes.size();
        std::size_t room = units.size() * sizeof(wchar);
        benchmark::DoNotOptimize(::iconv(converter, &in, &left, &out, &room));
    }
    ::iconv_close(converter);
    count_bytes(state, bytes);
}
BENCHMARK_CAPTURE(decode_iconv, windows_1251, "CP1251", u"windows-1251");
BENCHMARK_CAPTURE(decode_iconv, utf8, "UTF-8", u"UTF-8");

void encode_core(benchmark::State& state, const char16_t* name) {
    const Encoding encoding(name);
    std::vector<std::byte> room(3 * kUnits + 64);
    for (auto _ : state) {
        Encoder encoder(encoding);
        benchmark::DoNotOptimize(encoder.encode(russian(), room, true));
    }
    count_bytes(state, encode_text(russian(), encoding));
}
BENCHMARK_CAPTURE(encode_core, windows_1251, u"windows-1251");
BENCHMARK_CAPTURE(encode_core, utf8, u"UTF-8");

void encode_icu_utf8(benchmark::State& state) {
    std::vector<char> room(3 * kUnits + 64);
    std::int32_t length = 0;
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        u_strToUTF8(room.data(), static_cast<std::int32_t>(room.size()), &length, russian().data(),
                    static_cast<std::int32_t>(russian().size()), &status);
        benchmark::DoNotOptimize(length);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * length);
}
BENCHMARK(encode_icu_utf8);

void read_lines_core(benchmark::State& state, const char16_t* name) {
    const std::string bytes = encode_text(russian(), Encoding(name));
    for (auto _ : state) {
        std::size_t at = 0;
        TextReader reader(
            [&](std::span<std::byte> into) {
                const std::size_t count = std::min(into.size(), bytes.size() - at);
                std::memcpy(into.data(), bytes.data() + at, count);
                at += count;
                return count;
            },
            u"text", {.encoding = Encoding(name)});
        wstring line;
        std::size_t units = 0;
        while (reader.readLine(line))
            units += line.size();
        benchmark::DoNotOptimize(units);
    }
    count_bytes(state, bytes);
}
BENCHMARK_CAPTURE(read_lines_core, windows_1251, u"windows-1251");
BENCHMARK_CAPTURE(read_lines_core, utf8, u"UTF-8");

} // namespace
