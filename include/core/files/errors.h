// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/exception.h>

#include <cstdint>
#include <tuple>

/// The failures of files.
namespace core {

namespace messages {

// In all of them {0} is the URL of the file, as shown_url() shows it, and {1} the system's reason.

/// The attributes of a file could not be set.
inline constexpr const char* kFileAttributes = "IDS_FILE_ATTRIBUTES";
/// A file could not be copied.
inline constexpr const char* kFileCopy = "IDS_FILE_COPY";
/// A folder would be copied or moved into itself.
inline constexpr const char* kFileCopyIntoItself = "IDS_FILE_COPY_INTO_ITSELF";
/// A file would be copied or moved onto itself.
inline constexpr const char* kFileCopyOntoItself = "IDS_FILE_COPY_ONTO_ITSELF";
/// A file could not be made durable.
inline constexpr const char* kFileFlush = "IDS_FILE_FLUSH";
/// A file could not be locked.
inline constexpr const char* kFileLock = "IDS_FILE_LOCK";
/// A folder could not be made.
inline constexpr const char* kFileMakeFolder = "IDS_FILE_MAKE_FOLDER";
/// A file could not be moved.
inline constexpr const char* kFileMove = "IDS_FILE_MOVE";
/// A file could not be opened.
inline constexpr const char* kFileOpen = "IDS_FILE_OPEN";
/// A file could not be read.
inline constexpr const char* kFileRead = "IDS_FILE_READ";
/// A file could not be removed.
inline constexpr const char* kFileRemove = "IDS_FILE_REMOVE";
/// No file system knows the scheme of a URL.
inline constexpr const char* kFileScheme = "IDS_FILE_SCHEME";
/// A file has no such offset.
inline constexpr const char* kFileSeek = "IDS_FILE_SEEK";
/// The scheme of a URL cannot do what is asked for.
inline constexpr const char* kFileUnsupported = "IDS_FILE_UNSUPPORTED";
/// A file could not be written.
inline constexpr const char* kFileWrite = "IDS_FILE_WRITE";

} // namespace messages

/// A file or a folder with which something could not be done. The message holds the URL, as shown_url() shows
/// it, and the system's reason.
class CORE_API FileException : public BasicException<FileException> {
  public:
    /// The class id of FileExceptionObject.
    static constexpr GUID kClassId = "9db1fa37-b455-4f3f-b8dd-7de0ea7d6da3"_guid;

    using BasicException::BasicException;
    /// Makes a failure of the file at `url`. `systemError` is the system's error number (errno), 0 when the
    /// system gave none. Takes a reference to `cause`, which may be null.
    FileException(const wstring& description, const wstring& url, std::int32_t systemError,
                  IExceptionObject* cause = nullptr)
        : BasicException(description, cause), url_(url), systemError_(systemError) {}
    /// Returns the URL of the file, borrowed: valid as long as this exception.
    [[nodiscard]] const wstring& url() const noexcept { return url_; }
    /// Returns the system's error number (errno), 0 when the system gave none.
    [[nodiscard]] std::int32_t systemError() const noexcept { return systemError_; }

  private:
    template <class>
    friend class IExceptionObjectImpl;
    static auto fields(auto& self) noexcept { return std::tie(self.url_, self.systemError_); }

    wstring url_;
    std::int32_t systemError_ = 0;
};

/// The error object of FileException.
using FileExceptionObject = IExceptionObjectImpl<FileException>;

/// Throws FileException with the message stored under `id`, whose {0} is the URL as shown_url() shows it and
/// whose {1} is the system's reason for `systemError` (errno). The exception takes a reference to `cause`,
/// which may be null.
[[noreturn]] CORE_API void throw_file_error(const char* id, const wstring& url, int systemError,
                                            IExceptionObject* cause = nullptr);

} // namespace core
