// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/inner_file.h"

namespace core {

/// An inner file open for reading. It sees the content that it was opened with or fails.
class InnerReader : public InnerFile {
  public:
    InnerReader(std::shared_ptr<StorageEngine> engine, wstring_view name);
    ~InnerReader() override;

    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
    void truncate(std::uint64_t length) override;
    void flush() override {}
    void close() override { leave(); }
    [[nodiscard]] bool isWriter() const noexcept override { return false; }

  protected:
    void fetch(std::uint64_t offset, std::span<std::byte> out) override;
    [[nodiscard]] std::uint64_t size() const noexcept override { return chain_.size(); }

  private:
    void revalidate();

    BlockChain chain_;
    std::uint32_t version_ = 0;
    std::uint64_t state_ = 0; // of the container, when the chain was last known to be right
};

} // namespace core
