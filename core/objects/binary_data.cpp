// SPDX-License-Identifier: Apache-2.0
#include "core/strings/table_hash.h"

#include <core/context/arguments.h>
#include <core/context/script_object.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/objects/binary_data.h>
#include <core/runtime/utf8.h>

#include <algorithm>

namespace core {

class BinaryData : public ScriptObject<BinaryData, IBinaryData, IPersistableObject> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"BinaryData", u"ДвоичныеДанные"},
        .type = kBinaryDataType,
        .object = kBinaryDataClass,
        .presentation = "IDS_TYPE_PRESENTATION_BINARYDATA",
        .arguments = {0, 1},
    };

    explicit BinaryData(std::vector<std::byte> bytes = {}) noexcept : bytes_(std::move(bytes)) {}

    /// New BinaryData(), or of a String's text in UTF-8.
    static GenericValue construct(std::span<GenericValue> arguments) {
        if (arguments.empty())
            return create_binary_data({});
        const std::string utf8 = to_utf8(text_argument(arguments[0], 0));
        const auto bytes = std::as_bytes(std::span(utf8));
        return create_binary_data({bytes.begin(), bytes.end()});
    }
    static auto members() { return core::members(method(u"Size", u"Размер", &BinaryData::size)); }
    std::size_t size() const noexcept { return bytes_.size(); }

    // IValue
    bool isEqual(const IValue* other) const noexcept override {
        const BinaryData* const data = of(other);
        return data != nullptr && data->bytes_ == bytes_;
    }
    std::int32_t hashCode() const noexcept override {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(table_hash(std::span(bytes_))));
    }

    // IBinaryData
    std::span<const std::byte> bytes() const noexcept override { return bytes_; }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override { storage->listStream().putBytes(bytes_); }
    void deserialize(IInPersistenceStorage* storage) override { storage->listStream().get(bytes_); }

  private:
    std::vector<std::byte> bytes_;
};

Value create_binary_data(std::vector<std::byte> bytes) {
    return make_object<BinaryData>(std::move(bytes));
}

namespace {

const ScriptClassEntry<BinaryData> kBinaryDataEntry;

} // namespace
} // namespace core
