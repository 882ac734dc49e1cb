// SPDX-License-Identifier: Apache-2.0
#include "core/lists/malformed.h"
#include "core/objects/base64.h"

#include <core/context/context_def_ext.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/objects/binary_data.h>
#include <core/persistence/persistence.h>
#include <core/runtime/utf8.h>
#include <core/strings/table_hash.h>
#include <core/values/type_object.h>
#include <core/values/value_impl.h>

#include <algorithm>

namespace core {

class BinaryData : public IValueImpl,
                   public IContextImpl<IContextDefImpl<BinaryData>>,
                   public ContextDefExtImpl<BinaryData>,
                   public IBinaryData,
                   public IPersistableObjectImpl<BinaryData, &kBinaryDataClass> {
  public:
    using Interfaces =
        InterfaceList<IValue, IContext_, IContextDef, IContextDefExt, IBinaryData, IPersistableObject>;

    explicit BinaryData(std::vector<std::byte> bytes = {}) noexcept : bytes_(std::move(bytes)) {}

    static std::span<const Property<BinaryData>> properties() noexcept { return {}; }
    static std::span<const Method<BinaryData>> methods() noexcept;

    // IValue
    IType* getType() const noexcept override;
    bool getString(wstring& out) const override {
        out = getType()->presentation();
        return true;
    }
    bool isEqual(const IValue* other) const noexcept override {
        if (other == nullptr || other->getType() != getType())
            return false;
        const auto data = InterfacePtr<IBinaryData>(const_cast<IValue*>(other));
        return data && std::ranges::equal(bytes_, data->bytes());
    }
    std::int32_t hashCode() const noexcept override {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(table_hash(std::span(bytes_))));
    }

    // IBinaryData
    std::span<const std::byte> bytes() const noexcept override { return bytes_; }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override {
        storage->listStream().put(base64_encode(bytes_));
    }
    void deserialize(IInPersistenceStorage* storage) override {
        wstring text;
        storage->listStream().get(text);
        auto bytes = base64_decode(text);
        if (!bytes)
            throw_malformed();
        bytes_ = std::move(*bytes);
    }

  private:
    GenericValue callSize(std::span<GenericValue>) { return bytes_.size(); }

    std::vector<std::byte> bytes_;
};

Value create_binary_data(std::vector<std::byte> bytes) {
    return make_object<BinaryData>(std::move(bytes));
}

namespace {

/// New BinaryData(), or of a String's text in UTF-8.
GenericValue construct(std::span<GenericValue> arguments) {
    if (arguments.empty())
        return create_binary_data({});
    const wstring_view* const text = arguments[0].asString();
    if (text == nullptr)
        parameter_type_mismatch(0);
    const std::string utf8 = to_utf8(*text);
    const auto bytes = std::as_bytes(std::span(utf8));
    return create_binary_data({bytes.begin(), bytes.end()});
}

constexpr Term kTypeName = {u"BinaryData", u"ДвоичныеДанные"};
constexpr Term kSize = {u"Size", u"Размер"};

constexpr TypeInfo kInfo = {
    .id = kBinaryDataType,
    .valueClass = kBinaryDataClass,
    .names = kTypeName,
    .presentation = "IDS_TYPE_PRESENTATION_BINARYDATA",
    .construct = &construct,
    .arguments = {0, 1},
};

const SCOM_Class<BinaryData, &kBinaryDataClass> kEntry("BinaryData");
const TypeEntry<kInfo> kTypeEntry("BinaryData_Type");

} // namespace

std::span<const Method<BinaryData>> BinaryData::methods() noexcept {
    static constexpr Method<BinaryData> kMethods[] = {
        {kSize, required(0), kFunction, &BinaryData::callSize, &kNumberType},
    };
    return kMethods;
}

IType* BinaryData::getType() const noexcept {
    return TypeEntry<kInfo>::instance();
}

} // namespace core
