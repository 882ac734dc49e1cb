// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/storage_model.h"

#include <core/runtime.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
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

/// A test that runs in both layouts.
class InBothLayouts : public testing::TestWithParam<const StorageLayout*> {
  protected:
    const StorageLayout& layout_ = *GetParam();
};
inline const auto kBothLayouts = testing::Values(&kStorageLayout32, &kStorageLayout64);
inline std::string name_of_layout(const testing::TestParamInfo<const StorageLayout*>& info) {
    return info.param == &kStorageLayout32 ? "32" : "64";
}

/// An empty container in memory.
class MemoryContainer : public InBothLayouts {
  protected:
    MemoryContainer() { StorageRW::create(*file(), layout_); }
    [[nodiscard]] InterfacePtr<IFile> file() const { return open_memory_file(data_); }
    [[nodiscard]] StorageRW open(StorageOptions options = {}) const {
        return StorageRW(file(), layout_, options);
    }
    [[nodiscard]] Bytes raw() const { return read_whole(*file()); }

    std::shared_ptr<MemoryFileData> data_ = create_memory_data();
};

} // namespace core::test
