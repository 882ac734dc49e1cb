// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>
#include <core/files/file_system.h>
#include <core/runtime/api.h>
#include <core/streams/text_buffer.h>

#include <cstddef>
#include <exception>
#include <functional>
#include <istream>
#include <memory>
#include <ostream>
#include <span>

/// Text in UTF-8 behind streams of UTF-16 units. A byte order mark in front is skipped when reading and is
/// never written; line ends stay as they are.
///
/// Nothing is replaced: bytes that are not UTF-8, and halves of surrogate pairs, throw ConverterException
/// with the name of the text and the offset in bytes. It passes through the readers and writers of brace
/// lists, as do the errors of the file; the standard library's own operations on streams turn both into the
/// bad bit. One thread at a time.
namespace core {

/// Reads some bytes, at least one, into a span and returns their count; 0 at the end of the text.
using ByteReader = std::function<std::size_t(std::span<std::byte>)>;
/// Writes all of the bytes, or throws.
using ByteWriter = std::function<void(std::span<const std::byte>)>;

namespace detail {

/// The buffer of a TextInStream.
class CORE_API Utf8InBuffer final : public TextBuffer {
  public:
    /// Decodes what `read` reads; errors call the text `name`.
    Utf8InBuffer(ByteReader read, wstring name);
    ~Utf8InBuffer() override;

  protected:
    /// Decodes the next block. Throws ConverterException, and what the reader throws.
    int_type underflow() override;

  private:
    struct Block;
    bool readBlock();
    void decode();

    ByteReader read_;
    wstring name_;
    std::unique_ptr<Block> block_;
};

/// The buffer of a TextOutStream.
class CORE_API Utf8OutBuffer final : public TextBuffer {
  public:
    /// Encodes what is written and hands it to `write`; errors call the text `name`.
    Utf8OutBuffer(ByteWriter write, wstring name);
    /// Drops what finish() has not written.
    ~Utf8OutBuffer() override;
    /// Hands over the units that are left. Throws the first failure, also one of an earlier call.
    void finish();
    /// Returns what errors call the text; borrowed as long as the buffer lives.
    [[nodiscard]] const wstring& name() const noexcept { return name_; }

  protected:
    /// Hands over the units in the buffer and then takes `unit`, unless that is eof. Throws as finish().
    int_type overflow(int_type unit) override;
    /// Hands over the units in the buffer; half a surrogate pair at its end stays. Throws as finish().
    int sync() override;

  private:
    struct Block;
    void write(bool last);
    void encode(bool last);

    ByteWriter write_;
    wstring name_;
    std::exception_ptr error_; // the first; nothing is written after it
    std::unique_ptr<Block> block_;
};

} // namespace detail

/// Reads text in UTF-8.
class TextInStream : public wistream {
  public:
    /// Reads the bytes that `read` brings; errors call the text `name`.
    TextInStream(ByteReader read, wstring name)
        : wistream(nullptr), buffer_(std::move(read), std::move(name)) {
        rdbuf(&buffer_);
    }
    /// Reads from the current position of `file`, which the stream keeps open.
    explicit TextInStream(const InterfacePtr<IFile>& file)
        : TextInStream([file](std::span<std::byte> bytes) { return file->read(bytes.data(), bytes.size()); },
                       file->url()) {}

  private:
    detail::Utf8InBuffer buffer_;
};

/// Writes text in UTF-8. What was written is in the file only after finish(), or flush() up to there.
class TextOutStream : public wostream {
  public:
    /// Hands bytes to `write`; errors call the text `name`.
    TextOutStream(ByteWriter write, wstring name)
        : wostream(nullptr), buffer_(std::move(write), std::move(name)) {
        rdbuf(&buffer_);
    }
    /// Writes at the current position of `file`, which the stream keeps open.
    CORE_API explicit TextOutStream(const InterfacePtr<IFile>& file);

    /// Writes what is left. Throws the first failure, also one of an earlier write, and FileStreamException
    /// when a writer has marked the stream as failed.
    CORE_API void finish();

  private:
    detail::Utf8OutBuffer buffer_;
};

/// Returns the rest of a text. Throws ConverterException, and what the source of bytes throws.
[[nodiscard]] CORE_API wstring read_text(TextInStream& in);
/// Returns the whole text of a file. Throws FileException and ConverterException.
[[nodiscard]] CORE_API wstring load_text(IFileSystem& files, const wstring& url);

/// Writes the units of `text` as they stand. A stream that does not take them all becomes bad, and one that
/// is not good takes none; what its buffer throws passes through.
CORE_API void put_text(wostream& out, wstring_view text);
/// Creates or replaces the file `url` with the text that `write` writes. If anything throws, in `write` as
/// well, the old file stays: the text goes to a new file beside it, which takes its place when it is complete
/// and durable.
CORE_API void save_text(IFileSystem& files, const wstring& url, const std::function<void(wostream&)>& write);

} // namespace core
