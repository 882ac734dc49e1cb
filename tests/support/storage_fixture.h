// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/storage_model.h"

#include <core/runtime.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

namespace core::test {

/// The kind of the StorageException that `call` throws.
template <class Call>
StorageException::Kind kind_of(Call call) {
    try {
        call();
    } catch (const StorageException& e) {
        return e.kind();
    }
    return StorageException::Kind::none;
}

/// The text of the exception that `call` throws, empty for none.
template <class Call>
wstring message_of(Call call) {
    try {
        call();
    } catch (const Exception& e) {
        return e.description();
    }
    return {};
}

inline Bytes bytes_of(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

/// A clock that stands still except for sleeping, and counts that.
class ReplacedClock : public Clock {
  public:
    ReplacedClock() { replace_clock(this); }
    ~ReplacedClock() override { replace_clock(nullptr); }
    std::chrono::system_clock::time_point now() noexcept override { return time; }
    void sleep(std::chrono::milliseconds pause) override {
        time += pause;
        ++sleeps;
    }
    std::chrono::system_clock::time_point time{std::chrono::hours(24 * 365)};
    int sleeps = 0;
};

/// How a container may lie in its file: the width of its numbers, and the layout of its table of inner files.
struct Format {
    const StorageLayout* layout;
    int table;
};
/// What new containers are made in, and what older ones were made in.
inline constexpr Format kFormats[] = {
    {&kStorageLayout32, 1}, {&kStorageLayout64, 1}, {&kStorageLayout32, 2}, {&kStorageLayout64, 2}};
/// The formats of the first table layout.
inline constexpr Format kFlatFormats[] = {{&kStorageLayout32, 1}, {&kStorageLayout64, 1}};
inline const auto kEveryFormat = testing::ValuesIn(kFormats);
inline const auto kEveryFlatFormat = testing::ValuesIn(kFlatFormats);
inline std::string name_of_format(const testing::TestParamInfo<Format>& info) {
    return (info.param.layout == &kStorageLayout32 ? "32" : "64") +
           std::string(info.param.table == 1 ? "" : "Tree");
}

/// Makes an empty container in an empty file. One of the first table layout is written as the bytes that it
/// has: new versions of the library need not make such.
inline void create_container(IFile& file, const Format& format) {
    const StorageLayout& layout = *format.layout;
    if (format.table != 1)
        return StorageRW::create(file, layout);
    std::string text;
    for (const std::uint64_t word : {layout.null, std::uint64_t{512}}) {
        for (std::size_t i = 0; i < layout.width; ++i)
            text.push_back(static_cast<char>(word >> 8 * i));
    }
    text.resize(layout.headerSize());
    text += "\r\n";
    for (const std::uint64_t number : {std::uint64_t{0}, std::uint64_t{512}, layout.null})
        text += hex(number, layout.digits()) + " ";
    text += "\r\ntable of inner files, layout 1\r\n";
    text.resize(layout.emptyLength());
    write_all(file, bytes_of(text));
}

/// A test that runs in several formats.
class InFormats : public testing::TestWithParam<Format> {
  protected:
    const Format format_ = GetParam();
    const StorageLayout& layout_ = *format_.layout;
};

/// An empty container in memory.
class MemoryContainer : public InFormats {
  protected:
    MemoryContainer() { create_container(*file(), format_); }
    [[nodiscard]] InterfacePtr<IFile> file() const { return open_memory_file(data_); }
    [[nodiscard]] StorageRW open(StorageOptions options = {}) const {
        return StorageRW(file(), layout_, options);
    }
    [[nodiscard]] Bytes raw() const { return read_whole(*file()); }

    std::shared_ptr<MemoryFileData> data_ = create_memory_data();
};

} // namespace core::test
