// SPDX-License-Identifier: Apache-2.0
#include "core/profiles/layer_state.h"

#include <utility>

namespace core {

std::optional<std::string> LayerState::find(wstring_view key) {
    if (const std::string* const text = changes_.find(key))
        return text->empty() ? std::nullopt : std::optional(*text);
    if (!hasBase_ || changes_.hides(key))
        return std::nullopt;
    SortedLines::Entry entry;
    if (base_.read(base_.lowerBound(key), entry) && entry.set.key == key)
        return std::move(entry.set.value);
    return std::nullopt;
}

void LayerWalk::seek(wstring_view from) {
    atEnd_ = false;
    floor_ = from;
    isPassed_ = false;
    above_ = layer_.changes_.keysFrom(from);
    readBase(layer_.hasBase_ ? layer_.base_.lowerBound(from) : 0);
    settle();
}

void LayerWalk::readBase(std::uint64_t offset) {
    const auto isBehind = [this] { // which it always is in a file that was sorted
        return isPassed_ ? floor_ < below_.set.key : floor_ <= below_.set.key;
    };
    hasBelow_ = layer_.hasBase_ && layer_.base_.read(offset, below_);
    while (hasBelow_ && !isBehind())
        hasBelow_ = layer_.base_.read(below_.next, below_);
}

void LayerWalk::pass(const wstring& key) {
    floor_ = key;
    isPassed_ = true;
}

void LayerWalk::next() {
    settle();
}

/// Takes the smaller one of the two keys that come next; what stands above hides what stands below.
void LayerWalk::settle() {
    const auto end = layer_.changes_.keys().end();
    while (hasBelow_ || above_ != end) {
        if (above_ == end || (hasBelow_ && below_.set.key < above_->first)) {
            const bool hidden = layer_.changes_.hides(below_.set.key);
            std::swap(current_, below_.set);
            pass(current_.key);
            readBase(below_.next);
            if (!hidden)
                return;
        } else {
            if (hasBelow_ && below_.set.key == above_->first) {
                pass(above_->first);
                readBase(below_.next);
            }
            const auto found = above_++;
            if (!found->second.empty()) {
                current_ = {found->first, found->second};
                return;
            }
        }
    }
    atEnd_ = true;
}

} // namespace core
