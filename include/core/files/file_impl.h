// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

namespace core {

/// The base of a class that implements IFile: it keeps the URL and the current position, on top of readAt(),
/// writeAt() and length(), which the class writes itself.
class CORE_API FileImpl : public IFile {
  public:
    std::size_t read(void* buffer, std::size_t count) override;
    std::size_t write(const void* buffer, std::size_t count) override;
    std::uint64_t seek(std::int64_t offset, SeekOrigin origin) override;
    [[nodiscard]] const wstring& url() const noexcept override { return url_; }

  protected:
    /// Makes the base of a file with this URL, its current position at the start.
    explicit FileImpl(wstring url);
    virtual ~FileImpl();

  private:
    wstring url_;
    std::uint64_t position_ = 0;
};

} // namespace core
