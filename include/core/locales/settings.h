// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/guid.h>
#include <core/runtime/locale.h>
#include <core/runtime/settings.h>
#include <core/runtime/types.h>

namespace core {

/// The default format strings of a process; an empty one stands for the plain form. Part of its Settings,
/// whose locale decides the words and the order of texts.
struct FormatSettings {
    /// Tells this part of the settings from others.
    static constexpr GUID kId = "107e2c23-cc9a-4734-b721-6f6bbb20e8c4"_guid;

    wstring numericFormat; ///< of numbers
    wstring dateFormat;    ///< of dates
    wstring boolFormat;    ///< of Booleans
};

/// In which language a text is read that has none in the language of the user. Part of a process's Settings.
struct LanguageSettings {
    /// Tells this part of the settings from others.
    static constexpr GUID kId = "4e59e9ba-b8a8-42cc-b2eb-36ec05126dcd"_guid;

    Locale byDefault = Locale("en"); ///< the default language of LocalWString
};

} // namespace core
