// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"

#include <core/context/script_object.h>
#include <core/tables/terms.h>

namespace core {

inline constexpr GUID kVTIndexType = "c2bbd476-af15-4b8a-aa97-6c8ba039c343"_guid;
inline constexpr GUID kVTIndexCollectionType = "9906b757-f6a2-46a6-884d-3a16d454f679"_guid;

/// The indexes of a table, as a part of that.
class VTIndexCollection : public ScriptObject<VTIndexCollection, IValueCollection> {
  public:
    static constexpr ScriptClass script = {
        .names = kValueTableIndexCollectionTerm,
        .type = kVTIndexCollectionType,
        .object = "0e4ed245-3072-4d80-9e0b-4cd011b73640"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_VALUETABLEINDEXES",
        .elements = &kVTIndexType,
    };

    explicit VTIndexCollection(TableData& data) noexcept : data_(data) {}

    static std::span<const Method<VTIndexCollection>> methods() noexcept;
    InterfacePtr<IValueEnum> enumerate() override;

  private:
    GenericValue callAdd(std::span<GenericValue> arguments);
    GenericValue callDelete(std::span<GenericValue> arguments);
    GenericValue callClear(std::span<GenericValue> arguments);
    GenericValue callCount(std::span<GenericValue> arguments);
    GenericValue callGet(std::span<GenericValue> arguments);

    TableData& data_;
};

} // namespace core
