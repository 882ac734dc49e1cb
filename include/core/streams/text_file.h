// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>
#include <core/files/file_system.h>
#include <core/runtime/api.h>
#include <core/streams/text_buffer.h>
#include <core/streams/text_reader.h>
#include <core/streams/text_writer.h>

#include <functional>
#include <istream>
#include <memory>
#include <ostream>
#include <span>

/// Text in files behind streams of UTF-16 units. A byte order mark in front is skipped when reading; line
/// ends stay as they are.
///
/// Nothing is replaced unless that is asked for: bytes that do not fit the encoding, and characters that it
/// does not have, throw ConverterException with the name of the text and the offset in bytes. It passes
/// through the readers and writers of brace lists, as do the errors of the file; the standard library's own
/// operations on streams turn both into the bad bit. One thread at a time.
namespace core {

namespace detail {

/// The buffer of a TextInStream.
class CORE_API DecodingBuffer final : public TextBuffer {
  public:
    /// Decodes what `read` reads; errors call the text `name`.
    DecodingBuffer(ByteReader read, wstring name, const TextReaderOptions& options);
    ~DecodingBuffer() override;

  protected:
    /// Decodes the next block. Throws ConverterException, and what the reader throws.
    int_type underflow() override;

  private:
    std::unique_ptr<TextSource> source_;
};

/// The buffer of a TextOutStream.
class CORE_API EncodingBuffer final : public TextBuffer {
  public:
    /// Encodes what is written and hands it to `write`; errors call the text `name`.
    EncodingBuffer(ByteWriter write, wstring name, const TextWriterOptions& options);
    /// Drops what finish() has not written.
    ~EncodingBuffer() override;
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
    void write();

    wstring name_;
    TextWriter writer_;
    std::unique_ptr<wchar[]> units_;
};

} // namespace detail

/// Reads text, in UTF-8 unless the options say otherwise.
class TextInStream : public wistream {
  public:
    /// Reads the bytes that `read` brings; errors call the text `name`.
    TextInStream(ByteReader read, wstring name, const TextReaderOptions& options = {.encoding = Encoding()})
        : wistream(nullptr), buffer_(std::move(read), std::move(name), options) {
        rdbuf(&buffer_);
    }
    /// Reads from the current position of `file`, which the stream keeps open.
    explicit TextInStream(const InterfacePtr<IFile>& file,
                          const TextReaderOptions& options = {.encoding = Encoding()})
        : TextInStream([file](std::span<std::byte> bytes) { return file->read(bytes.data(), bytes.size()); },
                       file->url(), options) {}

  private:
    detail::DecodingBuffer buffer_;
};

/// Writes text, in UTF-8 unless the options say otherwise. What was written is in the file only after
/// finish(), or flush() up to there.
class TextOutStream : public wostream {
  public:
    /// Hands bytes to `write`; errors call the text `name`.
    TextOutStream(ByteWriter write, wstring name, const TextWriterOptions& options = {})
        : wostream(nullptr), buffer_(std::move(write), std::move(name), options) {
        rdbuf(&buffer_);
    }
    /// Writes at the current position of `file`, which the stream keeps open.
    CORE_API explicit TextOutStream(const InterfacePtr<IFile>& file, const TextWriterOptions& options = {});

    /// Writes what is left and ends the text. Throws the first failure, also one of an earlier write, and
    /// FileStreamException when a writer has marked the stream as failed.
    CORE_API void finish();

  private:
    detail::EncodingBuffer buffer_;
};

/// Returns the rest of a text. Throws ConverterException, and what the source of bytes throws.
[[nodiscard]] CORE_API wstring read_text(TextInStream& in);
/// Returns the whole text of a file, in UTF-8 unless the options say otherwise. Throws FileException and
/// ConverterException.
[[nodiscard]] CORE_API wstring load_text(IFileSystem& files, const wstring& url,
                                         const TextReaderOptions& options = {.encoding = Encoding()});

/// Writes the units of `text` as they stand. A stream that does not take them all becomes bad, and one that
/// is not good takes none; what its buffer throws passes through.
CORE_API void put_text(wostream& out, wstring_view text);
/// Creates or replaces the file `url` with the text that `write` writes. If anything throws, in `write` as
/// well, the old file stays: the text goes to a new file beside it, which takes its place when it is complete
/// and durable.
CORE_API void save_text(IFileSystem& files, const wstring& url, const std::function<void(wostream&)>& write,
                        const TextWriterOptions& options = {});

} // namespace core
