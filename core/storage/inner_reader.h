// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/checksum.h"
#include "core/storage/inner_file.h"

namespace core {

/// An inner file open for reading: the content that it was opened with, whatever becomes of the file.
class InnerReader : public InnerFile {
  public:
    InnerReader(std::shared_ptr<StorageEngine> engine, wstring_view name);
    ~InnerReader() override;

    /// The whole content, which must have its checksum.
    [[nodiscard]] std::vector<std::byte> content();
    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
    void truncate(std::uint64_t length) override;
    void flush() override {}
    void close() override { leave(); }
    [[nodiscard]] bool isWriter() const noexcept override { return false; }

  protected:
    void fetch(std::uint64_t offset, std::span<std::byte> out) override;
    [[nodiscard]] std::uint64_t size() const noexcept override { return chain_.size(); }

  private:
    BlockReader reader_;
    FileEntry entry_;
    BlockChain chain_;
    Checksum sum_; // of the bytes in front of summed_
    std::uint64_t summed_ = 0;
    bool keepsAll_ = false; // the whole space of the container: where the chain lies is not known yet
};

} // namespace core
