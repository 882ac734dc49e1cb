// SPDX-License-Identifier: Apache-2.0
#include "tests/support/environment.h"

#include <windows.h>

#include <array>
#include <cstdio>
#include <stdexcept>

namespace support {

const char* const kTemporaryFolder = "TMP";
const char* const kUserConfigFolder = "APPDATA";
const char* const kSystemConfigFolder = "PROGRAMDATA";

void set_environment(const char* name, const char* value) {
    // The C library has a copy of its own, and both are read.
    if (::_putenv_s(name, value != nullptr ? value : "") != 0)
        throw std::runtime_error(name);
    ::SetEnvironmentVariableA(name, value);
}

std::string output_of(const std::string& command) {
    std::FILE* const pipe = ::_popen(command.c_str(), "rb");
    std::string text;
    std::array<char, 1 << 14> piece;
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe))
        text.append(piece.data(), count);
    ::_pclose(pipe);
    return text;
}

} // namespace support
