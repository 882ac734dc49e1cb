// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/generic_value.h>

namespace core {

/// Lets the user choose: the way from the dialogs of tables and lists to a user interface. A host may offer
/// it as a service. Without the service every choice counts as cancelled. What an operation throws reaches
/// the script that asked.
class IChooser : public IUnknown {
  public:
    /// The id of the interface.
    static constexpr GUID IID = "d4792933-95d5-4441-a41c-842c511275c1"_guid;

    /// Asks for a row of a value table or of a tree's row collection and returns it, or Undefined when the
    /// user cancels. The title may be empty, and `initialRow` Undefined.
    [[nodiscard]] virtual GenericValue chooseRow(const Value& rows, const wstring& title,
                                                 const Value& initialRow) = 0;
    /// Asks for an item of a value list and returns it, or Undefined when the user cancels. `initialItem` may
    /// be Undefined.
    [[nodiscard]] virtual GenericValue chooseItem(const Value& list, const wstring& title,
                                                  const Value& initialItem) = 0;
    /// Lets the user set the check marks of a value list's items. Returns false, with the marks as they were,
    /// when the user cancels.
    [[nodiscard]] virtual bool checkItems(const Value& list, const wstring& title) = 0;

  protected:
    ~IChooser() = default;
};

} // namespace core
