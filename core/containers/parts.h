// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/persistence/stream_storage.h>
#include <core/runtime/refcount.h>
#include <core/storage/storage_rw.h>
#include <core/values/generic_value.h>

#include <map>
#include <utility>
#include <vector>

/// Values that stand in several inner files. Each file begins with the names of the files that it leads to,
/// so that what belongs to a value is found without reading the values.
namespace core {

class StoredValue;

/// A container as the objects see it that were read from it and have parts there.
class PartSource {
  public:
    PartSource(StorageRW storage, wstring root) : storage_(std::move(storage)), root_(std::move(root)) {}

    /// Returns whether this is what was read from the inner file `root` of a container.
    [[nodiscard]] bool isOf(const StorageRW& storage, wstring_view root) const {
        return root_ == root && storage_.isSame(storage);
    }
    [[nodiscard]] const StorageRW& storage() const noexcept { return storage_; }

    // the one object that stands for a part, as long as it is alive
    [[nodiscard]] StoredValue* find(const wstring& part) const noexcept;
    void enter(const wstring& part, StoredValue& object) { objects_[part] = &object; }
    void leave(const wstring& part, const StoredValue& object) noexcept;

  private:
    StorageRW storage_;
    wstring root_;
    std::map<wstring, StoredValue*> objects_;
};
using PartSourcePtr = CountedPtr<PartSource>;

/// What a storage that reads from a container answers for.
class IInParts : public IUnknown {
  public:
    static constexpr GUID IID = "31e9fb54-d2c4-4156-90a4-26a476e432d1"_guid;
    [[nodiscard]] virtual const PartSourcePtr& source() const noexcept = 0;

  protected:
    ~IInParts() = default;
};

/// What a storage that writes parts answers for.
class IOutParts : public IUnknown {
  public:
    static constexpr GUID IID = "b776e47b-95d4-46b3-b402-e6ba2bb34312"_guid;
    /// Returns the name of the inner file in which `object` stands, or will stand.
    [[nodiscard]] virtual wstring partOf(const StoredValue& object) = 0;

  protected:
    ~IOutParts() = default;
};

/// Inner files that are to be written, and the names of those that stay.
struct PartFiles {
    std::vector<std::pair<wstring, std::vector<std::byte>>> files; ///< the last one is the value's own
    std::vector<wstring> kept;
};

/// Returns a value in parts for the inner file `root`. Nothing is written. Parts that stand there and were
/// not touched stay as they are.
[[nodiscard]] PartFiles value_in_parts(const StorageRW& storage, const wstring& root, const Value& value);

/// Returns the value of an inner file with this content, in parts or not. Throws as
/// GenericValue::fromBytes().
[[nodiscard]] GenericValue value_of_content(std::span<const std::byte> content, const PartSourcePtr& source);

/// Returns the names of the parts that an inner file leads to, also through others; none where the file is
/// not there, or is something else.
[[nodiscard]] std::vector<wstring> parts_below(const StorageRW& storage, wstring_view root);

} // namespace core
