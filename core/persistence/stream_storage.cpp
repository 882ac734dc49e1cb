// SPDX-License-Identifier: Apache-2.0
#include "core/lists/compact_reader.h"
#include "core/lists/compact_writer.h"
#include "core/lists/malformed.h"
#include "core/persistence/failures.h"

#include <core/files/file_io.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/persistence/errors.h>
#include <core/persistence/stream_storage.h>
#include <core/runtime/code_hold.h>
#include <core/streams/text_file.h>
#include <core/strings/integer_text.h>

#include <optional>

namespace core {
namespace {

/// What the compact form begins with, before the byte of its version. No text begins like this: the first
/// byte stands nowhere in UTF-8.
constexpr std::byte kMark[] = {std::byte{0xC1}, std::byte{'c'}, std::byte{'f'}};
constexpr std::byte kVersion{1};

} // namespace

namespace detail {

/// A text, or the writer of the compact form, and the stream of tokens over the one that is there.
struct FormWriter {
    FormWriter(StoredForm form, ByteWriter write, wstring name) {
        if (form == StoredForm::text) {
            list.emplace(text.emplace(std::move(write), std::move(name)));
            return;
        }
        list.emplace(compact.emplace(std::move(write)));
        compact->putRaw(kMark);
        compact->putRaw({&kVersion, 1});
    }

    std::optional<TextOutStream> text;
    std::optional<CompactWriter> compact;
    std::optional<ListOutStream> list;
};

/// The same for reading. The first byte is looked at before it is known what reads it.
struct FormReader {
    FormReader(ByteReader read, wstring name) {
        std::byte first{};
        const bool any = read(std::span(&first, 1)) == 1;
        auto whole = [read = HeldFunction<ByteReader>(std::move(read)), first,
                      pending = any](std::span<std::byte> bytes) mutable {
            if (!std::exchange(pending, false))
                return read(bytes);
            bytes.front() = first;
            return std::size_t{1};
        };
        if (any && stored_form({&first, 1}) == StoredForm::compact)
            begin(compact.emplace(ByteReader(std::move(whole))));
        else
            list.emplace(text.emplace(std::move(whole), std::move(name)));
    }
    FormReader(std::span<const std::byte> bytes, wstring name) {
        if (stored_form(bytes) == StoredForm::compact) {
            begin(compact.emplace(bytes));
            return;
        }
        list.emplace(text.emplace(
            [bytes](std::span<std::byte> room) mutable {
                const std::size_t count = std::min(room.size(), bytes.size());
                std::copy_n(bytes.begin(), count, room.begin());
                bytes = bytes.subspan(count);
                return count;
            },
            std::move(name)));
    }

    void begin(CompactReader& reader) {
        for (const std::byte expected : kMark) {
            if (reader.take() != expected)
                reader.fail();
        }
        const std::byte version = reader.take();
        if (version != kVersion)
            throw_error<VersionException>(messages::kCompactVersion,
                                          {string_intto(std::to_integer<std::uint32_t>(version)),
                                           string_intto(std::to_integer<std::uint32_t>(kVersion))});
        list.emplace(reader);
    }

    std::optional<TextInStream> text;
    std::optional<CompactReader> compact;
    std::optional<ListInStream> list;
};

} // namespace detail

StoredForm stored_form(std::span<const std::byte> data) noexcept {
    return !data.empty() && data.front() == kMark[0] ? StoredForm::compact : StoredForm::text;
}

StreamOutStorage::StreamOutStorage(StoredForm form, ByteWriter write, wstring name)
    : writer_(std::make_unique<detail::FormWriter>(form, std::move(write), std::move(name))) {}

StreamOutStorage::StreamOutStorage(StoredForm form, IFile& file)
    : StreamOutStorage(
          form, [&file](std::span<const std::byte> bytes) { write_all(file, bytes); }, file.url()) {}

StreamOutStorage::~StreamOutStorage() = default;

ListOutStream& StreamOutStorage::listStream() noexcept {
    return *writer_->list;
}

void StreamOutStorage::putFailure(const Exception& failure, std::span<const FailureField> fields) {
    detail::put_failure(*this, failure, fields);
}

void StreamOutStorage::finish() {
    if (writer_->text)
        writer_->text->finish();
    else
        writer_->compact->finish();
}

StreamInStorage::StreamInStorage(ByteReader read, wstring name)
    : reader_(std::make_unique<detail::FormReader>(std::move(read), std::move(name))) {}

StreamInStorage::StreamInStorage(IFile& file)
    : StreamInStorage([&file](std::span<std::byte> bytes) { return file.read(bytes.data(), bytes.size()); },
                      file.url()) {}

StreamInStorage::StreamInStorage(std::span<const std::byte> bytes, wstring name)
    : reader_(std::make_unique<detail::FormReader>(bytes, std::move(name))) {}

StreamInStorage::~StreamInStorage() = default;

ListInStream& StreamInStorage::listStream() noexcept {
    return *reader_->list;
}

StoredFailure StreamInStorage::getFailure(std::span<FailureField> fields) {
    return detail::get_failure(*this, fields);
}

StoredForm StreamInStorage::form() const noexcept {
    return reader_->compact ? StoredForm::compact : StoredForm::text;
}

void StreamInStorage::finish() {
    if (reader_->compact)
        return reader_->compact->expectNothing();
    skip_spaces(*reader_->text);
    if (reader_->text->peek() != TextInStream::traits_type::eof())
        throw_malformed();
}

} // namespace core
