// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/text_writer.h>

#include <functional>
#include <iosfwd>
#include <string>

/// Files that are written whole or not at all, by the paths that people write.
namespace core {

/// What writes text to a stream of units.
using WriteText = std::function<void(wostream&)>;

/// Makes the bytes that `write` hands over the content of a file, a path in UTF-8. A file, or what a link
/// leads to, there or not, has its old content or the new one, whole; pipes and devices are written to as
/// they are. Throws FileException, and what `write` throws.
CORE_API void write_whole_file(const std::string& file, const std::function<void(const ByteWriter&)>& write);
/// Makes what `write` writes the text of a file in the same way, in UTF-8 unless the options say otherwise.
CORE_API void write_text_file(const std::string& file, const WriteText& write,
                              const TextWriterOptions& options = {});

/// Writes what `write` writes to a stream of bytes, in UTF-8 unless the options say otherwise; `name` is what
/// errors call it. `fail`, which must throw, is called when the stream does not take the bytes.
CORE_API void write_text_stream(std::ostream& bytes, const wstring& name, const WriteText& write,
                                const std::function<void()>& fail, const TextWriterOptions& options = {});

} // namespace core
