// SPDX-License-Identifier: Apache-2.0
#include "core/files/schemes.h"

#include <core/files/errors.h>
#include <core/files/file_system.h>
#include <core/files/url.h>
#include <core/runtime/class_entry.h>
#include <core/strings/compare.h>

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <optional>
#include <vector>

namespace core {
namespace {

constinit FileSchemeEntry* scheme_entries = nullptr;

} // namespace

FileSchemeEntry::FileSchemeEntry(InterfacePtr<IFileScheme> (*create)()) noexcept
    : create_(create), next_(scheme_entries) {
    scheme_entries = this;
}

class FileSystem : public IFileSystem {
  public:
    using Interfaces = InterfaceList<IFileSystem>;

    FileSystem() {
        schemes_.push_back(create_disk_scheme());
        schemes_.push_back(create_memory_scheme());
        schemes_.push_back(create_shared_memory_scheme());
        for (const FileSchemeEntry* entry = scheme_entries; entry != nullptr; entry = entry->next_)
            schemes_.push_back(entry->create_());
    }

    void registerScheme(IFileScheme* scheme) override {
        const std::lock_guard lock(mutex_);
        if (const auto old = named(scheme->schemeName()); old != schemes_.end())
            *old = InterfacePtr<IFileScheme>(scheme);
        else
            schemes_.emplace_back(scheme);
    }

    void revokeScheme(const wstring& name) override {
        const std::lock_guard lock(mutex_);
        std::erase_if(schemes_, [&](const auto& scheme) { return isNamed(*scheme, name); });
    }

    InterfacePtr<IFileScheme> findScheme(const wstring& name) override {
        const std::lock_guard lock(mutex_);
        const auto found = named(name);
        return found != schemes_.end() ? *found : nullptr;
    }

    URL parseURL(const wstring& url) override { return schemeOf(url)->parseURL(url); }
    InterfacePtr<IFile> openURL(const wstring& url, OpenMode mode) override {
        return schemeOf(url)->openURL(url, mode);
    }
    std::vector<FileInfo> findFile(const wstring& pattern) override {
        return schemeOf(pattern)->findFile(pattern);
    }
    std::size_t remove(const wstring& pattern) override { return schemeOf(pattern)->remove(pattern); }

    void copyFile(const wstring& from, const wstring& to) override {
        const auto source = schemeOf(from);
        const auto target = schemeOf(to);
        if (source == target)
            source->copyFile(from, to);
        else
            copyBetween(*source, from, *target, to);
    }

    void moveFile(const wstring& from, const wstring& to) override {
        const auto source = schemeOf(from);
        const auto target = schemeOf(to);
        if (source == target) {
            source->moveFile(from, to);
        } else {
            // A file whose name reads as a pattern must not take others along when it is removed.
            if (has_wildcard(from) && source->findFile(from).size() > 1)
                throw_file_error(messages::kFileMove, from, EINVAL);
            copyBetween(*source, from, *target, to);
            source->remove(from);
        }
    }

    void writeFile(const wstring& to, const FileWriter& write) override {
        schemeOf(to)->writeFile(to, write);
    }

    FileCapabilities capabilities(const wstring& url) override { return schemeOf(url)->capabilities(); }
    std::optional<FileInfo> describe(const wstring& url) override { return schemeOf(url)->describe(url); }
    void makeFolder(const wstring& url) override { schemeOf(url)->makeFolder(url); }
    void removeFolder(const wstring& url) override { schemeOf(url)->removeFolder(url); }
    void copyFolder(const wstring& from, const wstring& to) override {
        commonScheme(messages::kFileCopy, from, to)->copyFolder(from, to);
    }
    void moveFolder(const wstring& from, const wstring& to) override {
        commonScheme(messages::kFileMove, from, to)->moveFolder(from, to);
    }
    void setAttributes(const wstring& url, const FileAttributes& attributes) override {
        schemeOf(url)->setAttributes(url, attributes);
    }
    FileSpace space(const wstring& url) override { return schemeOf(url)->space(url); }

  private:
    static bool isNamed(const IFileScheme& scheme, wstring_view name) {
        return compare_nocase(scheme.schemeName(), name) == 0;
    }

    std::vector<InterfacePtr<IFileScheme>>::iterator named(wstring_view name) {
        return std::find_if(schemes_.begin(), schemes_.end(),
                            [name](const auto& scheme) { return isNamed(*scheme, name); });
    }

    InterfacePtr<IFileScheme> schemeOf(const wstring& url) {
        auto scheme = findScheme(split_url(url).scheme);
        if (!scheme)
            throw_file_error(messages::kFileScheme, url, ENOTSUP);
        return scheme;
    }

    InterfacePtr<IFileScheme> commonScheme(const char* message, const wstring& from, const wstring& to) {
        auto scheme = schemeOf(from);
        if (scheme != schemeOf(to))
            throw_file_error(message, from, EXDEV);
        return scheme;
    }

    static void copyBetween(IFileScheme& source, const wstring& from, IFileScheme& target,
                            const wstring& to) {
        target.saveFile(*source.openURL(from, OpenMode::read), to);
    }

    std::mutex mutex_;
    std::vector<InterfacePtr<IFileScheme>> schemes_;
};

namespace {

constexpr GUID kFileSystemClass = "3a6c2188-45c3-11d4-985d-008048da1252"_guid;
const SCOM_ServiceEntryInit<FileSystem, &kFileSystemClass, &IFileSystem::IID> kFileSystemEntry("FileSystem");

} // namespace

InterfacePtr<IFileSystem> create_file_system() {
    return make_object<FileSystem>();
}

} // namespace core
