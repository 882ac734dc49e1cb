// SPDX-License-Identifier: Apache-2.0
#include "core/profiles/profile_stack.h"

#include "core/profiles/path.h"

#include <core/files/url.h>
#include <core/profiles/errors.h>

#include <algorithm>
#include <map>
#include <utility>

namespace core {
namespace {

constexpr std::array kAllLayers = {ProfileLayer::run, ProfileLayer::user, ProfileLayer::system,
                                   ProfileLayer::builtIn}; // in the order in which they count
constexpr std::array kLockingLayers = {ProfileLayer::builtIn, ProfileLayer::system};
static_assert(kAllLayers.size() == kProfileLayers);

bool has_lock(LayerState& state, wstring_view path) {
    wstring key;
    for (std::size_t end = path.find(u'/'); end != wstring_view::npos; end = path.find(u'/', end + 1)) {
        key.assign(path.substr(0, end)).push_back(kLockMark);
        if (state.find(key))
            return true;
    }
    key.assign(path).push_back(kLockMark);
    return state.find(key).has_value();
}

} // namespace

ProfileStack::ProfileStack(InterfacePtr<IFileSystem> files, ProfilePlaces places, ProfileFile::Report report)
    : files_(std::move(files)), report_(report), system_(*files_, std::move(places.system), report),
      user_(*files_, std::move(places.user), std::move(report)) {}

LayerState& ProfileStack::state(ProfileLayer layer) {
    switch (layer) {
    case ProfileLayer::builtIn:
        return builtIn_;
    case ProfileLayer::system:
        return system_.state();
    case ProfileLayer::user:
        return user_.state();
    case ProfileLayer::run:
        break;
    }
    return run_;
}

ProfileLayer ProfileStack::lastOf(wstring_view path) {
    for (const ProfileLayer layer : kLockingLayers) {
        if (has_lock(state(layer), path))
            return layer;
    }
    return ProfileLayer::run;
}

std::vector<ProfileStack::Found> ProfileStack::find(wstring_view path) {
    std::vector<Found> found;
    const ProfileLayer last = lastOf(path);
    for (const ProfileLayer layer : kAllLayers) {
        if (layer > last)
            continue;
        if (std::optional<std::string> text = state(layer).find(path))
            found.push_back({std::move(*text), layer});
    }
    return found;
}

std::vector<ProfileStack::Listed> ProfileStack::entries(wstring_view folder) {
    std::map<wstring, std::vector<Found>> all;
    const wstring below = keys_below(folder);
    for (const ProfileLayer layer : kAllLayers) {
        LayerState& held = state(layer);
        if (const auto own = folder.empty() ? std::nullopt : held.find(folder))
            all[wstring(folder)].push_back({*own, layer});
        for (LayerWalk walk(held, below); !walk.isAtEnd() && walk.key().starts_with(below); walk.next()) {
            if (!is_lock(walk.key()))
                all[walk.key()].push_back({walk.text(), layer});
        }
    }
    std::vector<Listed> listed;
    for (auto& [path, found] : all) {
        const ProfileLayer last = lastOf(path);
        std::erase_if(found, [last](const Found& one) { return one.layer > last; });
        if (!found.empty())
            listed.push_back({path, std::move(found)});
    }
    return listed;
}

std::vector<ProfileItem> ProfileStack::list(wstring_view folder) {
    std::map<wstring, ProfileItem> items;
    const wstring below = keys_below(folder);
    for (const ProfileLayer layer : kAllLayers) {
        for (LayerWalk walk(state(layer), below); !walk.isAtEnd() && walk.key().starts_with(below);) {
            const wstring name =
                walk.key().substr(below.size(), walk.key().find(u'/', below.size()) - below.size());
            if (is_lock(name) || lastOf(walk.key()) < layer) {
                walk.next();
                continue;
            }
            ProfileItem& item = items[name];
            item.name = name;
            if (walk.key().size() == below.size() + name.size()) {
                item.isValue = true;
                walk.next();
            } else {
                item.isFolder = is_lock(walk.key()) ? item.isFolder : true;
                if (item.isFolder)
                    walk.seek(below + name + u'0'); // the unit behind "/": past all that the folder holds
                else
                    walk.next();
            }
        }
    }
    std::vector<ProfileItem> listed;
    for (auto& [name, item] : items) {
        if (item.isValue || item.isFolder)
            listed.push_back(std::move(item));
    }
    return listed;
}

void ProfileStack::read() {
    for (const ProfileLayer layer : {ProfileLayer::system, ProfileLayer::user})
        (void)state(layer);
}

void ProfileStack::change(ProfileLayer layer, std::span<const KeyChange> changes,
                          ProfileFile::Changed& changed) {
    if (layer == ProfileLayer::system || layer == ProfileLayer::user) {
        (layer == ProfileLayer::system ? system_ : user_).change(changes, changed);
        return;
    }
    const std::size_t before = changed.size();
    for (const KeyChange& one : changes)
        changed.push_back(one.key);
    try {
        state(layer).apply(changes);
    } catch (...) {
        changed.resize(before);
        throw;
    }
}

void ProfileStack::refresh(ProfileFile::Changed& changed) {
    for (ProfileFile* const file : {&system_, &user_}) {
        try {
            file->refresh(changed);
        } catch (const Exception& e) {
            report_(messages::kProfileUnreadable, shown_url(file->url()), e.description());
        }
    }
}

void ProfileStack::mend(ProfileFile::Changed& changed) {
    system_.mendIfDamaged(changed);
    user_.mendIfDamaged(changed);
}

wstring ProfileStack::fileOf(ProfileLayer layer) const {
    if (layer == ProfileLayer::system)
        return system_.url();
    return layer == ProfileLayer::user ? user_.url() : wstring();
}

} // namespace core
