// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/files/file.h>
#include <core/files/url.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace core {

/// What a search finds of a file.
struct FileInfo {
    wstring url{};
    wstring name{}; ///< the last part of the URL; the whole name of an inner file
    std::uint64_t length = 0;
    Date created{};  ///< empty where it is not known; universal time
    Date modified{}; ///< universal time
    bool isFolder = false;
};

/// Writes the content of a file that is empty as yet.
using FileWriter = std::function<void(IFile&)>;

/// The operations on files whose URLs begin with one scheme.
///
/// Patterns may hold "*" and "?" in the last part of the path (anywhere in the name of an inner file).
/// Errors: FileException, or what the scheme throws for its own files; both hold the URL. Threads: any.
class CORE_API IFileScheme : public IUnknown {
  public:
    static constexpr GUID IID = "2185a724-1877-4ba9-8d3d-2e66ef631d03"_guid;

    [[nodiscard]] virtual const wstring& schemeName() const noexcept = 0;
    /// Takes a URL of this scheme apart, options included where the scheme has any.
    [[nodiscard]] virtual URL parseURL(const wstring& url) const = 0;
    [[nodiscard]] virtual InterfacePtr<IFile> openURL(const wstring& url, OpenMode mode) = 0;
    /// What matches, by name; nothing when nothing does.
    [[nodiscard]] virtual std::vector<FileInfo> findFile(const wstring& pattern) = 0;
    /// Removes what matches and returns how many files that were. A URL without pattern must exist.
    virtual std::size_t remove(const wstring& pattern) = 0;
    /// Both URLs are of this scheme. An existing target is replaced; a file is never copied onto itself.
    virtual void copyFile(const wstring& from, const wstring& to) = 0;
    virtual void moveFile(const wstring& from, const wstring& to) = 0;
    /// Makes what `write` writes a file, or replaces one, which keeps its permissions. A failure, in `write`
    /// as well, leaves what was there. As it stands here a file beside is written, and moved when it is
    /// durable.
    virtual void writeFile(const wstring& to, const FileWriter& write);
    /// The same with all bytes of `content`.
    virtual void saveFile(IFile& content, const wstring& to);

  protected:
    ~IFileScheme() = default;
};

/// The file system service: hands each operation to the scheme that the URL names, without regard to
/// case. URLs without scheme are paths on disk. "file" and "mem" are always there; "lumstg" and
/// "lumstg64" reach into containers.
class IFileSystem : public IUnknown {
  public:
    static constexpr GUID IID = "3a6c2186-45c3-11d4-985d-008048da1252"_guid;

    /// Takes a reference to `scheme`, which replaces one of the same name.
    virtual void registerScheme(IFileScheme* scheme) = 0;
    virtual void revokeScheme(const wstring& name) = 0;
    /// Null when no such scheme is registered.
    [[nodiscard]] virtual InterfacePtr<IFileScheme> findScheme(const wstring& name) = 0;

    [[nodiscard]] virtual URL parseURL(const wstring& url) = 0;
    [[nodiscard]] virtual InterfacePtr<IFile> openURL(const wstring& url, OpenMode mode) = 0;
    [[nodiscard]] virtual std::vector<FileInfo> findFile(const wstring& pattern) = 0;
    virtual std::size_t remove(const wstring& pattern) = 0;
    /// Between two schemes the bytes are copied, and moving is copying, then removing.
    virtual void copyFile(const wstring& from, const wstring& to) = 0;
    virtual void moveFile(const wstring& from, const wstring& to) = 0;
    virtual void writeFile(const wstring& to, const FileWriter& write) = 0;

  protected:
    ~IFileSystem() = default;
};

/// Makes the file system service for a program without process object.
[[nodiscard]] CORE_API InterfacePtr<IFileSystem> create_file_system();

/// Announces a scheme that every file system made from now on has: a static object of
/// the scheme's source file.
class FileSchemeEntry {
  public:
    CORE_API explicit FileSchemeEntry(InterfacePtr<IFileScheme> (*create)()) noexcept;

  private:
    friend class FileSystem;
    InterfacePtr<IFileScheme> (*create_)();
    FileSchemeEntry* next_;
};

} // namespace core
