// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/connection.h>
#include <core/context/errors.h>
#include <core/context/native_value.h>
#include <core/files/file_system.h>
#include <core/objects/enumeration.h>
#include <core/profiles/settings.h>
#include <core/values/generic_value.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <utility>
#include <vector>

/// Settings by paths such as "report/period": names with "/" between them, of which only the last
/// one is not that of a folder. Names differ by case. They hold neither "/", "!" and quotes nor control
/// characters, and a path has at most kMaxProfilePath units. Folders come and go with what they hold. One
/// name can be that of a value and of a folder.
namespace core {

/// How many units a path may have.
inline constexpr std::size_t kMaxProfilePath = 1000;

/// Where a value is kept. A later layer counts before an earlier one.
enum class ProfileLayer : std::int32_t {
    builtIn, ///< The defaults of the program, in memory.
    system,  ///< Those of the machine, in a file of its administrator.
    user,    ///< Those of the user, in a file of his own.
    run      ///< Those of this run alone, in memory.
};
/// Returns the enumeration `SettingsLayers` (`СлоиНастроек`) of scripts, borrowed for ever.
[[nodiscard]] CORE_API Enumeration* script_enumeration(ProfileLayer) noexcept;
/// How many layers there are.
inline constexpr std::size_t kProfileLayers = 4;

/// What stands at a path.
struct ProfileValue {
    GenericValue value;                         ///< The value, which may be Undefined.
    ProfileLayer layer = ProfileLayer::builtIn; ///< The layer that it comes from.
};

/// A name in a folder.
struct ProfileItem {
    wstring name;          ///< The name, without the folder.
    bool isValue = false;  ///< Whether there is a value with that name.
    bool isFolder = false; ///< Whether there is a folder with that name.
};

/// A value with its path.
struct ProfileEntry {
    wstring path;       ///< The whole path.
    ProfileValue found; ///< What stands there.
};

/// A change of settings, which is a part of a group.
struct ProfileChange {
    /// What is done.
    enum class Kind : std::uint8_t {
        set,    ///< The value is set.
        remove, ///< The value is removed from the layer, and so is everything in the folder of that name.
        lock,   ///< Later layers no longer count at the path and below it.
        unlock  ///< A lock is taken back.
    };
    Kind kind = Kind::set; ///< What is done.
    wstring path;          ///< Where; only `remove` takes the empty path, which stands for everything.
    GenericValue value;    ///< The value to be set; else Undefined.
};

/// A group of changes, which happen in their order, all of them or none.
class ProfileChanges {
  public:
    /// Adds that a value is set. Throws std::bad_alloc.
    ProfileChanges& set(wstring path, GenericValue value) {
        return add(ProfileChange::Kind::set, std::move(path), std::move(value));
    }
    /// Adds that a value and everything in the folder of the same name is removed. Throws std::bad_alloc.
    ProfileChanges& remove(wstring path) { return add(ProfileChange::Kind::remove, std::move(path), {}); }
    /// Adds that later layers no longer count at the path and below it. Throws std::bad_alloc.
    ProfileChanges& lock(wstring path) { return add(ProfileChange::Kind::lock, std::move(path), {}); }
    /// Adds that a lock is taken back. Throws std::bad_alloc.
    ProfileChanges& unlock(wstring path) { return add(ProfileChange::Kind::unlock, std::move(path), {}); }
    /// Returns the changes, borrowed: valid until the next call that adds one.
    [[nodiscard]] std::span<const ProfileChange> all() const noexcept { return all_; }

  private:
    ProfileChanges& add(ProfileChange::Kind kind, wstring path, GenericValue value) {
        all_.push_back({kind, std::move(path), std::move(value)});
        return *this;
    }
    std::vector<ProfileChange> all_;
};

/// What is called when settings have changed. The path is borrowed for the call: of a value, or of a folder
/// of which everything may have changed.
using ProfileSink = std::function<void(const wstring& path)>;

/// The settings of a process. They are a service: get_service<IProfile>().
///
/// What is read is as of the last refresh() or change, so that values that belong together can be read one by
/// one. A change is durable when its call returns. Changes of several processes are merged value by value.
/// What went wrong without stopping a call is told by takeReports().
///
/// Every call with a path throws ProfileException (kProfilePath) for a text that is not one; a folder may be
/// empty, which is the whole. Calls that read throw FileException when a file can be opened and not read.
/// Threads: any, except that watch(), refresh(), the calls that change and the end of a connection are for
/// one thread at a time; that thread calls the sinks.
class IProfile : public IUnknown {
  public:
    static constexpr GUID IID = "57358488-bf08-4c25-afd4-374051d5febd"_guid;

    // read

    /// Returns what stands at `path`; nothing where no layer has a value. A value that cannot be read is
    /// reported, and a layer below it counts. An object is a new one for each call.
    [[nodiscard]] virtual std::optional<ProfileValue> find(wstring_view path) = 0;
    /// Returns the names in a folder, in the order of their units; none for a folder that does not exist.
    [[nodiscard]] virtual std::vector<ProfileItem> list(wstring_view folder) = 0;
    /// Returns the values in a folder and in those below it, in the order of their paths. Values that cannot
    /// be read are reported and left out.
    [[nodiscard]] virtual std::vector<ProfileEntry> entries(wstring_view folder) = 0;
    /// Returns whether `layer` cannot change what stands at `path`, as an earlier layer has locked it.
    [[nodiscard]] virtual bool isLocked(wstring_view path, ProfileLayer layer) = 0;
    /// Returns the value at `path` as a `T`, which is not to borrow; `byDefault` where no value stands, and
    /// where it is not a `T`, which is reported.
    template <FromValue T>
    [[nodiscard]] T get(wstring_view path, T byDefault) {
        const std::optional<ProfileValue> found = find(path);
        if (!found || found->value.isUndefined())
            return byDefault;
        try {
            return T(from_value<T>(found->value));
        } catch (const ContextException&) {
            reportType(path, found->value);
            return byDefault;
        }
    }
    /// Keeps a report that the value at `path` is not of the type that was asked for.
    virtual void reportType(wstring_view path, const Value& value) = 0;

    // change

    /// Makes the changes in one layer, all of them or none. Throws ProfileException for a path that is locked
    /// (kProfileLocked), for a lock in a layer that cannot have any (kProfileLockLayer), without a place for
    /// the file (kProfileNoFile), when other processes do not let go of it (kProfileBusy) and for a later
    /// version of its format (kProfileVersion); FileException when it cannot be written; and what writing a
    /// value throws. Everything is as before then.
    virtual void change(const ProfileChanges& changes, ProfileLayer layer = ProfileLayer::user) = 0;
    /// Sets one value. Throws as change().
    void set(wstring_view path, const Value& value, ProfileLayer layer = ProfileLayer::user) {
        change(ProfileChanges().set(wstring(path), value), layer);
    }
    /// Removes one value and the folder of that name from a layer. Throws as change().
    void remove(wstring_view path, ProfileLayer layer = ProfileLayer::user) {
        change(ProfileChanges().remove(wstring(path)), layer);
    }
    /// Gives the values at and below `from` also the paths at and below `to`, in `layer`. Throws as change().
    virtual void copy(wstring_view from, wstring_view to, ProfileLayer layer = ProfileLayer::user) = 0;
    /// Does the same and removes `from` from `layer`; what earlier layers have there shows again. Throws as
    /// change().
    virtual void move(wstring_view from, wstring_view to, ProfileLayer layer = ProfileLayer::user) = 0;

    // exchange

    /// Writes the values below `folder`, except the built-in ones, to a file, by the paths that they have
    /// in the folder. An old file is replaced. Throws FileException, and the old file stays.
    virtual void exportTo(wstring_view url, wstring_view folder = {}) = 0;
    /// Sets in `layer` and below `folder` the values of a file that exportTo() has written, all of them or
    /// none. Throws as change(), FileException when the file cannot be read, and ProfileException
    /// (kProfileImport) when it is damaged or another kind of file.
    virtual void importFrom(wstring_view url, wstring_view folder = {},
                            ProfileLayer layer = ProfileLayer::user) = 0;

    // changes of others, notices, reports

    /// Takes over what other processes have changed, tells the sinks, and returns whether anything changed.
    virtual bool refresh() = 0;
    /// Connects a sink that is called after changes at and below `path`, of this process and, at a refresh or
    /// a change, of others. Throws std::bad_alloc.
    [[nodiscard]] virtual Connection watch(wstring_view path, ProfileSink sink) = 0;
    /// Returns what was reported since the last call, in the language of the user; at most the last hundred.
    [[nodiscard]] virtual std::vector<wstring> takeReports() = 0;
    /// Returns the URL of the file of a layer; empty for a layer in memory and without a place.
    [[nodiscard]] virtual wstring fileOf(ProfileLayer layer) = 0;

  protected:
    ~IProfile() = default;
};

/// Makes a profile beside that of the process, or for a program without a process object. Its files are
/// reached through `files`; null stands for the file system of the process. Throws std::bad_alloc; files are
/// opened when they are first needed.
[[nodiscard]] CORE_API InterfacePtr<IProfile> create_profile(const ProfileSettings& places,
                                                             InterfacePtr<IFileSystem> files = nullptr);

} // namespace core
