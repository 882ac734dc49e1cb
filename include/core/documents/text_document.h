// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/documents/text_manager.h>
#include <core/objects/native_enumeration.h>
#include <core/streams/encoding.h>
#include <core/values/value.h>

/// A text that is edited, as scripts see it: "TextDocument" (`ТекстовыйДокумент`). How a text is looked for
/// is the enumeration "TextQueryKinds" (`ВидыПоискаТекста`).
namespace core {

inline constexpr GUID kTextDocumentClass = "0e9e7b56-e076-4fe2-90ad-a9aac0f1d6a0"_guid; ///< class id
inline constexpr GUID kTextDocumentType = "e33b8204-8f83-4801-b153-dfcb30337115"_guid;  ///< type id

/// Returns the enumeration of the ways to look for a text, borrowed for ever.
[[nodiscard]] CORE_API Enumeration* script_enumeration(TextQueryKind) noexcept;

/// A document as C++ reaches it behind a value that is a TextDocument.
class ITextDocument : public IUnknown {
  public:
    static constexpr GUID IID = "0a92e54e-67d6-4f53-9d13-6e6ea5a35348"_guid; ///< the interface's id
    /// Returns the document, borrowed: valid as long as the object.
    [[nodiscard]] virtual TextManager& manager() noexcept = 0;

  protected:
    ~ITextDocument() = default;
};

/// Returns a new TextDocument. Throws std::bad_alloc.
[[nodiscard]] CORE_API Value create_text_document(wstring_view text = {},
                                                  const TextManagerOptions& options = {});

} // namespace core
