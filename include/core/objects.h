// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Script objects that are not collections: binary data, text readers and writers, locales and texts in
/// several languages, standard periods, enumerations and their values, the global functions.
#include <core/context.h>
#include <core/lists/errors.h>
#include <core/objects/binary_data.h>
#include <core/objects/core_general_context.h>
#include <core/objects/date_functions.h>
#include <core/objects/enumeration.h>
#include <core/objects/format_functions.h>
#include <core/objects/locale_functions.h>
#include <core/objects/locale_values.h>
#include <core/objects/native_enumeration.h>
#include <core/objects/standard_periods.h>
#include <core/objects/text_streams.h>
#include <core/streams/errors.h>
