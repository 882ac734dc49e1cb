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

/// Text in UTF-8 behind streams of UTF-16 units. A byte order mark in front is skipped when reading and never
/// written; line ends stay as they are.
///
/// Nothing is replaced: bytes that are not UTF-8, and halves of surrogate pairs, throw ConverterException
/// with the name of the text and the place. It passes through the readers and writers of brace lists, as do
/// the errors of the file; the standard library's own operations on streams turn both into the bad bit. One
/// thread at a time.
namespace core {

/// Reads some bytes, at least one, into a span and returns their count; 0 at the end.
using ByteReader = std::function<std::size_t(std::span<std::byte>)>;
/// Writes all of the bytes.
using ByteWriter = std::function<void(std::span<const std::byte>)>;

namespace detail {

class CORE_API Utf8InBuffer final : public TextBuffer {
  public:
    Utf8InBuffer(ByteReader read, wstring name);
    ~Utf8InBuffer() override;

  protected:
    int_type underflow() override;

  private:
    struct Block;
    bool readBlock();
    void decode();

    ByteReader read_;
    wstring name_;
    std::unique_ptr<Block> block_;
};

class CORE_API Utf8OutBuffer final : public TextBuffer {
  public:
    Utf8OutBuffer(ByteWriter write, wstring name);
    ~Utf8OutBuffer() override;
    void finish();
    [[nodiscard]] const wstring& name() const noexcept { return name_; }

  protected:
    int_type overflow(int_type unit) override;
    int sync() override;

  private:
    struct Block;
    void write(bool last);
    void encode(bool last);

    ByteWriter write_;
    wstring name_;
    std::exception_ptr error_; ///< the first; nothing is written after it
    std::unique_ptr<Block> block_;
};

} // namespace detail

/// Reads text.
class TextInStream : public wistream {
  public:
    /// `name` is what errors call the text.
    TextInStream(ByteReader read, wstring name)
        : wistream(nullptr), buffer_(std::move(read), std::move(name)) {
        rdbuf(&buffer_);
    }
    /// From the current position of `file`, which the stream keeps open.
    explicit TextInStream(const InterfacePtr<IFile>& file)
        : TextInStream([file](std::span<std::byte> bytes) { return file->read(bytes.data(), bytes.size()); },
                       file->url()) {}

  private:
    detail::Utf8InBuffer buffer_;
};

/// Writes text. What was written is in the file only after finish(), or flush() up to there.
class TextOutStream : public wostream {
  public:
    TextOutStream(ByteWriter write, wstring name)
        : wostream(nullptr), buffer_(std::move(write), std::move(name)) {
        rdbuf(&buffer_);
    }
    /// At the current position of `file`, which the stream keeps open.
    CORE_API explicit TextOutStream(const InterfacePtr<IFile>& file);

    /// Writes what is left. Throws what went wrong, now or earlier; FileStreamException when a writer has
    /// marked the stream as failed.
    CORE_API void finish();

  private:
    detail::Utf8OutBuffer buffer_;
};

/// What is left of a text.
[[nodiscard]] CORE_API wstring read_text(TextInStream& in);
/// The whole text of a file.
[[nodiscard]] CORE_API wstring load_text(IFileSystem& files, const wstring& url);

/// Makes what `write` writes the text of a file. It goes to a new file beside, which takes the place of the
/// old one when it is complete and durable: a failure, in `write` as well, leaves the old file as it was.
CORE_API void save_text(IFileSystem& files, const wstring& url, const std::function<void(wostream&)>& write);

} // namespace core
