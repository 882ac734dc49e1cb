// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/chain_writer.h"
#include "core/storage/inner_file.h"

#include <core/files/file.h>

#include <exception>
#include <optional>

namespace core {

/// An inner file open for reading and writing. Small writes are gathered. The content is published when the
/// file is closed or flushed, and given up when an exception lets go of the file: half a file is worse than
/// none.
class InnerWriter : public InnerFile {
  public:
    InnerWriter(const std::shared_ptr<StorageEngine>& engine, wstring_view name, OpenMode mode);
    ~InnerWriter() override;

    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
    void truncate(std::uint64_t length) override;
    void flush() override;
    void close() override;

    [[nodiscard]] bool isWriter() const noexcept override { return true; }
    void addFresh(RangeSet& ranges) const override {
        if (writer_ && !isLost())
            writer_->addFresh(ranges);
    }

  protected:
    void fetch(std::uint64_t offset, std::span<std::byte> out) override;
    [[nodiscard]] std::uint64_t size() const noexcept override;

  private:
    /// Runs `call`, after whose failure the content is good for nothing: it is given up.
    template <class Call>
    void writing(Call call);
    void settleWrites();
    void publish(bool goOn);
    void giveUp() noexcept;

    const int exceptions_ = std::uncaught_exceptions();
    std::optional<StorageEngine::Turn> turn_;
    std::optional<ChainWriter> writer_;
    bool changed_ = false; // something is there to publish
    bool dropOld_ = false; // the file had a content that this one replaces

    std::vector<std::byte> waiting_; // written, but not yet to the chain
    std::uint64_t waitingStart_ = 0;
};

} // namespace core
