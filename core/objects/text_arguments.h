// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/arguments.h>
#include <core/files/file_system.h>
#include <core/objects/text_streams.h>
#include <core/runtime/process.h>

#include <optional>

/// What New takes for text readers and writers. Undefined stands for a default.
namespace core {

/// The encoding that a String names; nothing for Undefined. Throws ConverterException for an unknown name.
[[nodiscard]] inline std::optional<Encoding> encoding_argument(const Value& argument, int param) {
    return argument.isUndefined() ? std::nullopt : std::optional(Encoding(text_argument(argument, param)));
}

[[nodiscard]] inline CodingErrorAction action_argument(const Value& argument, int param) {
    return static_cast<CodingErrorAction>(
        choice_argument(argument, param, *script_enumeration(CodingErrorAction{}), 0));
}

/// Opens the file of a path or URL.
[[nodiscard]] inline InterfacePtr<IFile> open_argument(const Value& argument, int param, OpenMode mode) {
    return require_service<IFileSystem>().openURL(wstring(text_argument(argument, param)), mode);
}

} // namespace core
