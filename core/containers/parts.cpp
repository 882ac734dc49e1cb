// SPDX-License-Identifier: Apache-2.0
#include "core/containers/parts.h"

#include "core/containers/stored_value_impl.h"
#include "core/lists/compact_reader.h"
#include "core/lists/list_run.h"
#include "core/persistence/failures.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/runtime/random.h>

#include <algorithm>
#include <set>

namespace core {

StoredValue* PartSource::find(const wstring& part) const noexcept {
    const auto found = objects_.find(part);
    return found != objects_.end() ? found->second : nullptr;
}

void PartSource::leave(const wstring& part, const StoredValue& object) noexcept {
    const auto found = objects_.find(part);
    if (found != objects_.end() && found->second == &object)
        objects_.erase(found);
}

namespace {

/// A storage owned by its maker that also answers for `Parts`.
template <class Storage, class Parts>
class PartsStorage : public Storage, public Parts {
  public:
    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override {
        if (out == nullptr)
            return kNoInterface;
        *out = iid == Parts::IID                             ? static_cast<void*>(static_cast<Parts*>(this))
               : iid == Storage::IID || iid == IUnknown::IID ? static_cast<void*>(static_cast<Storage*>(this))
                                                             : nullptr;
        return *out != nullptr ? kOk : kNoInterface;
    }
    std::uint32_t AddRef() noexcept override { return 1; }
    std::uint32_t Release() noexcept override { return 1; }

  protected:
    ~PartsStorage() = default;
};

ByteWriter appender(std::vector<std::byte>& bytes) {
    return [&bytes](std::span<const std::byte> part) { bytes.insert(bytes.end(), part.begin(), part.end()); };
}

/// The bytes before the first token.
std::vector<std::byte> empty_content() {
    std::vector<std::byte> bytes;
    StreamOutStorage(StoredForm::compact, appender(bytes)).finish();
    return bytes;
}

// writing

/// Gives parts their names, and remembers which of them are to be written. They are written one after the
/// other, so that a long chain of them does not stand on the stack.
class PartNames {
  public:
    PartNames(const StorageRW& storage, wstring_view root) : storage_(storage), root_(root) {}

    wstring nameOf(const StoredValue& object) {
        const auto [known, isNew] = names_.try_emplace(&object);
        if (!isNew)
            return known->second;
        // An object from this very file keeps its name: parts that stay as they are lead to it.
        const wstring* const part = object.partIn(storage_, root_);
        known->second = part != nullptr ? *part : wstring(root_) + u".part-" + to_string(new_guid());
        if (part != nullptr && !object.isLoaded())
            kept_.push_back(*part);
        else
            waiting_.emplace_back(known->second, Value(const_cast<StoredValue*>(&object)));
        return known->second;
    }

    [[nodiscard]] std::vector<wstring>& kept() noexcept { return kept_; }
    [[nodiscard]] std::vector<std::pair<wstring, Value>>& waiting() noexcept { return waiting_; }

  private:
    const StorageRW& storage_;
    wstring_view root_;
    std::map<const StoredValue*, wstring> names_;
    std::vector<wstring> kept_;
    std::vector<std::pair<wstring, Value>> waiting_;
};

class PartsOutStorage final : public PartsStorage<IOutPersistenceStorage, IOutParts> {
  public:
    PartsOutStorage(PartNames& names, std::vector<std::byte>& bytes)
        : names_(names), stream_(StoredForm::compact, appender(bytes)) {}

    ListOutStream& listStream() noexcept override { return stream_.listStream(); }
    Nesting& nesting() noexcept override { return stream_.nesting(); }
    void putFailure(const Exception& failure, std::span<const FailureField> fields) override {
        detail::put_failure(*this, failure, fields);
    }
    wstring partOf(const StoredValue& object) override { return *parts_.insert(names_.nameOf(object)).first; }

    void finish() { stream_.finish(); }
    [[nodiscard]] const std::set<wstring>& parts() const noexcept { return parts_; }

  private:
    PartNames& names_;
    StreamOutStorage stream_;
    std::set<wstring> parts_;
};

/// The content of an inner file: the names of the parts, if any, and the value.
std::vector<std::byte> content_of(PartNames& names, const Value& value) {
    std::vector<std::byte> body;
    PartsOutStorage storage(names, body);
    serialize_value(&storage, value);
    storage.finish();
    if (storage.parts().empty())
        return body;
    std::vector<std::byte> content;
    StreamOutStorage head(StoredForm::compact, appender(content));
    head.listStream().putBeginOfList();
    for (const wstring& part : storage.parts())
        head.listStream().put(part);
    head.listStream().putEndOfList();
    head.finish();
    content.insert(content.end(), body.begin() + static_cast<std::ptrdiff_t>(empty_content().size()),
                   body.end());
    return content;
}

// reading

/// Reads the names of parts at the beginning of a content.
std::vector<wstring> get_parts(StreamInStorage& storage) {
    std::vector<wstring> parts;
    ListInStream& in = storage.listStream();
    detail::CompactReader* const compact = detail::ListRun::compact(in);
    if (compact == nullptr || !compact->isNext(detail::CompactToken::begin))
        return parts;
    in.getBeginOfList();
    while (in.getComma()) {
        wstring part;
        in.get(part);
        parts.push_back(std::move(part));
    }
    in.getEndOfList();
    return parts;
}

class PartsInStorage final : public PartsStorage<IInPersistenceStorage, IInParts> {
  public:
    PartsInStorage(std::span<const std::byte> content, const PartSourcePtr& source)
        : stream_(content), source_(source) {
        static_cast<void>(get_parts(stream_));
    }

    ListInStream& listStream() noexcept override { return stream_.listStream(); }
    Nesting& nesting() noexcept override { return stream_.nesting(); }
    StoredFailure getFailure(std::span<FailureField> fields) override {
        return detail::get_failure(*this, fields);
    }
    const PartSourcePtr& source() const noexcept override { return source_; }

    void finish() { stream_.finish(); }

  private:
    StreamInStorage stream_;
    const PartSourcePtr& source_;
};

std::vector<wstring> parts_beside(const StorageRW& storage, wstring_view name) {
    try {
        if (storage.contains(name)) {
            const InterfacePtr<IFile> file = StorageRW(storage).open(name, OpenMode::read);
            StreamInStorage content(*file);
            return get_parts(content);
        }
    } catch (const Exception&) { // damaged, or of somebody else: nothing is known to belong to it
    }
    return {};
}

} // namespace

PartFiles value_in_parts(const StorageRW& storage, const wstring& root, const Value& value) {
    PartNames names(storage, root);
    PartFiles result;
    std::vector<std::byte> own = content_of(names, value);
    for (std::size_t next = 0; next < names.waiting().size(); ++next) {
        const auto [part, object] = names.waiting()[next];
        result.files.emplace_back(part, content_of(names, StoredValue::of(object)->value()));
    }
    result.files.emplace_back(root, std::move(own));
    for (const wstring& part : names.kept()) {
        result.kept.push_back(part);
        std::ranges::copy(parts_below(storage, part), std::back_inserter(result.kept));
    }
    return result;
}

GenericValue value_of_content(std::span<const std::byte> content, const PartSourcePtr& source) {
    PartsInStorage storage(content, source);
    GenericValue value = GenericValue::deserialize(&storage);
    storage.finish();
    return value;
}

std::vector<wstring> parts_below(const StorageRW& storage, wstring_view root) {
    std::vector<wstring> found = parts_beside(storage, root);
    std::set<wstring> known(found.begin(), found.end());
    for (std::size_t next = 0; next < found.size(); ++next) {
        for (wstring& part : parts_beside(storage, wstring(found[next]))) {
            if (known.insert(part).second)
                found.push_back(std::move(part));
        }
    }
    return found;
}

} // namespace core
