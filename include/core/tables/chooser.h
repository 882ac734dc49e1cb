// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/generic_value.h>

namespace core {

/// Lets the user choose: how the dialogs of tables and lists reach a user interface. A service that a host
/// may offer; without it every choice counts as cancelled.
class IChooser : public IUnknown {
  public:
    static constexpr GUID IID = "d4792933-95d5-4441-a41c-842c511275c1"_guid;

    /// A row of a value table or of a tree's row collection; Undefined when cancelled. The title may be
    /// empty, the row to begin with Undefined.
    [[nodiscard]] virtual GenericValue chooseRow(const Value& rows, const wstring& title,
                                                 const Value& initialRow) = 0;
    /// An item of a value list; Undefined when cancelled.
    [[nodiscard]] virtual GenericValue chooseItem(const Value& list, const wstring& title,
                                                  const Value& initialItem) = 0;
    /// Sets the check marks of a value list's items; false when cancelled.
    [[nodiscard]] virtual bool checkItems(const Value& list, const wstring& title) = 0;

  protected:
    ~IChooser() = default;
};

} // namespace core
