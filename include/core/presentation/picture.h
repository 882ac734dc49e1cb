// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/presentation/picture_info.h>

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace core {

class ListInStream;
class ListOutStream;

/// A picture: the bytes of a file, which never change, or the name that such bytes are registered under with
/// IPresentationService. No pixel is decoded. Copies share the bytes, so copying costs next to nothing; safe
/// to read on any thread.
class CORE_API Picture {
  public:
    /// No picture.
    Picture() noexcept = default;
    /// Returns the picture of these bytes. Throws PresentationException (messages::kNotAPicture) for bytes of
    /// a format that is not known, and std::bad_alloc.
    [[nodiscard]] static Picture fromBytes(std::vector<std::byte> bytes);
    /// Returns the picture in a file, by its path or URL. Throws FileException, and what fromBytes() throws.
    [[nodiscard]] static Picture fromFile(const wstring& file);
    /// Returns the picture that is registered under a name, whether there is one or not. An empty name gives
    /// no picture.
    [[nodiscard]] static Picture named(wstring name);

    /// Says whether there is neither content nor a name.
    [[nodiscard]] bool isEmpty() const noexcept { return content_ == nullptr && name_.empty(); }
    /// Returns the name, borrowed: valid as long as this object; empty for a picture of bytes.
    [[nodiscard]] const wstring& name() const noexcept { return name_; }
    /// Returns the bytes, borrowed: valid as long as this object or a copy; empty for a picture with a name.
    [[nodiscard]] std::span<const std::byte> bytes() const noexcept;
    /// Returns what the bytes say, read once when the picture was made; nothing is known of a picture with a
    /// name.
    [[nodiscard]] const PictureInfo& info() const noexcept;
    /// Returns the picture with its bytes: itself, or what is registered under its name in the calling
    /// thread's process. Throws PresentationException (messages::kUnknownPicture) when nothing is.
    [[nodiscard]] Picture resolved() const;
    /// Returns what people read, in the language of the thread: the name, or "PNG, 640 × 480". Throws
    /// std::bad_alloc.
    [[nodiscard]] wstring presentation() const;

    /// Says whether the names are equal without regard to case, or the bytes are.
    friend CORE_API bool operator==(const Picture& a, const Picture& b) noexcept;
    /// Returns a hash; equal pictures have equal ones.
    [[nodiscard]] std::int32_t hash() const noexcept;

  private:
    struct Content;

    std::shared_ptr<const Content> content_;
    wstring name_;
};

/// Writes a picture as a list: 0 for none, 1 and the name, or 2 and the bytes. Throws what the stream throws.
CORE_API void to_stream(ListOutStream& out, const Picture& picture);
/// Reads what to_stream() wrote. Throws ListStreamException for anything else, bytes among it that are not a
/// picture; `picture` is unchanged then.
CORE_API void from_stream(ListInStream& in, Picture& picture);

} // namespace core
