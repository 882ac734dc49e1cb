// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Formats: how numbers, dates and Booleans are shown to a user and read back, by
/// default and by format strings.
///
/// A format string is a list of items, `name=value` with ";" between them. A value that holds ";" or "'", or
/// blanks at its ends, stands in "'", inside which "''" is one "'". Names are English or Russian, in any
/// case. The items of each format are listed with its class; an item that a format does not know, or a value
/// that it cannot use, is refused with a CtorException that says where it stands.
#include <core/locales/bool_format.h>
#include <core/locales/collate.h>
#include <core/locales/date_format.h>
#include <core/locales/errors.h>
#include <core/locales/format.h>
#include <core/locales/local_wstring.h>
#include <core/locales/numeric_format.h>
#include <core/locales/settings.h>
#include <core/locales/words_format.h>
