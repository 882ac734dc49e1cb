// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/presentation/border.h>
#include <core/presentation/picture.h>
#include <core/presentation/style.h>
#include <core/runtime/unknown.h>

#include <cstdint>
#include <span>
#include <vector>

/// The services for presentation values: get_service<T>() returns each. Threads: any.
namespace core {

/// The service for lines.
class ILinesService : public IUnknown {
  public:
    static constexpr GUID IID = "4cd40c05-627a-4c45-92a6-5be0f2e3dc9f"_guid; ///< the interface's id

    /// Returns the line that is drawn where nothing else is said: solid, one pixel, in the colour of the
    /// text.
    [[nodiscard]] virtual LumLine standard() const noexcept = 0;
    /// Returns how long the dashes and gaps of a kind are by turns, in widths of the line, borrowed for ever;
    /// empty for a kind without gaps.
    [[nodiscard]] virtual std::span<const std::uint8_t> dashes(LineKind kind) const noexcept = 0;

  protected:
    ~ILinesService() = default;
};

/// The service for borders.
class IBordersService : public IUnknown {
  public:
    static constexpr GUID IID = "b5efe0a9-786b-49e4-8c76-4c17fa2a145a"_guid; ///< the interface's id

    /// Returns the border that is drawn for a border: itself, or for the automatic one what the style of the
    /// process has; the standard line on all sides where the style has none. Throws std::bad_alloc.
    [[nodiscard]] virtual LumBorder resolve(const LumBorder& border) const = 0;

  protected:
    ~IBordersService() = default;
};

/// The service for the look of a process: the style in use, and the pictures that have names.
class IPresentationService : public IUnknown {
  public:
    static constexpr GUID IID = "c09e12f6-7fc0-4840-8b69-b16dde91e2ec"_guid; ///< the interface's id

    /// Returns a copy of the style in use, at first one that sets nothing. Throws std::bad_alloc.
    [[nodiscard]] virtual Style style() const = 0;
    /// Puts a style into use. Throws std::bad_alloc; the old one stays then.
    virtual void setStyle(const Style& style) = 0;

    /// Registers the content of a picture under a name, without regard to case; it replaces one of the same
    /// name. Throws ContextException (messages::kParameterValue) for an empty name and for a picture without
    /// bytes, and std::bad_alloc.
    virtual void registerPicture(wstring_view name, const Picture& picture) = 0;
    /// Forgets the picture of a name; no effect if none exists. Pictures that hold its bytes keep them.
    virtual void revokePicture(wstring_view name) noexcept = 0;
    /// Returns the picture of a name, with its bytes; an empty one if none exists.
    [[nodiscard]] virtual Picture picture(wstring_view name) const = 0;
    /// Returns the names of the pictures, sorted without regard to case. Throws std::bad_alloc.
    [[nodiscard]] virtual std::vector<wstring> pictureNames() const = 0;

  protected:
    ~IPresentationService() = default;
};

/// What can be done with what a process shows. The numbers are those of the script enumeration.
enum class OutputRight : std::int32_t {
    print = 0, ///< print it
    save = 1,  ///< write it to a file
    copy = 2,  ///< copy it to other programs
};
/// Returns the script enumeration of the rights, borrowed; it lives as long as the library.
[[nodiscard]] CORE_API Enumeration* script_enumeration(OutputRight) noexcept;

/// The service that says what may be done with output. At first everything is allowed.
class IOutputRightAccessController : public IUnknown {
  public:
    static constexpr GUID IID = "2eeeae1d-d63c-4177-a68b-9eab2f7fe6ba"_guid; ///< the interface's id

    /// Says whether a kind of output is allowed.
    [[nodiscard]] virtual bool isAllowed(OutputRight right) const noexcept = 0;
    /// Allows a kind of output, or forbids it.
    virtual void setAllowed(OutputRight right, bool allowed) noexcept = 0;

  protected:
    ~IOutputRightAccessController() = default;
};

/// Throws PresentationException (messages::kOutputNotAllowed) when the calling thread's process forbids a
/// kind of output. Without the service everything is allowed.
CORE_API void require_output_right(OutputRight right);

} // namespace core
