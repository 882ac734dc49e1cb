// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file_system.h>
#include <core/runtime/internal_class.h>
#include <core/storage/storage_rw.h>

#include <memory>

namespace core {

/// Opens containers, whose inner files can then be reached by URLs: "lumstg://c:/3/name" is the inner file
/// "name" of the third container that this process opened in the 32-bit layout. "lumstg" and "lumstg64" are
/// IStorageScheme objects as well as IFileScheme ones.
class IStorageScheme : public IUnknown {
  public:
    static constexpr GUID IID = "e365e27f-59f7-435f-bf15-b5a0069f2832"_guid;

    /// Opens the container that lies in a file, and returns its root URL. `url` is the scheme, "://", and the
    /// URL or path of the file; options follow a "?", separated by ";": "NoSortedCheck" accepts a table
    /// of inner files that is not in order. A file that is made or emptied becomes an empty container. Throws
    /// FileException when the file cannot be opened, and StorageException when it holds no container of this
    /// layout.
    [[nodiscard]] virtual wstring openContainer(const wstring& url, OpenMode mode) = 0;
    /// Opens the container that lies in an open file, to which it takes a reference, and returns its root
    /// URL. Throws StorageException when the file holds no container of this layout.
    [[nodiscard]] virtual wstring openContainerIn(IFile* file, const StorageOptions& options) = 0;
    /// Forgets a root URL; what is still open of the container stays open. Throws StorageException if no
    /// container has it.
    virtual void closeContainer(const wstring& root) = 0;
    /// Returns the container with a root URL. Throws StorageException if none has it.
    [[nodiscard]] virtual StorageRW container(const wstring& root) = 0;

  protected:
    ~IStorageScheme() = default;
};

/// The scheme of the containers of one layout, the 32-bit one unless told otherwise. Threads: any.
class CORE_API StorageScheme : public IFileScheme, public IStorageScheme {
  public:
    using Interfaces = InterfaceList<IFileScheme, IStorageScheme>;

    /// Makes the scheme of a layout, with no container open.
    explicit StorageScheme(const StorageLayout& layout = kStorageLayout32);
    virtual ~StorageScheme();

    [[nodiscard]] wstring openContainer(const wstring& url, OpenMode mode) override;
    [[nodiscard]] wstring openContainerIn(IFile* file, const StorageOptions& options) override;
    void closeContainer(const wstring& root) override;
    [[nodiscard]] StorageRW container(const wstring& root) override;

    [[nodiscard]] const wstring& schemeName() const noexcept override;
    [[nodiscard]] URL parseURL(const wstring& url) const override;
    [[nodiscard]] InterfacePtr<IFile> openURL(const wstring& url, OpenMode mode) override;
    [[nodiscard]] std::vector<FileInfo> findFile(const wstring& pattern) override;
    std::size_t remove(const wstring& pattern) override;
    void copyFile(const wstring& from, const wstring& to) override;
    void moveFile(const wstring& from, const wstring& to) override;
    void writeFile(const wstring& to, const FileWriter& write) override;
    void saveFile(IFile& content, const wstring& to) override;
    [[nodiscard]] FileCapabilities capabilities() const noexcept override;
    void setAttributes(const wstring& url, const FileAttributes& attributes) override;

  private:
    struct State;
    std::unique_ptr<State> state_; // never null
};

/// The scheme of the 64-bit layout.
class CORE_API StorageScheme64 : public StorageScheme {
  public:
    /// Makes the scheme, with no container open.
    StorageScheme64() : StorageScheme(kStorageLayout64) {}
};

} // namespace core
