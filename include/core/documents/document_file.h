// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/documents/text_manager.h>
#include <core/files/file_system.h>
#include <core/streams/detection.h>
#include <core/streams/text_reader.h>
#include <core/streams/text_writer.h>

namespace core {

/// Replaces the text by what is left in a reader, with its line ends as they are, and forgets all steps. When
/// reading throws, the document is as it was. Throws what the reader throws, DocumentException in a group,
/// and std::bad_alloc.
CORE_API void read_document(TextManager& document, TextReader& reader);
/// Writes a text with its line ends as they are; the caller finishes the writer. Throws what the writer
/// throws.
CORE_API void write_document(const TextSnapshot& text, TextWriter& writer);

/// Reads a file as read_document() does and returns what is known of its encoding, which is looked for when
/// the options do not say it. Throws FileException and ConverterException, too.
CORE_API DetectedEncoding load_document(TextManager& document, IFileSystem& files, const wstring& url,
                                        const TextReaderOptions& options = {});
/// Writes the text to a file, which is created or replaced as a whole, and notes that it has been saved.
/// Throws FileException, ConverterException, and DocumentException in a group; the old file stays then.
CORE_API void save_document(TextManager& document, IFileSystem& files, const wstring& url,
                            const TextWriterOptions& options = {});

} // namespace core
