// SPDX-License-Identifier: Apache-2.0
#include "core/streams/text_source.h"

#include <core/files/file_io.h>
#include <core/files/url.h>
#include <core/streams/errors.h>
#include <core/streams/text_file.h>

#include <utility>

namespace core {
namespace detail {

DecodingBuffer::DecodingBuffer(ByteReader read, wstring name, const TextReaderOptions& options)
    : source_(std::make_unique<TextSource>(std::move(read), std::move(name), options)) {}
DecodingBuffer::~DecodingBuffer() = default;

DecodingBuffer::int_type DecodingBuffer::underflow() {
    if (gptr() == egptr()) {
        const wstring_view units = source_->next();
        auto* const begin = const_cast<wchar*>(units.data()); // the get area is never written
        setg(begin, begin, begin + units.size());
    }
    return gptr() == egptr() ? traits_type::eof() : traits_type::to_int_type(*gptr());
}

namespace {

constexpr std::size_t kUnits = std::size_t{16} * 1024;

} // namespace

EncodingBuffer::EncodingBuffer(ByteWriter write, wstring name, const TextWriterOptions& options)
    : name_(std::move(name)), writer_(std::move(write), name_, options),
      units_(std::make_unique_for_overwrite<wchar[]>(kUnits)) {
    setp(units_.get(), units_.get() + kUnits);
}
EncodingBuffer::~EncodingBuffer() = default;

/// Even after a failure, which comes again then.
void EncodingBuffer::write() {
    const wstring_view units(pbase(), pptr());
    setp(units_.get(), units_.get() + kUnits);
    writer_.write(units);
}

EncodingBuffer::int_type EncodingBuffer::overflow(int_type unit) {
    write();
    if (!traits_type::eq_int_type(unit, traits_type::eof())) {
        *writeBegin() = traits_type::to_char_type(unit);
        wroteTo(writeBegin() + 1);
    }
    return traits_type::not_eof(unit);
}

int EncodingBuffer::sync() {
    write();
    writer_.flush();
    return 0;
}

void EncodingBuffer::finish() {
    write();
    writer_.finish();
}

} // namespace detail

TextOutStream::TextOutStream(const InterfacePtr<IFile>& file, const TextWriterOptions& options)
    : TextOutStream([file](std::span<const std::byte> bytes) { write_all(*file, bytes); }, file->url(),
                    options) {}

void TextOutStream::finish() {
    buffer_.finish();
    if (fail())
        throw_error<FileStreamException>(messages::kTextNotWhole, {shown_url(buffer_.name())});
}

wstring read_text(TextInStream& in) {
    auto& buffer = static_cast<TextBuffer&>(*in.rdbuf());
    wstring text;
    while (buffer.fill()) {
        text.append(buffer.atHand());
        buffer.readTo(buffer.readEnd());
    }
    return text;
}

wstring load_text(IFileSystem& files, const wstring& url, const TextReaderOptions& options) {
    TextInStream stream(files.openURL(url, OpenMode::read), options);
    return read_text(stream);
}

void put_text(wostream& out, wstring_view text) {
    const auto size = static_cast<std::streamsize>(text.size());
    if (out.good() && out.rdbuf()->sputn(text.data(), size) != size)
        out.setstate(std::ios_base::badbit);
}

void save_text(IFileSystem& files, const wstring& url, const std::function<void(wostream&)>& write,
               const TextWriterOptions& options) {
    files.writeFile(url, [&](IFile& file) {
        TextOutStream stream([&file](std::span<const std::byte> bytes) { write_all(file, bytes); }, url,
                             options);
        write(stream);
        stream.finish();
    });
}

} // namespace core
