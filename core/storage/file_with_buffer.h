// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/chain_writer.h"
#include "core/storage/container.h"

#include <core/files/file_impl.h>
#include <core/runtime/internal_class.h>

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace core {

/// An inner file open for reading, with a buffer that reads ahead while it is read in order.
class FileWithBuffer : public FileImpl {
  public:
    using Interfaces = InterfaceList<IFile>;

    FileWithBuffer(std::shared_ptr<Container> container, wstring_view name);
    ~FileWithBuffer() override;

    std::size_t readAt(std::uint64_t position, void* buffer, std::size_t count) override;
    std::size_t writeAt(std::uint64_t position, const void* buffer, std::size_t count) override;
    [[nodiscard]] std::uint64_t length() override;
    void truncate(std::uint64_t length) override;
    void flush() override;
    void close() override;

    // For the container.

    [[nodiscard]] const wstring& name() const noexcept { return name_; }
    [[nodiscard]] virtual bool isWriter() const noexcept { return false; }
    /// The content is not what it was when the file was opened, or has been taken back.
    void lose() noexcept { lost_ = true; }
    virtual void addFresh(RangeSet&) const {}

  protected:
    struct Writer {};
    FileWithBuffer(std::shared_ptr<Container> container, wstring_view name, Writer);

    /// Reads from below the buffer; the range is within the file.
    virtual void fetch(std::uint64_t position, std::span<std::byte> out);
    [[nodiscard]] virtual std::uint64_t size() const noexcept { return chain_.size(); }
    [[nodiscard]] Container& container() const;
    [[nodiscard]] std::shared_ptr<Container> shared() const noexcept { return container_; }
    [[nodiscard]] bool isLost() const noexcept { return lost_; }
    void requireNotLost() const;
    void forgetBuffer() noexcept { bufferLength_ = 0; }

  private:
    void revalidate(Container& container);

    std::shared_ptr<Container> container_; // null once closed
    wstring name_;
    bool lost_ = false;

    // reading
    ChainInFile chain_;
    std::uint32_t version_ = 0;
    std::uint64_t state_ = 0; // of the container, when the chain was last known to be right

    std::vector<std::byte> buffer_;
    std::uint64_t bufferStart_ = 0;
    std::size_t bufferLength_ = 0;
    std::size_t ahead_ = 0;
};

/// An inner file open for reading and writing. Small writes are gathered; the content is published when the
/// file is closed or flushed, and given up when an exception lets go of it: half a file is worse than none.
class FileWithBuffer2 : public FileWithBuffer {
  public:
    FileWithBuffer2(const std::shared_ptr<Container>& container, wstring_view name, OpenMode mode);
    ~FileWithBuffer2() override;

    std::size_t writeAt(std::uint64_t position, const void* buffer, std::size_t count) override;
    void truncate(std::uint64_t length) override;
    void flush() override;
    void close() override;

    [[nodiscard]] bool isWriter() const noexcept override { return true; }
    void addFresh(RangeSet& ranges) const override {
        if (writer_ && !isLost())
            writer_->addFresh(ranges);
    }

  protected:
    void fetch(std::uint64_t position, std::span<std::byte> out) override;
    [[nodiscard]] std::uint64_t size() const noexcept override;

  private:
    /// Runs `call`, after whose failure the content is good for nothing: it is given up.
    template <class Call>
    void writing(Call call);
    void settleWrites();
    void publish(bool goOn);
    void giveUp() noexcept;

    const int exceptions_ = std::uncaught_exceptions();
    std::optional<Container::Turn> turn_;
    std::optional<ChainWriter> writer_;
    bool changed_ = false; // something is there to publish
    bool dropOld_ = false; // the file had a content that this one replaces

    std::vector<std::byte> waiting_; // written, but not yet to the chain
    std::uint64_t waitingStart_ = 0;
};

[[nodiscard]] InterfacePtr<IFile> create_reader(std::shared_ptr<Container> container, wstring_view name);
[[nodiscard]] InterfacePtr<IFile> create_writer(const std::shared_ptr<Container>& container,
                                                wstring_view name, OpenMode mode);

} // namespace core
