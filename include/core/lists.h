// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Brace lists: nested data as compact text, on streams of UTF-16 units.
#include <core/dates.h>
#include <core/lists/errors.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/lists/list_scanner.h>
#include <core/lists/nesting.h>
#include <core/lists/token.h>
#include <core/numbers.h>
#include <core/streams.h>
