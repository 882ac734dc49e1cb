// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"
#include "host/terminal/progress.h"

#include <core/runtime/types.h>
#include <core/streams/text_reader.h>

#include <cstddef>
#include <fstream>
#include <span>
#include <string>

namespace host {

/// The bytes that a command reads: a file, a pipe or a device by its path, or standard input for "-". Shows
/// how far it has come where the size is known. The console must outlive it.
class ByteInput {
  public:
    /// FileException when there is nothing to read.
    ByteInput(Console& console, std::string file);
    ByteInput(const ByteInput&) = delete;
    ByteInput& operator=(const ByteInput&) = delete;

    /// Some bytes, at least one; 0 at the end. FileException when they cannot be read.
    std::size_t read(std::span<std::byte> bytes);
    /// What messages call it.
    [[nodiscard]] const std::string& name() const noexcept { return name_; }

  private:
    std::size_t readStandardInput(std::span<std::byte> bytes);

    std::string name_;
    std::ifstream file_;
    std::istream& in_;
    Progress progress_;
};

/// The whole of it as text, in UTF-8 unless the options say otherwise. ConverterException for what does not
/// fit.
[[nodiscard]] core::wstring read_text(Console& console, const std::string& file,
                                      const core::TextReaderOptions& options = {
                                          .encoding = core::Encoding()});

} // namespace host
