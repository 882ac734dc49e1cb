// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_table.h>

/// The parameters that functions of several files have.
namespace core::script {

inline constexpr auto kUndefinedDefault = ParamDefault::undefined;

inline constexpr Param kFile = named_param({u"File", u"Файл"});
inline constexpr Param kText = named_param({u"Text", u"Текст"});
inline constexpr Param kEncoding = named_param({u"Encoding", u"Кодировка"}, kUndefinedDefault);
inline constexpr Param kOfText[] = {kText};

} // namespace core::script
