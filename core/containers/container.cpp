// SPDX-License-Identifier: Apache-2.0
#include <core/containers/container.h>
#include <core/files/memory_file.h>
#include <core/files/url.h>
#include <core/streams/text_file.h>

#include <algorithm>

namespace core {
namespace {

/// How messages show an inner file.
wstring shown_name(const StorageRW& storage, wstring_view name) {
    return shown_url(storage.rootURL() + wstring(name));
}

StorageRW container_in_memory() {
    const auto data = create_memory_data();
    StorageRW::create(*open_memory_file(data), kStorageLayout64);
    StorageRW storage(open_memory_file(data), kStorageLayout64);
    storage.setRootURL(storage.url());
    return storage;
}

} // namespace

Container::Container() : storage_(container_in_memory()) {}

void Container::putValue(wstring_view name, const Value& value) {
    wstring text;
    GenericValue(value).toString(text);
    putText(name, text);
}

Value Container::get(wstring_view name) const {
    const wstring text = getText(name);
    try {
        return GenericValue::fromString(text);
    } catch (const Exception& e) { // which does not know where the text is from
        throw_error<ContextException>(messages::kContainerNoValue,
                                      {shown_name(storage_, name), e.description()});
    }
}

void Container::putText(wstring_view name, wstring_view text) {
    std::vector<std::byte> bytes;
    TextOutStream out(
        [&](std::span<const std::byte> part) { bytes.insert(bytes.end(), part.begin(), part.end()); },
        shown_name(storage_, name));
    put_text(out, text);
    out.finish();
    storage_.put(name, bytes);
}

wstring Container::getText(wstring_view name) const {
    const std::vector<std::byte> bytes = storage_.get(name);
    std::span<const std::byte> rest(bytes);
    TextInStream in(
        [&](std::span<std::byte> part) {
            const std::size_t count = std::min(part.size(), rest.size());
            std::copy_n(rest.begin(), count, part.begin());
            rest = rest.subspan(count);
            return count;
        },
        shown_name(storage_, name));
    return read_text(in);
}

void Container::refuseType(wstring_view name) const {
    throw_error<ContextException>(messages::kContainerOtherValue, {shown_name(storage_, name)});
}

} // namespace core
