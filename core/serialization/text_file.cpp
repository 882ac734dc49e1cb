// SPDX-License-Identifier: Apache-2.0
#include <core/files/file_io.h>
#include <core/runtime/error.h>
#include <core/runtime/random.h>
#include <core/serialization/text_file.h>

#include <exception>

namespace core {

TextOutStream::TextOutStream(const InterfacePtr<IFile>& file)
    : TextOutStream([file](std::span<const std::byte> bytes) { write_all(*file, bytes); }, file->url()) {}

void TextOutStream::finish() {
    buffer_.finish();
    if (fail())
        throw_error<FileStreamException>("IDS_TEXT_NOT_WHOLE", {buffer_.name()});
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

void save_text(IFileSystem& files, const wstring& url, const std::function<void(wostream&)>& write) {
    const wstring beside = url + u"." + to_string(new_guid());
    const InterfacePtr<IFile> file = files.openURL(beside, OpenMode::createNew);
    try {
        TextOutStream stream(file);
        write(stream);
        stream.finish();
        file->flush();
        file->close();
        files.moveFile(beside, url);
    } catch (...) {
        const std::exception_ptr error = std::current_exception();
        try {
            file->close();
            files.remove(beside);
        } catch (const std::exception&) {
            // What is reported is why the text was not saved.
        }
        std::rethrow_exception(error);
    }
}

} // namespace core
