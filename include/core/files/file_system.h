// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/files/file.h>
#include <core/files/url.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace core {

/// What a search finds of one file.
struct FileInfo {
    wstring url{};            ///< The whole URL, by which the file can be opened.
    wstring name{};           ///< The last part of the URL; the whole name of an inner file.
    std::uint64_t length = 0; ///< Bytes; 0 for a folder.
    Date created{};           ///< Universal time; the empty date where it is not known.
    Date modified{};          ///< Universal time; the empty date where it is not known.
    bool isFolder = false;    ///< Whether it is a folder of the disk.
};

/// Writes the content of a file, which is empty when the call begins. The file is borrowed for the call.
using FileWriter = std::function<void(IFile&)>;

/// The operations on files whose URLs begin with one scheme. A program adds a scheme with
/// IFileSystem::registerScheme().
///
/// Patterns may hold "*" and "?" in the last part of the path, and anywhere in the name of an inner file.
/// Every operation throws FileException with the URL, or what the scheme throws for its own files. Threads:
/// any.
class CORE_API IFileScheme : public IUnknown {
  public:
    static constexpr GUID IID = "2185a724-1877-4ba9-8d3d-2e66ef631d03"_guid;

    /// Returns the name of the scheme, without "://". The reference is valid as long as the object.
    [[nodiscard]] virtual const wstring& schemeName() const noexcept = 0;
    /// Takes a URL of this scheme apart, its options included where the scheme has any.
    [[nodiscard]] virtual URL parseURL(const wstring& url) const = 0;
    /// Opens a file. Throws when that is not possible in this mode.
    [[nodiscard]] virtual InterfacePtr<IFile> openURL(const wstring& url, OpenMode mode) = 0;
    /// Returns the files that match `pattern`, by name; none when nothing matches.
    [[nodiscard]] virtual std::vector<FileInfo> findFile(const wstring& pattern) = 0;
    /// Removes what matches `pattern` and returns how many files that were. Throws when a URL without
    /// wildcards names no file, and when a file cannot be removed; files before it are gone then.
    virtual std::size_t remove(const wstring& pattern) = 0;
    /// Makes `to` a copy of `from`, or replaces it by one; both URLs are of this scheme. Throws when both are
    /// one file. If anything throws, an old `to` stays.
    virtual void copyFile(const wstring& from, const wstring& to) = 0;
    /// Gives `from` the URL `to` and replaces what was there; both URLs are of this scheme. Throws when both
    /// are one file. If anything throws, `from` stays.
    virtual void moveFile(const wstring& from, const wstring& to) = 0;
    /// Creates or replaces `to` with what `write` produces. If anything throws, also `write`, the old file
    /// stays. A file that is replaced keeps its permissions. Unless a scheme overrides it, this writes a file
    /// beside `to`, flushes it and moves it to `to`.
    virtual void writeFile(const wstring& to, const FileWriter& write);
    /// Creates or replaces `to` with all bytes of `content`, as writeFile() does.
    virtual void saveFile(IFile& content, const wstring& to);

  protected:
    ~IFileScheme() = default;
};

/// The file system service: it hands each operation to the scheme that the URL names, without regard to case.
/// A URL without scheme is a path on disk. "file" and "mem" are always there; "lumstg" and "lumstg64" reach
/// into containers. Each operation throws FileException when no such scheme is registered, and what the
/// scheme throws. Threads: any.
class IFileSystem : public IUnknown {
  public:
    static constexpr GUID IID = "3a6c2186-45c3-11d4-985d-008048da1252"_guid;

    /// Adds a scheme, to which it takes a reference; it replaces one of the same name.
    virtual void registerScheme(IFileScheme* scheme) = 0;
    /// Removes the scheme of this name; no effect if none exists. Files open through it stay open.
    virtual void revokeScheme(const wstring& name) = 0;
    /// Returns the scheme of this name, or null when no such scheme is registered.
    [[nodiscard]] virtual InterfacePtr<IFileScheme> findScheme(const wstring& name) = 0;

    /// Takes a URL apart as its scheme does.
    [[nodiscard]] virtual URL parseURL(const wstring& url) = 0;
    /// Opens a file through its scheme.
    [[nodiscard]] virtual InterfacePtr<IFile> openURL(const wstring& url, OpenMode mode) = 0;
    /// Returns the files that match `pattern`, by name; none when nothing matches.
    [[nodiscard]] virtual std::vector<FileInfo> findFile(const wstring& pattern) = 0;
    /// Removes what matches `pattern` and returns how many files that were, as IFileScheme::remove() does.
    virtual std::size_t remove(const wstring& pattern) = 0;
    /// Makes `to` a copy of `from`, or replaces it by one. Between two schemes the bytes are copied. If
    /// anything throws, an old `to` stays.
    virtual void copyFile(const wstring& from, const wstring& to) = 0;
    /// Gives `from` the URL `to` and replaces what was there. Between two schemes the bytes are copied, then
    /// `from` is removed; a failure between the two leaves both. A name that reads as a pattern is not moved
    /// to another scheme while it matches other files.
    virtual void moveFile(const wstring& from, const wstring& to) = 0;
    /// Creates or replaces `to` with what `write` produces. If anything throws, the old file stays.
    virtual void writeFile(const wstring& to, const FileWriter& write) = 0;

  protected:
    ~IFileSystem() = default;
};

/// Makes the file system service for a program that has no process object.
[[nodiscard]] CORE_API InterfacePtr<IFileSystem> create_file_system();

/// Announces a scheme that every file system made from now on has. It is a static object of the scheme's
/// source file and must live as long as the program.
class FileSchemeEntry {
  public:
    /// Announces the scheme that `create` makes, a new object for each file system.
    CORE_API explicit FileSchemeEntry(InterfacePtr<IFileScheme> (*create)()) noexcept;

  private:
    friend class FileSystem;
    InterfacePtr<IFileScheme> (*create_)();
    FileSchemeEntry* next_;
};

} // namespace core
