// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>
#include <core/files/file_impl.h>
#include <core/runtime/internal_class.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

namespace core {

/// An open descriptor of the system, closed at the end.
class Descriptor {
  public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    Descriptor(Descriptor&& other) noexcept;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() { (void)close(); }

    void swap(Descriptor& other) noexcept { std::swap(number_, other.number_); }

    [[nodiscard]] int number() const noexcept { return number_; }
    /// False when what was written before is not where it should be. Interrupted or not, the descriptor is
    /// gone.
    [[nodiscard]] bool close() noexcept;

  private:
    int number_;
};

/// A file of the system behind its descriptor.
class DescriptorFile : public FileImpl, public ISharedFile {
  public:
    using Interfaces = InterfaceList<IFile, ISharedFile>;

    std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t count) override;
    std::size_t writeAt(std::uint64_t offset, const void* buffer, std::size_t count) override;
    std::uint64_t length() override;
    void truncate(std::uint64_t length) override;
    void flush() override;
    void close() override;
    bool tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override;
    void unlock(std::uint64_t offset, std::uint64_t length) override;
    bool isSameFile(IFile& other) override;

  protected:
    DescriptorFile(Descriptor descriptor, wstring url);

    /// Takes the descriptor of a file that was opened when the object was there already.
    void take(Descriptor descriptor) noexcept { descriptor_.swap(descriptor); }
    [[nodiscard]] int descriptor() const noexcept { return descriptor_.number(); }
    /// Refuses a length that the system does not let the process give a file, unless it has it.
    void requireLength(std::uint64_t length);

  private:
    /// Reads on where no offset can be named, as from a pipe.
    std::size_t readOn(void* buffer, std::size_t count);
    std::uint64_t roomBehind(std::uint64_t offset, std::uint64_t count) noexcept;

    /// The regions that are locked, for a system that must be told again which; null for one that needs no
    /// telling.
    struct Locks;

    Descriptor descriptor_;
    std::shared_ptr<Locks> locks_;
    std::atomic<std::uint64_t> limit_;
    std::atomic<std::uint64_t> passed_{0}; // bytes that came from a pipe
};

} // namespace core
