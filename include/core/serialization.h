// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Brace lists: nested data as compact text, on streams of UTF-16 units, and objects that persist in it. Text
/// in memory and in UTF-8 files.
#include <core/dates.h>
#include <core/numbers.h>
#include <core/serialization/exception_object.h>
#include <core/serialization/list_in_stream.h>
#include <core/serialization/list_out_stream.h>
#include <core/serialization/list_scanner.h>
#include <core/serialization/memory_stream.h>
#include <core/serialization/persistence.h>
#include <core/serialization/text_buffer.h>
#include <core/serialization/text_file.h>
#include <core/serialization/token.h>
