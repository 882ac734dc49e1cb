// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/text_writer.h>

#include <functional>
#include <iosfwd>
#include <string>

/// Text on its way to files by the paths that people write.
namespace host {

using WriteText = std::function<void(core::wostream&)>;

/// Makes what `write` writes the text of a file, in UTF-8 unless the options say otherwise. A file, or what a
/// link leads to, there or not, has its old text or the new one, whole; pipes and devices are written to as
/// they are. FileException.
void write_text_file(const std::string& file, const WriteText& write,
                     const core::TextWriterOptions& options = {});

/// Writes what `write` writes to a stream of bytes, in UTF-8 unless the options say otherwise; `name` is what
/// errors call it. `fail`, which must throw, is called when the stream does not take the bytes.
void write_text_stream(std::ostream& bytes, const core::wstring& name, const WriteText& write,
                       const std::function<void()>& fail, const core::TextWriterOptions& options = {});

} // namespace host
