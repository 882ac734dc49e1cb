// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/objects/enumeration.h>
#include <core/streams/text_reader.h>
#include <core/streams/text_writer.h>

/// Text readers and writers as script objects: `New TextReader(File)`, `New TextWriter(File)`
/// (`ЧтениеТекста`, `ЗаписьТекста`), and the enumerations `LineEnds` (`КонцыСтрок`) and `CodingErrorActions`
/// (`ДействияПриОшибкеКодировки`).
namespace core {

inline constexpr GUID kTextReaderType = "706b085e-9fe7-4f38-887a-e0eb5eb59521"_guid; ///< type id
inline constexpr GUID kTextWriterType = "9d29e529-f9ba-45b9-8fbd-3d2f3a7d440d"_guid; ///< type id

/// Returns the enumeration of line ends, borrowed for ever.
[[nodiscard]] CORE_API Enumeration* script_enumeration(LineEnd) noexcept;
/// Returns the enumeration of what is done with what does not fit an encoding, borrowed for ever.
[[nodiscard]] CORE_API Enumeration* script_enumeration(CodingErrorAction) noexcept;

/// Returns a TextReader of scripts that reads from the current position of `file` and keeps it open: what a
/// program hands to a script that has no name for the file. Throws std::bad_alloc.
[[nodiscard]] CORE_API Value create_text_reader(const InterfacePtr<IFile>& file,
                                                const TextReaderOptions& options = {});
/// Returns a TextWriter of scripts that writes at the current position of `file` and keeps it open. Throws
/// std::bad_alloc, and what the file throws.
[[nodiscard]] CORE_API Value create_text_writer(const InterfacePtr<IFile>& file,
                                                const TextWriterOptions& options = {});

} // namespace core
