// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Values and types: the universal value and its holders, exact numbers, dates, strings, and types as values.
#include <core/dates.h>
#include <core/lists/errors.h>
#include <core/locales.h>
#include <core/numbers.h>
#include <core/persistence/errors.h>
#include <core/strings.h>
#include <core/values/create_value.h>
#include <core/values/date_reading.h>
#include <core/values/errors.h>
#include <core/values/format_value.h>
#include <core/values/formatter.h>
#include <core/values/generic_value.h>
#include <core/values/shown_value.h>
#include <core/values/type.h>
#include <core/values/type_object.h>
#include <core/values/type_service.h>
#include <core/values/value.h>
#include <core/values/value_file.h>
