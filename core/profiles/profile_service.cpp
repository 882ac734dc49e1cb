// SPDX-License-Identifier: Apache-2.0
#include "core/profiles/path.h"
#include "core/profiles/profile_stack.h"

#include <core/context/events/event.h>
#include <core/files/url.h>
#include <core/profiles/errors.h>
#include <core/profiles/profile.h>
#include <core/profiles/settings.h>
#include <core/runtime/class_entry.h>
#include <core/runtime/process.h>

#include <algorithm>
#include <deque>
#include <exception>
#include <iterator>
#include <mutex>
#include <new>
#include <unordered_map>
#include <utility>

namespace core {
namespace {

using Changed = ProfileFile::Changed;
using Keys = std::vector<KeyChange>;

constexpr std::size_t kMostReports = 100;
constexpr std::size_t kMostCached = 65536;

/// What can be kept and handed out again: an object would be changed by who has it, and may need a module.
bool is_plain(const Value& value) noexcept {
    return value.kind() != ValueKind::object && value.kind() != ValueKind::type;
}

/// What a path is called from the folder that it lies in.
wstring_view relative_path(wstring_view path, wstring_view folder) noexcept {
    if (folder.empty())
        return path;
    return path.size() == folder.size() ? wstring_view() : path.substr(folder.size() + 1);
}

void add_removal(Keys& keys, wstring_view path) {
    if (!path.empty())
        keys.push_back({wstring(path)});
    keys.push_back({wstring(path) + u'/'});
}

void require_locking(ProfileLayer layer) {
    if (layer > ProfileLayer::system)
        throw_error<ProfileException>(messages::kProfileLockLayer);
}

void add_keys(Keys& keys, const ProfileChange& change, ProfileLayer layer) {
    using Kind = ProfileChange::Kind;
    if (change.kind != Kind::remove || !change.path.empty())
        require_path(change.path);
    switch (change.kind) {
    case Kind::set:
        keys.push_back({change.path, text_of_value(change.value)});
        return;
    case Kind::remove:
        add_removal(keys, change.path);
        return;
    case Kind::lock:
        require_locking(layer);
        keys.push_back({change.path + kLockMark, text_of_value(Value(true))});
        return;
    case Kind::unlock:
        require_locking(layer);
        keys.push_back({change.path + kLockMark});
        return;
    }
}

InterfacePtr<IFileSystem> file_system() {
    auto* const service = get_service<IFileSystem>();
    return service != nullptr ? InterfacePtr<IFileSystem>(service) : create_file_system();
}

struct PathHash {
    using is_transparent = void;
    std::size_t operator()(wstring_view path) const noexcept { return std::hash<wstring_view>()(path); }
};

} // namespace

/// The layers, behind a lock, with the plain values that were read. No code of others runs under the lock.
class ProfileService : public IProfile {
  public:
    using Interfaces = InterfaceList<IProfile>;

    ProfileService() : ProfileService(current_settings().part<ProfileSettings>(), file_system()) {}
    ProfileService(const ProfileSettings& settings, InterfacePtr<IFileSystem> files)
        : stack_(std::move(files), profile_places(settings),
                 [this](const char* message, const wstring& subject, const wstring& reason) {
                     addReport(message, subject, reason);
                 }) {}

    // read
    std::optional<ProfileValue> find(wstring_view path) override;
    std::vector<ProfileItem> list(wstring_view folder) override;
    std::vector<ProfileEntry> entries(wstring_view folder) override;
    bool isLocked(wstring_view path, ProfileLayer layer) override;
    void reportType(wstring_view path, const Value& value) override;

    // change
    void change(const ProfileChanges& changes, ProfileLayer layer) override;
    void copy(wstring_view from, wstring_view to, ProfileLayer layer) override;
    void move(wstring_view from, wstring_view to, ProfileLayer layer) override;
    void exportTo(wstring_view url, wstring_view folder) override;
    void importFrom(wstring_view url, wstring_view folder, ProfileLayer layer) override;

    // changes of others, notices, reports
    bool refresh() override;
    Connection watch(wstring_view path, ProfileSink sink) override;
    std::vector<wstring> takeReports() override;
    wstring fileOf(ProfileLayer layer) override;

  private:
    using Found = ProfileStack::Found;

    void addReport(const char* message, const wstring& subject, const wstring& reason);
    [[nodiscard]] std::optional<ProfileValue> valueOf(wstring_view path, const std::vector<Found>& found);
    [[nodiscard]] Keys copied(wstring_view from, wstring_view to);
    void make(const Keys& keys, ProfileLayer layer);
    template <class Call>
    bool tellAfter(Call call);
    void requireUnlocked(const Keys& keys, ProfileLayer layer);
    void forget() noexcept;
    void tell(const Changed& changed);

    std::mutex mutex_;
    std::deque<wstring> reports_;
    ProfileStack stack_;
    std::unordered_map<wstring, std::optional<ProfileValue>, PathHash, std::equal_to<>> cache_;
    std::uint64_t version_ = 0; // of what the layers hold
    Event<wstring, bool> changed_{named<u"Changed", u"ПриИзменении">};
};

std::optional<ProfileValue> ProfileService::find(wstring_view path) {
    require_path(path);
    std::vector<Found> found;
    std::uint64_t version = 0;
    {
        const std::lock_guard lock(mutex_);
        if (const auto cached = cache_.find(path); cached != cache_.end())
            return cached->second;
        found = stack_.find(path);
        version = version_;
    }
    std::optional<ProfileValue> result = valueOf(path, found);
    if (!result || is_plain(result->value)) {
        const std::lock_guard lock(mutex_);
        if (version == version_) {
            if (cache_.size() >= kMostCached)
                cache_.clear();
            cache_.insert_or_assign(wstring(path), result);
        }
    }
    return result;
}

/// The first text that can be read.
std::optional<ProfileValue> ProfileService::valueOf(wstring_view path, const std::vector<Found>& found) {
    for (const Found& one : found) {
        try {
            return ProfileValue{value_of_text(one.text), one.layer};
        } catch (const Exception& e) {
            const std::lock_guard lock(mutex_);
            addReport(messages::kProfileValue, wstring(path), e.description());
        }
    }
    return std::nullopt;
}

std::vector<ProfileItem> ProfileService::list(wstring_view folder) {
    require_folder(folder);
    const std::lock_guard lock(mutex_);
    return stack_.list(folder);
}

std::vector<ProfileEntry> ProfileService::entries(wstring_view folder) {
    require_folder(folder);
    std::vector<ProfileStack::Listed> listed;
    {
        const std::lock_guard lock(mutex_);
        listed = stack_.entries(folder);
    }
    std::vector<ProfileEntry> result;
    for (ProfileStack::Listed& one : listed) {
        const bool isBelow = one.path.size() > folder.size();
        if (std::optional<ProfileValue> value = isBelow ? valueOf(one.path, one.found) : std::nullopt)
            result.push_back({std::move(one.path), std::move(*value)});
    }
    return result;
}

bool ProfileService::isLocked(wstring_view path, ProfileLayer layer) {
    require_path(path);
    const std::lock_guard lock(mutex_);
    return stack_.lastOf(path) < layer;
}

void ProfileService::reportType(wstring_view path, const Value& value) {
    const wstring type = value.type().presentation();
    const std::lock_guard lock(mutex_);
    addReport(messages::kProfileWrongType, wstring(path), type);
}

void ProfileService::change(const ProfileChanges& changes, ProfileLayer layer) {
    Keys keys;
    for (const ProfileChange& one : changes.all())
        add_keys(keys, one, layer);
    make(keys, layer);
}

/// What sets at `to` what stands at `from`.
Keys ProfileService::copied(wstring_view from, wstring_view to) {
    require_folder(from);
    require_folder(to);
    std::vector<ProfileStack::Listed> listed;
    {
        const std::lock_guard lock(mutex_);
        listed = stack_.entries(from);
    }
    Keys keys;
    for (ProfileStack::Listed& one : listed) {
        wstring path = join_paths(to, relative_path(one.path, from));
        require_path(path);
        keys.push_back({std::move(path), std::move(one.found.front().text)});
    }
    return keys;
}

void ProfileService::copy(wstring_view from, wstring_view to, ProfileLayer layer) {
    make(copied(from, to), layer);
}

void ProfileService::move(wstring_view from, wstring_view to, ProfileLayer layer) {
    Keys keys;
    if (from != to)
        add_removal(keys, from); // first: what is set lies within it, or is it, as often as not
    Keys sets = copied(from, to);
    std::ranges::move(sets, std::back_inserter(keys));
    make(keys, layer);
}

void ProfileService::exportTo(wstring_view url, wstring_view folder) {
    require_folder(folder);
    const std::lock_guard lock(mutex_);
    Keys keys;
    for (ProfileStack::Listed& one : stack_.entries(folder)) {
        Found& found = one.found.front();
        if (found.layer != ProfileLayer::builtIn && one.path.size() > folder.size())
            keys.push_back({wstring(relative_path(one.path, folder)), std::move(found.text)});
    }
    LayerState state;
    state.apply(keys);
    stack_.files().writeFile(wstring(url), [&](IFile& out) {
        LayerWalk walk(state);
        (void)write_sorted(out, walk, 1);
    });
}

void ProfileService::importFrom(wstring_view url, wstring_view folder, ProfileLayer layer) {
    require_folder(folder);
    Keys keys;
    {
        const std::lock_guard lock(mutex_);
        const InterfacePtr<IFile> file = stack_.files().openURL(wstring(url), OpenMode::read);
        ReadLines lines = read_all_lines(file);
        if (!lines.isWhole)
            throw_error<ProfileException>(messages::kProfileImport, {shown_url(url)});
        for (LayerWalk walk(lines.state); !walk.isAtEnd(); walk.next())
            keys.push_back({join_paths(folder, walk.key()), walk.text()});
    }
    for (const KeyChange& one : keys) {
        if (is_lock(one.key))
            require_locking(layer);
        require_path(path_of_key(one.key));
    }
    make(keys, layer);
}

/// Changes a layer.
void ProfileService::make(const Keys& keys, ProfileLayer layer) {
    if (keys.empty())
        return;
    (void)tellAfter([&](Changed& changed) {
        requireUnlocked(keys, layer);
        stack_.change(layer, keys, changed);
    });
}

/// Calls what changes the layers, and tells what has changed, also when it fails. Returns whether anything
/// has.
template <class Call>
bool ProfileService::tellAfter(Call call) {
    Changed changed;
    std::exception_ptr failure;
    {
        const std::lock_guard lock(mutex_);
        try {
            call(changed);
        } catch (...) {
            failure = std::current_exception();
        }
        if (failure || !changed.empty())
            forget();
    }
    tell(changed);
    if (failure)
        std::rethrow_exception(failure);
    return !changed.empty();
}

void ProfileService::requireUnlocked(const Keys& keys, ProfileLayer layer) {
    for (const KeyChange& one : keys) {
        const wstring_view path = path_of_key(one.key);
        if (!path.empty() && stack_.lastOf(path) < layer)
            throw_error<ProfileException>(messages::kProfileLocked, {wstring(path)});
    }
}

void ProfileService::forget() noexcept {
    cache_.clear();
    ++version_;
}

void ProfileService::tell(const Changed& changed) {
    std::vector<std::pair<wstring, bool>> all; // path, and whether everything below it changed, too
    try {
        for (const wstring& key : changed)
            all.emplace_back(path_of_key(key), is_folder(key) || is_lock(key));
    } catch (const std::bad_alloc&) { // the changes are made: let everybody look
        all.clear();
        changed_.raise(wstring(), true);
    }
    std::ranges::sort(all);
    for (std::size_t i = 0; i < all.size(); ++i) {
        const auto& [path, isFolder] = all[i];
        if (i + 1 == all.size() || all[i + 1].first != path) // the last of its path says most
            changed_.raise(path, isFolder);
    }
}

bool ProfileService::refresh() {
    return tellAfter([this](Changed& changed) {
        stack_.refresh(changed);
        stack_.mend(changed);
    });
}

Connection ProfileService::watch(wstring_view path, ProfileSink sink) {
    require_folder(path);
    {
        const std::lock_guard lock(mutex_);
        stack_.read(); // what is told has changed since
    }
    return changed_.connect(
        [folder = wstring(path), sink = std::move(sink)](const wstring& where, const bool& isFolder) {
            if (is_within(where, folder) || (isFolder && is_within(folder, where)))
                sink(where);
        });
}

void ProfileService::addReport(const char* message, const wstring& subject, const wstring& reason) {
    if (reports_.size() == kMostReports)
        reports_.pop_front();
    reports_.push_back(message_text(message, {subject, reason}));
}

std::vector<wstring> ProfileService::takeReports() {
    const std::lock_guard lock(mutex_);
    std::vector<wstring> taken(reports_.begin(), reports_.end());
    reports_.clear();
    return taken;
}

wstring ProfileService::fileOf(ProfileLayer layer) {
    const std::lock_guard lock(mutex_);
    return stack_.fileOf(layer);
}

namespace {

constexpr GUID kProfileServiceClass = "154ef4a1-5965-11d4-9418-008048da11f9"_guid;
const SCOM_ServiceEntryInit<ProfileService, &kProfileServiceClass, &IProfile::IID>
    kProfileServiceEntry("ProfileService");

} // namespace

InterfacePtr<IProfile> create_profile(const ProfileSettings& places, InterfacePtr<IFileSystem> files) {
    return make_object<ProfileService>(places, files ? std::move(files) : file_system());
}

} // namespace core
