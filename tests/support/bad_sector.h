// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/errors.h>
#include <core/files/file_impl.h>
#include <core/runtime/internal_class.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace core::test {

/// A disk that cannot read the sector at `bad`. What is in front of it is read by itself.
class BadSector : public FileImpl {
  public:
    using Interfaces = InterfaceList<IFile>;

    BadSector(std::vector<std::byte> bytes, std::uint64_t bad)
        : FileImpl(u"bad://disk"), bytes_(std::move(bytes)), bad_(bad) {}

    std::size_t readAt(std::uint64_t position, void* buffer, std::size_t count) override {
        if (position >= bytes_.size())
            return 0;
        if (bad_ <= position && position < bad_ + 512)
            throw_file_error(messages::kFileRead, url(), EIO);
        const std::uint64_t end =
            position < bad_ ? std::min<std::uint64_t>(bytes_.size(), bad_) : bytes_.size();
        count = std::min<std::size_t>(count, static_cast<std::size_t>(end - position));
        std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(position), count,
                    static_cast<std::byte*>(buffer));
        return count;
    }
    std::size_t writeAt(std::uint64_t, const void*, std::size_t) override { return 0; }
    std::uint64_t length() override { return bytes_.size(); }
    void truncate(std::uint64_t) override {}
    void flush() override {}
    void close() override {}

  private:
    std::vector<std::byte> bytes_;
    std::uint64_t bad_;
};

} // namespace core::test
