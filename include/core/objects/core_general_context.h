// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

/// The global context: what scripts call without an object in front.
///
///  - 0 `GetTempFileName([Extension])`: a name in the folder for temporary files that no file has. Makes no
///    file. The extension, with or without its ".", must not hold a "/" or "\".
///  - 1 `FillPropertyValues(Receiver, Source, [Names], [Excluded])`: sets the receiver's properties to those
///    of the source with the same name in either language: all that both have, or the listed ones, which both
///    must have. All are set or none is. Lists are names with "," between them.
///  - 2 `Base64Value(Text)`: the BinaryData that a base64 text stands for. White space is passed over.
///  - 3 `Base64String(Data)`: the base64 text of BinaryData, or of a String in UTF-8.
///
/// Arguments of another type or value are a ContextException that names the parameter.
namespace core {

/// The class id of the global context.
inline constexpr GUID kCoreGeneralContextClass = "d01bff24-01c3-4ed3-b0d7-63042f854d4a"_guid;

/// Returns a new global context. Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IContext_> create_core_general_context();

} // namespace core
