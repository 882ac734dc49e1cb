// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>
#include <core/streams/converter.h>
#include <core/streams/line_end.h>

#include <functional>
#include <memory>
#include <span>

namespace core {

/// Writes all of the bytes, or throws.
using ByteWriter = std::function<void(std::span<const std::byte>)>;

/// How a TextWriter writes.
struct TextWriterOptions {
    Encoding encoding{};                                  ///< of the bytes
    CodingErrorAction action = CodingErrorAction::report; ///< what is done with what does not fit
    LineEnd lineEnd = LineEnd::lf;                        ///< what writeLine() writes
    bool convertEnds = false; ///< whether each CR, LF and CR LF of what is written becomes `lineEnd`
    bool mark = false;        ///< whether a byte order mark stands in front, where the encoding has one
};

/// Writes a text in pieces. What was written is in the file only after finish(). One thread at a time.
///
/// Every function that writes throws what takes the bytes throws, and ConverterException for what the
/// encoding does not have; the writer is of no use after that, and each further call throws the first failure
/// again.
class CORE_API TextWriter {
  public:
    /// Hands bytes to `write`; messages call the text `name`.
    TextWriter(ByteWriter write, wstring name, const TextWriterOptions& options = {});
    /// Writes at the current position of `file`, which the writer keeps open. The mark is written only at the
    /// start of the file.
    explicit TextWriter(const InterfacePtr<IFile>& file, const TextWriterOptions& options = {});
    /// Drops what finish() has not written.
    ~TextWriter();
    /// Takes the text over in the middle; `other` may then only be destroyed.
    TextWriter(TextWriter&& other) noexcept;
    /// Takes the text over in the middle; `other` may then only be destroyed.
    TextWriter& operator=(TextWriter&& other) noexcept;

    /// Writes a text. The halves of a surrogate pair, and CR and LF of one end, may come in two calls.
    void write(wstring_view text);
    /// Writes a text and the line end of the options.
    void writeLine(wstring_view text = {});
    /// Hands over what has been encoded. Half a surrogate pair waits for its other half.
    void flush();
    /// Writes what is left and ends the text; nothing may be written afterwards. Half a surrogate pair that
    /// waits for its other half does not fit now.
    void finish();

    /// Returns how many units have been written, as they were given.
    [[nodiscard]] std::uint64_t position() const noexcept;
    /// Returns how many characters have been replaced or escaped.
    [[nodiscard]] std::uint64_t faults() const noexcept;
    /// Returns the encoding that it writes.
    [[nodiscard]] Encoding encoding() const noexcept;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace core
