// SPDX-License-Identifier: Apache-2.0
#include <core/files/file_io.h>
#include <core/streams/errors.h>
#include <core/streams/text_file.h>

namespace core {

TextOutStream::TextOutStream(const InterfacePtr<IFile>& file)
    : TextOutStream([file](std::span<const std::byte> bytes) { write_all(*file, bytes); }, file->url()) {}

void TextOutStream::finish() {
    buffer_.finish();
    if (fail())
        throw_error<FileStreamException>(messages::kTextNotWhole, {buffer_.name()});
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

wstring load_text(IFileSystem& files, const wstring& url) {
    TextInStream stream(files.openURL(url, OpenMode::read));
    return read_text(stream);
}

void put_text(wostream& out, wstring_view text) {
    const auto size = static_cast<std::streamsize>(text.size());
    if (out.good() && out.rdbuf()->sputn(text.data(), size) != size)
        out.setstate(std::ios_base::badbit);
}

void save_text(IFileSystem& files, const wstring& url, const std::function<void(wostream&)>& write) {
    files.writeFile(url, [&](IFile& file) {
        TextOutStream stream([&file](std::span<const std::byte> bytes) { write_all(file, bytes); }, url);
        write(stream);
        stream.finish();
    });
}

} // namespace core
