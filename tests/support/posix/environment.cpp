// SPDX-License-Identifier: Apache-2.0
#include "tests/support/environment.h"

#include <array>
#include <cstdio>
#include <stdexcept>

namespace support {

const char* const kTemporaryFolder = "TMPDIR";
const char* const kUserConfigFolder = "XDG_CONFIG_HOME";
const char* const kSystemConfigFolder = "XDG_CONFIG_DIRS";

void set_environment(const char* name, const char* value) {
    if ((value != nullptr ? ::setenv(name, value, 1) : ::unsetenv(name)) != 0)
        throw std::runtime_error(name);
}

std::string output_of(const std::string& command) {
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    std::string text;
    std::array<char, 1 << 14> piece;
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe))
        text.append(piece.data(), count);
    ::pclose(pipe);
    return text;
}

} // namespace support
