// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

namespace core {

/// A file's current position on top of its positioned calls: what all files have in common.
class CORE_API FileImpl : public IFile {
  public:
    std::size_t read(void* buffer, std::size_t count) override;
    std::size_t write(const void* buffer, std::size_t count) override;
    std::uint64_t seek(std::int64_t offset, SeekOrigin origin) override;
    [[nodiscard]] const wstring& url() const noexcept override { return url_; }

  protected:
    explicit FileImpl(wstring url);
    virtual ~FileImpl();

  private:
    wstring url_;
    std::uint64_t position_ = 0;
};

} // namespace core
