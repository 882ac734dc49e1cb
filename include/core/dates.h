// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Dates: a moment of the calendar as one count of ticks, its parts, periods, time zones and texts; standard
/// periods, which are counted from a day.
#include <core/dates/calendar.h>
#include <core/dates/date.h>
#include <core/dates/errors.h>
#include <core/dates/settings.h>
#include <core/dates/shown_date.h>
#include <core/dates/standard_period.h>
