// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Streams of UTF-16 units: text in memory and in UTF-8 files.
#include <core/files/errors.h>
#include <core/streams/errors.h>
#include <core/streams/memory_stream.h>
#include <core/streams/text_buffer.h>
#include <core/streams/text_file.h>
