// SPDX-License-Identifier: Apache-2.0
// Settings beside QSettings: a change that is durable when the call returns, opening a file for one value,
// and values that were read before. The files lie on the disk of the temporary folder.
#include <core/files.h>
#include <core/profiles.h>
#include <core/runtime.h>
#include <host/host_process.h>

#include <QtCore/QSettings>
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace core;
namespace fs = std::filesystem;

constexpr std::int64_t kMany = 10'000;
constexpr std::int64_t kMost = 1'000'000;

struct Folder {
    std::string path = (fs::temp_directory_path() / "settings-bench-XXXXXX").string();
    Folder() {
        if (::mkdtemp(path.data()) == nullptr)
            std::abort();
    }
    ~Folder() { fs::remove_all(path); }
};

/// A file in a folder that goes with the program.
std::string file(const std::string& name) {
    static const Folder folder;
    return folder.path + '/' + name;
}

std::string path_of(std::int64_t i) {
    return "folder" + std::to_string(i % 100) + "/value" + std::to_string(i);
}
template <class Text>
std::vector<Text> some_paths(Text (*made)(const std::string&)) {
    std::vector<Text> paths;
    for (std::int64_t i = 0; i < 1000; ++i)
        paths.push_back(made(path_of(i * 7)));
    return paths;
}
wstring text_of(const std::string& text) {
    return from_utf8(text);
}
QString qt_text_of(const std::string& text) {
    return QString::fromStdString(text);
}

InterfacePtr<IProfile> open(std::int64_t count) {
    static const host::HostProcess process;
    ProfileSettings places;
    places.user = file_url(file("ours-" + std::to_string(count)));
    places.system = file_url(file("none"));
    return create_profile(places);
}

/// Makes the file of that many numbers.
void make(std::int64_t count) {
    if (fs::exists(file("ours-" + std::to_string(count))))
        return;
    ProfileChanges changes;
    for (std::int64_t i = 0; i < count; ++i)
        changes.set(text_of(path_of(i)), Value(i));
    open(count)->change(changes);
    changes = {};
    benchmark::DoNotOptimize(open(count)->find(u"none")); // the memory is put in order here, and not below
}

QString qt_file() {
    static const QString made = [] {
        const std::string path = file("qt");
        QSettings settings(qt_text_of(path), QSettings::IniFormat);
        for (std::int64_t i = 0; i < kMany; ++i)
            settings.setValue(qt_text_of(path_of(i)), static_cast<qlonglong>(i));
        return qt_text_of(path);
    }();
    return made;
}

void change_ours(benchmark::State& state) {
    make(kMany);
    const auto profile = open(kMany);
    const std::vector<wstring> paths = some_paths(text_of);
    for (std::size_t i = 0; auto _ : state) {
        profile->set(paths[i % paths.size()], static_cast<std::int64_t>(i));
        ++i;
    }
}
void change_qt(benchmark::State& state) {
    QSettings settings(qt_file(), QSettings::IniFormat);
    const std::vector<QString> paths = some_paths(qt_text_of);
    for (qulonglong i = 0; auto _ : state) {
        settings.setValue(paths[i % paths.size()], i);
        settings.sync();
        ++i;
    }
}

void open_ours(benchmark::State& state) {
    make(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(open(state.range(0))->get(u"folder7/value107", std::int64_t{0}));
}
void open_qt(benchmark::State& state) { // under a name of its own each time, as it keeps what it has read
    static std::size_t number = 0;
    const std::string made = qt_file().toStdString();
    for (auto _ : state) {
        state.PauseTiming();
        const std::string name = file("qt-" + std::to_string(++number));
        fs::create_hard_link(made, name);
        state.ResumeTiming();
        const QSettings settings(qt_text_of(name), QSettings::IniFormat);
        benchmark::DoNotOptimize(settings.value("folder7/value107").toLongLong());
        state.PauseTiming();
        fs::remove(name);
        state.ResumeTiming();
    }
}

void read_ours(benchmark::State& state) {
    make(kMany);
    const auto profile = open(kMany);
    const std::vector<wstring> paths = some_paths(text_of);
    for (std::size_t i = 0; auto _ : state)
        benchmark::DoNotOptimize(profile->get(paths[i++ % paths.size()], std::int64_t{0}));
}
void read_qt(benchmark::State& state) {
    const QSettings settings(qt_file(), QSettings::IniFormat);
    const std::vector<QString> paths = some_paths(qt_text_of);
    for (std::size_t i = 0; auto _ : state)
        benchmark::DoNotOptimize(settings.value(paths[i++ % paths.size()]).toLongLong());
}

BENCHMARK(change_ours)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(change_qt)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(open_ours)->Arg(kMany)->Arg(kMost)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(open_qt)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(read_ours);
BENCHMARK(read_qt);

} // namespace
