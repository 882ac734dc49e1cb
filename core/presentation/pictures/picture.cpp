// SPDX-License-Identifier: Apache-2.0
#include "core/lists/malformed.h"
#include "core/strings/table_hash.h"

#include <core/files/file_io.h>
#include <core/files/file_system.h>
#include <core/files/url.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/presentation/errors.h>
#include <core/presentation/picture.h>
#include <core/presentation/services.h>
#include <core/runtime/process.h>
#include <core/strings/compare.h>
#include <core/strings/integer_text.h>

#include <algorithm>

namespace core {

struct Picture::Content {
    std::vector<std::byte> bytes;
    PictureInfo info;
};

namespace {

enum class Stored : std::int32_t { nothing, name, bytes };

constexpr wstring_view kFormats[] = {u"",     u"PNG",  u"JPEG", u"GIF", u"BMP", u"ICO",
                                     u"TIFF", u"WebP", u"SVG",  u"EMF", u"WMF"};

} // namespace

Picture Picture::fromBytes(std::vector<std::byte> bytes) {
    const PictureInfo info = picture_info(bytes);
    if (info.format == PictureFormat::unknown)
        throw_error<PresentationException>(messages::kNotAPicture, {wstring()});
    Picture picture;
    picture.content_ = std::make_shared<const Content>(Content{std::move(bytes), info});
    return picture;
}

Picture Picture::fromFile(const wstring& file) {
    const auto opened = require_service<IFileSystem>().openURL(file, OpenMode::read);
    // A file that is not a picture may be long; its first bytes tell.
    if (picture_info(*opened).format == PictureFormat::unknown)
        throw_error<PresentationException>(messages::kNotAPicture, {shown_url(opened->url())});
    return fromBytes(read_whole(*opened));
}

Picture Picture::named(wstring name) {
    Picture picture;
    picture.name_ = std::move(name);
    return picture;
}

std::span<const std::byte> Picture::bytes() const noexcept {
    return content_ != nullptr ? std::span<const std::byte>(content_->bytes) : std::span<const std::byte>();
}

const PictureInfo& Picture::info() const noexcept {
    static constexpr PictureInfo kUnknown;
    return content_ != nullptr ? content_->info : kUnknown;
}

Picture Picture::resolved() const {
    if (name_.empty())
        return *this;
    IPresentationService* const service = get_service<IPresentationService>();
    Picture found = service != nullptr ? service->picture(name_) : Picture();
    if (found.isEmpty())
        throw_error<PresentationException>(messages::kUnknownPicture, {name_});
    return found;
}

wstring Picture::presentation() const {
    if (content_ == nullptr)
        return name_;
    wstring text(kFormats[static_cast<std::size_t>(info().format)]);
    if (info().width != 0)
        text.append(u", ")
            .append(string_intto(info().width))
            .append(u" × ")
            .append(string_intto(info().height));
    return text;
}

bool operator==(const Picture& a, const Picture& b) noexcept {
    return a.content_ == b.content_
               ? compare_nocase(wstring_view(a.name_), wstring_view(b.name_)) == 0
               : a.content_ != nullptr && b.content_ != nullptr && std::ranges::equal(a.bytes(), b.bytes());
}

std::int32_t Picture::hash() const noexcept {
    const std::uint64_t hash = content_ != nullptr ? table_hash(content_->bytes) : table_hash_nocase(name_);
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(hash));
}

void to_stream(ListOutStream& out, const Picture& picture) {
    out.putBeginOfList();
    if (picture.isEmpty()) {
        out.put(static_cast<std::int32_t>(Stored::nothing));
    } else if (!picture.name().empty()) {
        out.put(static_cast<std::int32_t>(Stored::name));
        out.put(picture.name());
    } else {
        out.put(static_cast<std::int32_t>(Stored::bytes));
        out.putBytes(picture.bytes());
    }
    out.putEndOfList();
}

void from_stream(ListInStream& in, Picture& picture) {
    std::int32_t stored = 0;
    wstring name;
    std::vector<std::byte> bytes;
    in.getBeginOfList();
    in.get(stored);
    if (stored == static_cast<std::int32_t>(Stored::name))
        in.get(name);
    else if (stored == static_cast<std::int32_t>(Stored::bytes))
        in.get(bytes);
    else if (stored != static_cast<std::int32_t>(Stored::nothing))
        throw_malformed();
    in.getEndOfList();
    const bool hasBytes = stored == static_cast<std::int32_t>(Stored::bytes);
    if (hasBytes && picture_info(bytes).format == PictureFormat::unknown)
        throw_malformed();
    picture = hasBytes ? Picture::fromBytes(std::move(bytes)) : Picture::named(std::move(name));
}

} // namespace core
