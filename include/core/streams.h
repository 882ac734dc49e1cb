// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Streams of UTF-16 units: text in memory, and in files of any encoding.
#include <core/files/errors.h>
#include <core/streams/converter.h>
#include <core/streams/detection.h>
#include <core/streams/encoding.h>
#include <core/streams/errors.h>
#include <core/streams/line_end.h>
#include <core/streams/memory_stream.h>
#include <core/streams/text_buffer.h>
#include <core/streams/text_file.h>
#include <core/streams/text_info.h>
#include <core/streams/text_reader.h>
#include <core/streams/text_writer.h>
