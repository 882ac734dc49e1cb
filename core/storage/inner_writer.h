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
/// none. It is written beside everything that is committed, so only opening and publishing need a turn.
///
/// Several processes may write the same file. One that began with its content does not publish over another
/// content than that; of those that began with none the last one wins.
class InnerWriter : public InnerFile {
  public:
    /// The one that others may not write, rename nor remove meanwhile is `exclusive`; the other kind stands
    /// for a change made in one go.
    InnerWriter(const std::shared_ptr<StorageEngine>& engine, wstring_view name, OpenMode mode,
                bool exclusive = true);
    ~InnerWriter() override;

    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
    void truncate(std::uint64_t length) override;
    void flush() override;
    void close() override;

    /// Ends the use of the file; what is not published by now is gone.
    void giveUp() noexcept;
    [[nodiscard]] bool isWriter() const noexcept override { return true; }
    [[nodiscard]] bool isExclusive() const noexcept override { return exclusive_; }

  protected:
    void fetch(std::uint64_t offset, std::span<std::byte> out) override;
    [[nodiscard]] std::uint64_t size() const noexcept override;

  private:
    /// Runs `call`, after whose failure the content is good for nothing: it is given up.
    template <class Call>
    void writing(Call call);
    void settleWrites();
    void publish(bool goOn);
    void publishChain(bool goOn);
    void goOnWith(bool goOn);
    [[nodiscard]] bool isBaseCurrent();
    void setBase();

    const int exceptions_ = std::uncaught_exceptions();
    const bool exclusive_;
    bool open_ = false;
    std::optional<ChainWriter> writer_;
    bool changed_ = false; // something is there to publish
    bool mustBeNew_ = false;
    // The content to begin with: where it lay, and its version.
    std::optional<std::uint64_t> base_;
    std::uint32_t version_ = 0;

    std::vector<std::byte> waiting_; // written, but not yet to the chain
    std::uint64_t waitingStart_ = 0;
};

} // namespace core
