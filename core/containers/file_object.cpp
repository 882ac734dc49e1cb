// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_path.h"

#include <core/collections/native_values.h>
#include <core/containers/file_functions.h>
#include <core/context/script_object.h>
#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/file_system.h>
#include <core/files/url.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>

#include <cerrno>
#include <optional>

namespace core {
namespace {

constexpr unsigned kWriteBits = 0222;
constexpr unsigned kOwnerWrites = 0200;

IFileSystem& files() {
    return require_service<IFileSystem>();
}

/// The text by which scripts name what a URL leads to: the path as people write it, where it means the same
/// in every function. A name with a "*" would be a pattern to some, so it stays a URL.
wstring plain_name(const wstring& url) {
    if (!is_file_url(url))
        return split_url(url).path == url ? plain_path(url) : url;
    const std::string path = file_path(url);
    const wstring text = from_utf8(path);
    const bool means = to_utf8(text) == path && split_url(text).path == text && !has_wildcard(text);
    return means ? text : url;
}

/// A file or a folder by its path or URL, whether it is there or not. Everything is looked up when it is
/// asked for; times are local, as all dates of scripts.
class FileObject : public ScriptObject<FileObject> {
  public:
    static constexpr ClassNames names{u"File", u"Файл"};

    FileObject() = default; // to be described
    explicit FileObject(const wstring& url) : path_(plain_name(url)) {}
    static ObjectPtr<FileObject> construct(wstring_view path) {
        return make_object<FileObject>(wstring(path));
    }

    wstring path() const { return path_; }
    wstring name() const {
        wstring shown = shown_url(path_);
        while (shown.ends_with(u'/'))
            shown.pop_back();
        return shown.substr(shown.rfind(u'/') + 1);
    }
    wstring baseName() const {
        const wstring all = name();
        return all.substr(0, all.size() - extensionOf(all).size());
    }
    wstring extension() const { return wstring(extensionOf(name())); }
    wstring folder() const {
        const auto slash = path_.rfind(u'/');
        if (slash == wstring::npos)
            return u".";
        const wstring_view above = wstring_view(path_).substr(0, slash);
        const bool isRoot = above.empty() || above.ends_with(u'/');
        return plain_name(path_.substr(0, isRoot ? slash + 1 : slash));
    }

    bool exists() const { return files().describe(path_).has_value(); }
    bool isFolder() const {
        const auto found = files().describe(path_);
        return found && found->isFolder;
    }
    std::uint64_t size() const { return info().length; }
    Date modified() const {
        const Date time = info().modified;
        return time == Date() ? time : time.toLocalTime();
    }
    void setModified(Date time) { files().setAttributes(path_, {.modified = time.toUniversalTime()}); }
    bool readOnly() const {
        const unsigned permissions = info().permissions;
        return permissions != 0 && (permissions & kWriteBits) == 0;
    }
    void setReadOnly(bool readOnly) {
        const unsigned old = info().permissions;
        files().setAttributes(path_, {.permissions = readOnly ? old & ~kWriteBits : old | kOwnerWrites});
    }
    std::uint64_t freeSpace() const { return files().space(path_).available; }

    static auto members() {
        using T = FileObject;
        return core::members(
            property(u"Path", u"Путь", &T::path), property(u"Name", u"Имя", &T::name),
            property(u"BaseName", u"ИмяБезРасширения", &T::baseName),
            property(u"Extension", u"Расширение", &T::extension), property(u"Folder", u"Папка", &T::folder),
            property(u"Exists", u"Существует", &T::exists), property(u"IsFolder", u"ЭтоПапка", &T::isFolder),
            property(u"Size", u"Размер", &T::size),
            property(u"Modified", u"Изменен", &T::modified, &T::setModified),
            property(u"ReadOnly", u"ТолькоЧтение", &T::readOnly, &T::setReadOnly),
            property(u"FreeSpace", u"СвободноеМесто", &T::freeSpace));
    }
    bool getString(wstring& out) const override {
        out = path_;
        return true;
    }

  private:
    /// With its dot; a name that begins with its only dot has none.
    static wstring_view extensionOf(wstring_view name) {
        const auto dot = name.rfind(u'.');
        return dot == wstring_view::npos || dot == 0 ? wstring_view() : name.substr(dot);
    }
    FileInfo info() const {
        auto found = files().describe(path_);
        if (!found)
            throw_file_error(messages::kFileRead, path_, ENOENT);
        return std::move(*found);
    }

    wstring path_ = u"."; // or a URL
};

enum class Links { follow, keep };

bool is_folder(const wstring& path, Links links) {
    const auto found = files().describe(path);
    return found && found->isFolder && (links == Links::follow || !found->isLink);
}

std::vector<ObjectPtr<FileObject>> find_files(const wstring& pattern, bool below) {
    std::vector<ObjectPtr<FileObject>> all;
    for (const FileInfo& file : below ? find_below(files(), pattern) : files().findFile(pattern))
        all.push_back(make_object<FileObject>(file.url));
    return all;
}

/// What scripts call without an object in front to work with files.
class FileFunctions : public IContextImpl<IContextDefImpl<FileFunctions>>,
                      public ContextDefExtImpl<FileFunctions> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    bool exists(const wstring& file) { return files().describe(file).has_value(); }
    std::vector<ObjectPtr<FileObject>> find(const wstring& pattern, bool below) {
        return find_files(pattern, below);
    }
    std::size_t deleteFiles(const wstring& pattern) { return files().remove(pattern); }
    void copy(const wstring& from, const wstring& to) {
        if (is_folder(from, Links::follow))
            files().copyFolder(from, to);
        else
            files().copyFile(from, to);
    }
    void move(const wstring& from, const wstring& to) {
        if (is_folder(from, Links::keep))
            files().moveFolder(from, to);
        else
            files().moveFile(from, to);
    }
    void createFolder(const wstring& folder) { files().makeFolder(folder); }
    void deleteFolder(const wstring& folder) { files().removeFolder(folder); }

    static auto members() {
        using T = FileFunctions;
        constexpr Parameter kFolder{u"Folder", u"Папка"};
        constexpr Parameter kPattern{u"Pattern", u"Шаблон"};
        constexpr Parameter kFrom{u"From", u"Откуда"};
        constexpr Parameter kTo{u"To", u"Куда"};
        return core::members(method(u"FileExists", u"ФайлСуществует", &T::exists, {u"File", u"Файл"}),
                             method(u"FindFiles", u"НайтиФайлы", &T::find, kPattern,
                                    {u"Below", u"СПодпапками", by_default(false)}),
                             method(u"DeleteFiles", u"УдалитьФайлы", &T::deleteFiles, kPattern),
                             method(u"CopyFile", u"КопироватьФайл", &T::copy, kFrom, kTo),
                             method(u"MoveFile", u"ПереместитьФайл", &T::move, kFrom, kTo),
                             method(u"CreateFolder", u"СоздатьПапку", &T::createFolder, kFolder),
                             method(u"DeleteFolder", u"УдалитьПапку", &T::deleteFolder, kFolder));
    }

    // behind members(), whose type they need
    static auto properties() noexcept {
        return detail::declared<FileFunctions, Property<FileFunctions>>(
            [](const auto& tables) { return tables.properties(); });
    }
    static auto methods() noexcept {
        return detail::declared<FileFunctions, Method<FileFunctions>>(
            [](const auto& tables) { return tables.methods(); });
    }
};

const ScriptClassEntry<FileObject> kFileObjectEntry;

} // namespace

InterfacePtr<IContext_> create_file_functions() {
    return make_object<FileFunctions>();
}

} // namespace core
