// SPDX-License-Identifier: Apache-2.0
#include <core/files/file_io.h>
#include <core/runtime/code_hold.h>
#include <core/streams/detection.h>
#include <core/streams/text_writer.h>

#include <algorithm>
#include <array>
#include <exception>
#include <utility>
#include <vector>

namespace core {
namespace {

/// The encoding in which a text goes on that has a beginning in the file: "UTF-16" and "UTF-32" would begin
/// with a mark again, and go on in the order of bytes that the first one says.
Encoding continued(Encoding encoding, IFile& file) {
    const bool isUtf16 = encoding.name() == u"UTF-16";
    if (!isUtf16 && encoding.name() != u"UTF-32")
        return encoding;
    std::array<std::byte, 4> bytes{};
    const std::size_t size = read_all_at(file, 0, bytes);
    const DetectedEncoding found = detect_encoding(std::span(bytes).first(size), false);
    if (found.markSize != 0 && found.encoding.name().starts_with(encoding.name()))
        return found.encoding;
    return Encoding(isUtf16 ? u"UTF-16BE" : u"UTF-32BE");
}

TextWriterOptions at_current_position(TextWriterOptions options, IFile& file) {
    if (file.seek(0, SeekOrigin::current) == 0)
        return options;
    options.mark = false;
    options.encoding = continued(options.encoding, file);
    return options;
}

} // namespace

struct TextWriter::State {
    State(ByteWriter writer, wstring name, const TextWriterOptions& wanted)
        : write(std::move(writer)), options(wanted),
          encoder(wanted.encoding, wanted.action, std::move(name)) {
        if (options.mark)
            size = static_cast<std::size_t>(std::ranges::copy(options.encoding.mark(), bytes.begin()).out -
                                            bytes.begin());
    }

    /// Does the work, or throws again what it threw before.
    template <class Work>
    void guarded(Work work) {
        if (error != nullptr)
            std::rethrow_exception(error);
        try {
            work();
        } catch (...) {
            error = std::current_exception();
            throw;
        }
    }
    void encode(wstring_view text, bool last) {
        for (ConvertStep step{1, 0}; step.taken + step.made != 0;) {
            if (size == bytes.size())
                handOver();
            step = encoder.encode(text, std::span(bytes).subspan(size), last);
            text.remove_prefix(step.taken);
            size += step.made;
        }
    }
    void handOver() {
        if (size != 0)
            write(std::span(bytes).first(size));
        size = 0;
    }
    /// Writes a text with the line end of the options in place of each of its own.
    void convert(wstring_view text) {
        while (!text.empty()) {
            if (std::exchange(endedWithCr, false) && text.front() == u'\n')
                text.remove_prefix(1);
            const std::size_t length = std::min(text.find_first_of(u"\r\n"), text.size());
            encode(text.substr(0, length), false);
            text.remove_prefix(length);
            if (text.empty())
                break;
            encode(line_end_text(options.lineEnd), false);
            endedWithCr = text.front() == u'\r';
            text.remove_prefix(1);
        }
    }

    HeldFunction<ByteWriter> write;
    TextWriterOptions options;
    Encoder encoder;
    std::vector<std::byte> bytes = std::vector<std::byte>(std::size_t{64} << 10);
    std::size_t size = 0;
    std::uint64_t position = 0;
    bool endedWithCr = false;
    std::exception_ptr error;
};

TextWriter::TextWriter(ByteWriter write, wstring name, const TextWriterOptions& options)
    : state_(std::make_unique<State>(std::move(write), std::move(name), options)) {}
TextWriter::TextWriter(const InterfacePtr<IFile>& file, const TextWriterOptions& options)
    : TextWriter([file](std::span<const std::byte> bytes) { write_all(*file, bytes); }, file->url(),
                 at_current_position(options, *file)) {}
TextWriter::~TextWriter() = default;
TextWriter::TextWriter(TextWriter&&) noexcept = default;
TextWriter& TextWriter::operator=(TextWriter&&) noexcept = default;

void TextWriter::write(wstring_view text) {
    State& state = *state_;
    state.guarded([&] { state.options.convertEnds ? state.convert(text) : state.encode(text, false); });
    state.position += text.size();
}

void TextWriter::writeLine(wstring_view text) {
    write(text);
    State& state = *state_;
    const wstring_view end = line_end_text(state.options.lineEnd);
    state.guarded([&] { state.encode(end, false); });
    state.position += end.size();
    state.endedWithCr = false;
}

void TextWriter::flush() {
    state_->guarded([&] { state_->handOver(); });
}

void TextWriter::finish() {
    state_->guarded([&] {
        state_->encode({}, true);
        state_->handOver();
    });
}

std::uint64_t TextWriter::position() const noexcept {
    return state_->position;
}
std::uint64_t TextWriter::faults() const noexcept {
    return state_->encoder.faults();
}
Encoding TextWriter::encoding() const noexcept {
    return state_->options.encoding;
}

} // namespace core
