// SPDX-License-Identifier: Apache-2.0
#include "core/containers/parts.h"

#include <core/containers/container.h>
#include <core/files/memory_file.h>
#include <core/files/url.h>
#include <core/streams/text_file.h>

#include <algorithm>
#include <set>

namespace core {
namespace {

/// How messages show an inner file.
wstring shown_name(const StorageRW& storage, wstring_view name) {
    return shown_url(storage.rootURL() + wstring(name));
}

wstring text_of(std::span<const std::byte> bytes, wstring name) {
    TextInStream in(
        [&bytes](std::span<std::byte> part) {
            const std::size_t count = std::min(part.size(), bytes.size());
            std::copy_n(bytes.begin(), count, part.begin());
            bytes = bytes.subspan(count);
            return count;
        },
        std::move(name));
    return read_text(in);
}

StorageRW container_in_memory() {
    const auto data = create_memory_data();
    StorageRW::create(*open_memory_file(data), kStorageLayout64);
    StorageRW storage(open_memory_file(data), kStorageLayout64);
    storage.setRootURL(storage.url());
    return storage;
}

} // namespace

// Constants that a program takes by reference: a library of Windows exports those that are defined.
constexpr OpenMode Container::read;
constexpr OpenMode Container::change;
constexpr OpenMode Container::create;
constexpr OpenMode Container::createNew;
constexpr OpenMode Container::replace;

Container::Container() : storage_(container_in_memory()) {}

void Container::putValue(wstring_view name, const Value& value, ValueForm form) {
    if (form == ValueForm::text) {
        wstring text;
        GenericValue(value).toString(text);
        return putText(name, text);
    }
    if (form == ValueForm::compact)
        return putBytes(name, GenericValue(value).toBytes());
    const PartFiles parts = value_in_parts(storage_, wstring(name), value);
    std::set<wstring> needed(parts.kept.begin(), parts.kept.end());
    for (const auto& file : parts.files)
        needed.insert(file.first);
    std::vector<wstring> dropped = parts_below(storage_, name);
    std::erase_if(dropped, [&](const wstring& old) { return needed.contains(old); });
    changeAndDrop(dropped, [&] {
        for (const auto& [part, content] : parts.files)
            storage_.put(part, content);
    });
}

Value Container::get(wstring_view name) const {
    const std::vector<std::byte> content = storage_.get(name);
    const bool isText = stored_form(content) == StoredForm::text;
    const wstring text = isText ? text_of(content, shown_name(storage_, name)) : wstring();
    try {
        return isText ? GenericValue::fromString(text)
                      : value_of_content(content, PartSourcePtr::make(storage_, wstring(name)));
    } catch (const Exception& e) { // which does not know where the content is from
        throw_error<ContextException>(messages::kContainerNoValue,
                                      {shown_name(storage_, name), e.description()});
    }
}

void Container::putBytes(wstring_view name, std::span<const std::byte> bytes) {
    const std::vector<wstring> parts = parts_below(storage_, name);
    if (parts.empty())
        storage_.put(name, bytes);
    else
        changeAndDrop(parts, [&] { storage_.put(name, bytes); });
}

void Container::remove(wstring_view name) {
    changeAndDrop(parts_below(storage_, name), [&] { storage_.remove(name); });
}

void Container::rename(wstring_view from, wstring_view to) {
    std::vector<wstring> dropped = parts_below(storage_, to);
    if (!dropped.empty()) { // names that differ in case alone lead to the same parts
        const std::vector<wstring> parts = parts_below(storage_, from);
        const std::set<wstring> own(parts.begin(), parts.end());
        std::erase_if(dropped, [&](const wstring& part) { return own.contains(part); });
    }
    changeAndDrop(dropped, [&] { storage_.rename(from, to); });
}

/// Makes changes and drops parts to which nothing leads any more, as one commit.
void Container::changeAndDrop(const std::vector<wstring>& parts, const std::function<void()>& changes) {
    const auto all = [&] {
        changes();
        for (const wstring& part : parts) {
            if (storage_.contains(part))
                storage_.remove(part);
        }
    };
    if (storage_.inTransaction())
        all();
    else
        transaction(all);
}

void Container::putText(wstring_view name, wstring_view text) {
    std::vector<std::byte> bytes;
    TextOutStream out(
        [&](std::span<const std::byte> part) { bytes.insert(bytes.end(), part.begin(), part.end()); },
        shown_name(storage_, name));
    put_text(out, text);
    out.finish();
    putBytes(name, bytes);
}

wstring Container::getText(wstring_view name) const {
    return text_of(storage_.get(name), shown_name(storage_, name));
}

void Container::refuseType(wstring_view name) const {
    throw_error<ContextException>(messages::kContainerOtherValue, {shown_name(storage_, name)});
}

} // namespace core
