// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/lists/nesting.h>
#include <core/runtime/persistable.h>
#include <core/runtime/unknown.h>
#include <core/streams/text_reader.h>
#include <core/streams/text_writer.h>

#include <cstddef>
#include <memory>
#include <span>

/// Storages that know no text of their own: they hand over bytes, or take them, a piece at a time. Neither
/// holds the whole, so that a value may be larger than what memory has room for twice.
namespace core {

namespace detail {
struct FormReader;
struct FormWriter;
} // namespace detail

/// What stored data looks like.
enum class StoredForm : std::uint8_t {
    text,    ///< a brace list in UTF-8
    compact, ///< the compact form: the same in bytes, smaller and faster
};

/// Returns the form of stored data, which its first byte tells.
[[nodiscard]] CORE_API StoredForm stored_form(std::span<const std::byte> data) noexcept;

/// Writes bodies as bytes, in either form. What takes the bytes may throw, and the storage is of no use then.
/// One thread at a time.
class CORE_API StreamOutStorage final : public IUnknownImpl<StreamOutStorage, IOutPersistenceStorage> {
  public:
    /// Hands bytes to `write`; errors of the text form call it `name`.
    StreamOutStorage(StoredForm form, ByteWriter write, wstring name = {});
    /// Writes from the current position of `file` on, which must live longer.
    StreamOutStorage(StoredForm form, IFile& file);
    /// Drops what finish() has not written.
    ~StreamOutStorage();

    ListOutStream& listStream() noexcept override;
    Nesting& nesting() noexcept override { return nesting_; }
    void putFailure(const Exception& failure, std::span<const FailureField> fields) override;
    /// Hands over what is left. Throws what the taker of the bytes throws, and FileStreamException when a
    /// body has marked the text as failed.
    void finish();

  private:
    std::unique_ptr<detail::FormWriter> writer_;
    Nesting nesting_;
};

/// Reads bodies from bytes; the first of them tells the form. One thread at a time.
class CORE_API StreamInStorage final : public IUnknownImpl<StreamInStorage, IInPersistenceStorage> {
  public:
    /// Reads the bytes that `read` brings; errors of the text form call it `name`. Throws what `read` throws,
    /// and VersionException for a later version of the compact form.
    explicit StreamInStorage(ByteReader read, wstring name = {});
    /// Reads `file` from its current position on; it must live longer. Throws as above.
    explicit StreamInStorage(IFile& file);
    /// Reads bytes, which must live longer. Throws as above.
    explicit StreamInStorage(std::span<const std::byte> bytes, wstring name = {});
    /// Ends reading.
    ~StreamInStorage();

    ListInStream& listStream() noexcept override;
    Nesting& nesting() noexcept override { return nesting_; }
    StoredFailure getFailure(std::span<FailureField> fields) override;
    /// Returns the form that was found.
    [[nodiscard]] StoredForm form() const noexcept;
    /// Throws ListStreamException if anything follows; white space may follow a brace list.
    void finish();

  private:
    std::unique_ptr<detail::FormReader> reader_;
    Nesting nesting_;
};

} // namespace core
