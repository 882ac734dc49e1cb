// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/safe_array.h"

#include "bridges/com/errors.h"
#include "bridges/com/values.h"

#include <core/collections/value_array.h>
#include <core/context/arguments.h>
#include <core/context/script_object.h>
#include <core/objects/binary_data.h>
#include <core/tables/value_table.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace core::com {
namespace {

constexpr int kDepth = 64; // of arrays in arrays, before the stack ends

/// How many arrays without elements one may hold. They take no memory on the other side, and much on ours.
constexpr std::uint64_t kMostEmpty = 1U << 20U;

[[noreturn]] void bad_array() {
    throw_error<COMException>(messages::kBadArray);
}

/// Refuses arrays that stand too deep in others; an array can hold itself.
void check_depth(int depth) {
    if (depth > kDepth)
        bad_array();
}

/// The content of a safe array, locked while this lives.
class Locked {
  public:
    explicit Locked(SAFEARRAY* array) : array_(array) {
        if (FAILED(SafeArrayAccessData(array, &data_)))
            bad_array();
    }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked() { SafeArrayUnaccessData(array_); }

    [[nodiscard]] std::byte* at(std::size_t index) const noexcept {
        return static_cast<std::byte*>(data_) + index * SafeArrayGetElemsize(array_);
    }

  private:
    SAFEARRAY* array_;
    void* data_ = nullptr;
};

/// The counts of the dimensions, the first one first. The first index varies quickest.
std::vector<std::size_t> counts_of(SAFEARRAY* array) {
    const UINT dimensions = array != nullptr ? SafeArrayGetDim(array) : 0;
    if (dimensions == 0 || dimensions > kDepth)
        bad_array();
    std::vector<std::size_t> counts;
    std::uint64_t all = 1;
    std::uint64_t places = 1; // for elements, as if no dimension were empty
    for (UINT dimension = 1; dimension <= dimensions; ++dimension) {
        LONG first = 0;
        LONG last = 0;
        if (FAILED(SafeArrayGetLBound(array, dimension, &first)) ||
            FAILED(SafeArrayGetUBound(array, dimension, &last)) || std::int64_t{last} - first < -1)
            bad_array();
        counts.push_back(static_cast<std::size_t>(std::int64_t{last} - first + 1));
        all *= counts.back();
        places *= std::max<std::size_t>(counts.back(), 1);
        if (places > std::numeric_limits<std::int32_t>::max())
            bad_array();
    }
    if (all == 0 && places > kMostEmpty)
        bad_array();
    return counts;
}

/// The type of the elements as the array itself knows it.
VARTYPE own_type(SAFEARRAY* array) {
    VARTYPE type = VT_EMPTY;
    if (FAILED(SafeArrayGetVartype(array, &type)))
        bad_array();
    return type;
}

/// The type that elements of a type are read as.
VARTYPE read_as(VARTYPE type) noexcept {
    switch (type) {
    case VT_INT:
        return VT_I4;
    case VT_UINT:
        return VT_UI4;
    case VT_DISPATCH:
        return VT_UNKNOWN;
    default:
        return type;
    }
}

Value element_value(std::byte* place, VARTYPE type, int depth) {
    VARIANT element;
    VariantInit(&element);
    if (type == VT_DECIMAL) { // takes the whole of a VARIANT
        std::memcpy(&V_DECIMAL(&element), place, sizeof(DECIMAL));
        V_VT(&element) = VT_DECIMAL;
        return from_variant(element, depth);
    }
    V_VT(&element) = static_cast<VARTYPE>(type | VT_BYREF);
    V_BYREF(&element) = place;
    return from_variant(element, depth);
}

/// The elements of one dimension; `index` is that of the first one, `step` leads to the next.
Value dimension_value(const Locked& data, std::span<const std::size_t> counts, std::size_t index,
                      std::size_t step, VARTYPE type, int depth) {
    std::vector<Value> values;
    values.reserve(counts.front());
    for (std::size_t i = 0; i < counts.front(); ++i) {
        const std::size_t at = index + i * step;
        values.push_back(counts.size() == 1 ? element_value(data.at(at), type, depth)
                                            : dimension_value(data, counts.subspan(1), at,
                                                              step * counts.front(), type, depth));
    }
    return create_value_array(std::move(values)).query<IValue>();
}

/// A new safe array of VARIANTs or of another type, which lets go of itself.
class NewArray {
  public:
    NewArray(VARTYPE type, std::initializer_list<std::size_t> counts) : type_(type) {
        std::vector<SAFEARRAYBOUND> bounds;
        for (const std::size_t count : counts) {
            if (count > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
                throw std::bad_alloc();
            bounds.push_back({static_cast<ULONG>(count), 0});
        }
        array_ = SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data());
        if (array_ == nullptr)
            throw std::bad_alloc();
    }
    NewArray(const NewArray&) = delete;
    NewArray& operator=(const NewArray&) = delete;
    ~NewArray() {
        if (array_ != nullptr)
            SafeArrayDestroy(array_);
    }

    [[nodiscard]] SAFEARRAY* get() const noexcept { return array_; }
    void moveTo(VARIANT& out) noexcept {
        V_ARRAY(&out) = std::exchange(array_, nullptr);
        V_VT(&out) = static_cast<VARTYPE>(VT_ARRAY | type_);
    }

  private:
    VARTYPE type_;
    SAFEARRAY* array_;
};

void set_element(const Value& value, std::byte* place, VARTYPE type, const ComOptions& options, int depth) {
    VARIANT element;
    VariantInit(&element);
    V_VT(&element) = static_cast<VARTYPE>(type | VT_BYREF);
    V_BYREF(&element) = place;
    to_reference(value, element, options, depth);
}

bool bytes_to_array(std::span<const std::byte> bytes, VARIANT& out) {
    NewArray array(VT_UI1, {bytes.size()});
    if (!bytes.empty())
        std::memcpy(Locked(array.get()).at(0), bytes.data(), bytes.size());
    array.moveTo(out);
    return true;
}

bool values_to_array(std::span<const Value> values, VARTYPE type, VARIANT& out, const ComOptions& options,
                     int depth) {
    NewArray array(type, {values.size()});
    {
        const Locked data(array.get());
        for (std::size_t i = 0; i < values.size(); ++i)
            set_element(values[i], data.at(i), type, options, depth);
    }
    array.moveTo(out);
    return true;
}

bool table_to_array(const IValueTableBaseRO& table, VARTYPE type, VARIANT& out, const ComOptions& options,
                    int depth) {
    const std::size_t rows = table.rowCount();
    const std::size_t columns = table.columnCount();
    NewArray array(type, {rows, columns});
    {
        const Locked data(array.get());
        for (std::size_t column = 0; column < columns; ++column) {
            const std::int32_t id = table.column(column).id;
            for (std::size_t row = 0; row < rows; ++row)
                set_element(table.get(row, id), data.at(column * rows + row), type, options, depth);
        }
    }
    array.moveTo(out);
    return true;
}

/// A safe array with elements of a type that the script says; it is handed over as a copy.
class SafeArray : public ScriptObject<SafeArray> {
  public:
    static constexpr ClassNames names{u"SafeArray", u"COMМассив", "COM_SAFE_ARRAY"};

    explicit SafeArray(VARIANT& array) noexcept : array_(V_ARRAY(&array)) { V_VT(&array) = VT_EMPTY; }
    ~SafeArray() { SafeArrayDestroy(array_); }

    /// What New does with an array, binary data or a table, and the name of the type of the elements.
    static ObjectPtr<SafeArray> construct(const Value& values, std::optional<wstring_view> type) {
        const VARTYPE element = type ? type_of_name(*type) : VARTYPE{VT_EMPTY};
        if (element == VT_ILLEGAL || element == VT_RECORD)
            parameter_value_mismatch(1);
        Variant made;
        if (!to_safe_array(values, element, made, {.arrays = ComArrays::copies}))
            parameter_type_mismatch(0);
        return make_object<SafeArray>(made);
    }

    [[nodiscard]] SAFEARRAY* get() const noexcept { return array_; }

    wstring elementType() const { return type_name(own_type(array_)); }
    std::int64_t dimensions() const { return SafeArrayGetDim(array_); }
    Value values() const { return from_safe_array(array_, own_type(array_)); }

    static auto members() {
        return core::members(property(u"ElementType", u"ТипЭлементов", &SafeArray::elementType),
                             property(u"Dimensions", u"Измерения", &SafeArray::dimensions),
                             method(u"Values", u"Значения", &SafeArray::values));
    }

  private:
    SAFEARRAY* array_;
};

const ScriptClassEntry<SafeArray> kSafeArrayEntry;

} // namespace

Value from_safe_array(SAFEARRAY* array, VARTYPE type, int depth) {
    const std::vector<std::size_t> counts = counts_of(array);
    const int inside = depth + static_cast<int>(counts.size());
    check_depth(inside);
    if (read_as(type) != read_as(own_type(array)))
        bad_array();
    if (type == VT_RECORD) {
        ComPtr<IRecordInfo> info;
        Bstr name;
        if (SUCCEEDED(SafeArrayGetRecordInfo(array, info.typed())))
            static_cast<void>(info->GetName(name.out()));
        throw_error<COMException>(messages::kRecord, {wstring(name.view())});
    }
    const Locked data(array);
    if (SafeArrayGetElemsize(array) != size_of_type(type) ||
        (array->pvData == nullptr && std::ranges::find(counts, 0U) == counts.end()))
        bad_array();
    if (type == VT_UI1 && counts.size() == 1) {
        const std::byte* const bytes = data.at(0);
        return create_binary_data(std::vector<std::byte>(bytes, bytes + counts.front()));
    }
    return dimension_value(data, counts, 0, 1, type, inside);
}

bool to_safe_array(const Value& value, VARTYPE element, VARIANT& out, const ComOptions& options, int depth) {
    check_depth(depth + 1);
    const VARTYPE type = element == VT_EMPTY ? VARTYPE{VT_VARIANT} : element;
    if (const auto values = value.query<IValueSequence>())
        return values_to_array(values->values(), type, out, options, depth + 1);
    if (const auto data = value.query<IBinaryData>(); data && (element == VT_EMPTY || element == VT_UI1))
        return bytes_to_array(data->bytes(), out);
    if (const auto table = value.query<IValueTableBaseRO>())
        return table_to_array(*table, type, out, options, depth + 1);
    return false;
}

SAFEARRAY* held_safe_array(const Value& value) noexcept {
    const SafeArray* const array = SafeArray::of(value);
    return array != nullptr ? array->get() : nullptr;
}

} // namespace core::com
