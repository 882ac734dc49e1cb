// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/files/file.h>
#include <core/files/url.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace core {

/// What is known of a file or a folder.
struct FileInfo {
    wstring url{};            ///< The whole URL, by which the file can be opened.
    wstring name{};           ///< The last part of the URL; the whole name of an inner file.
    std::uint64_t length = 0; ///< Bytes; 0 for a folder.
    Date created{};           ///< Universal time; the empty date where it is not known.
    Date modified{};          ///< Universal time; the empty date where it is not known.
    bool isFolder = false;    ///< Whether it is a folder of the disk, or a link to one.
    bool isLink = false;      ///< Whether it is a symbolic link; the rest is that of what it leads to.
    unsigned permissions = 0; ///< As the system counts them (0644); 0 where the scheme has none.
};

/// What setAttributes() sets; what is missing stays.
struct FileAttributes {
    std::optional<Date> modified{};        ///< Universal time.
    std::optional<unsigned> permissions{}; ///< As the system counts them (0644).
};

/// How much room there is for files.
struct FileSpace {
    std::uint64_t total = 0;     ///< Bytes.
    std::uint64_t available = 0; ///< Bytes that this process can still write.
};

/// What a scheme can do besides opening, finding and removing files.
struct FileCapabilities {
    bool keeps = true;    ///< Files stay when nobody has them open, so that they can be copied and moved to.
    bool folders = false; ///< Files lie in folders, which can be made, removed, copied and moved.
    bool times = false;   ///< The time of the last change can be set.
    bool permissions = false; ///< Permissions can be set.
    bool space = false;       ///< How much room there is can be asked.
};

/// Writes the content of a file, which is empty when the call begins. The file is borrowed for the call.
using FileWriter = std::function<void(IFile&)>;

/// The operations on files whose URLs begin with one scheme. A program adds a scheme with
/// IFileSystem::registerScheme().
///
/// Patterns may hold "*" and "?" in the last part of the path, and anywhere in the name of an inner file.
/// Every operation throws FileException with the URL, or what the scheme throws for its own files. Those that
/// capabilities() denies throw it with kFileUnsupported (ENOTSUP). Threads: any.
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

    /// Returns what the scheme can do; unless a scheme overrides it, files are kept and that is all.
    [[nodiscard]] virtual FileCapabilities capabilities() const noexcept;
    /// Returns what is known of the file or folder with this very URL, in which "*" and "?" are characters;
    /// nothing when neither exists. A link that leads nowhere is there.
    [[nodiscard]] virtual std::optional<FileInfo> describe(const wstring& url);
    /// Makes a folder, with those above it. Does nothing when it is there. If anything throws, none is made.
    virtual void makeFolder(const wstring& url);
    /// Removes a folder with everything in it; links in it are removed, not followed. Throws for a file and
    /// for a link. What was removed before a failure is gone.
    virtual void removeFolder(const wstring& url);
    /// Makes `to` a copy of the folder `from` with everything in it: links stay links, times and permissions
    /// are kept. Throws when `to` exists or lies in `from`, and for what is neither a file nor a folder nor a
    /// link. If anything throws, there is no `to`.
    virtual void copyFolder(const wstring& from, const wstring& to);
    /// Gives the folder `from` the URL `to`. Throws when `to` exists or lies in `from`. If anything throws,
    /// `from` stays; only when it could be copied to another disk but not removed here, there are both.
    virtual void moveFolder(const wstring& from, const wstring& to);
    /// Sets times and permissions of a file or a folder; of a link, those of what it leads to. The time is
    /// set before the permissions.
    virtual void setAttributes(const wstring& url, const FileAttributes& attributes);
    /// Returns how much room there is where a file or folder lies that exists.
    [[nodiscard]] virtual FileSpace space(const wstring& url);

  protected:
    ~IFileScheme() = default;
};

/// The file system service: it hands each operation to the scheme that the URL names, without regard to case.
/// A URL without scheme is a path on disk. "file", "mem" and "shm" (memory that processes share) are always
/// there; "lumstg" and "lumstg64" reach into containers. Each operation throws FileException when no such
/// scheme is registered, and what the scheme throws. Threads: any.
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

    /// Returns what the scheme of a URL can do.
    [[nodiscard]] virtual FileCapabilities capabilities(const wstring& url) = 0;
    /// Returns what is known of a file or a folder, nothing when neither exists; see IFileScheme::describe().
    [[nodiscard]] virtual std::optional<FileInfo> describe(const wstring& url) = 0;
    /// Makes a folder, with those above it; see IFileScheme::makeFolder().
    virtual void makeFolder(const wstring& url) = 0;
    /// Removes a folder with everything in it; see IFileScheme::removeFolder().
    virtual void removeFolder(const wstring& url) = 0;
    /// Makes `to`, which must not exist, a copy of the folder `from`, of the same scheme; see
    /// IFileScheme::copyFolder().
    virtual void copyFolder(const wstring& from, const wstring& to) = 0;
    /// Gives the folder `from` the URL `to`, which must not exist, of the same scheme; see
    /// IFileScheme::moveFolder().
    virtual void moveFolder(const wstring& from, const wstring& to) = 0;
    /// Sets times and permissions; see IFileScheme::setAttributes().
    virtual void setAttributes(const wstring& url, const FileAttributes& attributes) = 0;
    /// Returns how much room there is where a file or folder lies; see IFileScheme::space().
    [[nodiscard]] virtual FileSpace space(const wstring& url) = 0;

  protected:
    ~IFileSystem() = default;
};

/// Returns the files that match `pattern`, and those below its folder that match its last part, folder by
/// folder, each by name. Links to folders are not followed. Throws as findFile() does.
[[nodiscard]] CORE_API std::vector<FileInfo> find_below(IFileSystem& files, const wstring& pattern);

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
