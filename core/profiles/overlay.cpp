// SPDX-License-Identifier: Apache-2.0
#include "core/profiles/overlay.h"

#include "core/profiles/path.h"

#include <utility>
#include <vector>

namespace core {

void Overlay::apply(std::span<const KeyChange> changes, bool overBase) {
    // Whatever needs memory comes first.
    std::vector<Keys::node_type> keys(changes.size());
    std::vector<Folders::node_type> folders(changes.size());
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const KeyChange& change = changes[i];
        if (!is_folder(change.key)) {
            Keys one{{change.key, change.value}};
            keys[i] = one.extract(one.begin());
        } else if (overBase) {
            Folders one{change.key};
            folders[i] = one.extract(one.begin());
        }
    }
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const KeyChange& change = changes[i];
        if (is_folder(change.key)) {
            removeFolder(change.key, folders[i]);
        } else if (change.value.empty() && !overBase) {
            if (const auto old = keys_.find(change.key); old != keys_.end())
                keys_.erase(old);
        } else if (const auto old = keys_.find(change.key); old != keys_.end()) {
            old->second.swap(keys[i].mapped());
        } else {
            keys_.insert(std::move(keys[i]));
        }
    }
}

void Overlay::removeFolder(wstring_view folder, Folders::node_type& node) noexcept {
    const wstring_view prefix = folder == u"/" ? wstring_view() : folder;
    auto key = keys_.lower_bound(prefix);
    while (key != keys_.end() && key->first.starts_with(prefix))
        key = keys_.erase(key);
    if (node.empty())
        return;
    folders_.insert(std::move(node)); // does nothing where it is there
}

const std::string* Overlay::find(wstring_view key) const {
    const auto found = keys_.find(key);
    return found != keys_.end() ? &found->second : nullptr;
}

bool Overlay::hides(wstring_view key) const {
    if (folders_.empty())
        return false;
    if (folders_.contains(wstring_view(u"/")))
        return true;
    for (std::size_t slash = key.find(u'/'); slash != wstring_view::npos; slash = key.find(u'/', slash + 1)) {
        if (folders_.contains(key.substr(0, slash + 1)))
            return true;
    }
    return false;
}

} // namespace core
