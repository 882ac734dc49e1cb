// SPDX-License-Identifier: Apache-2.0
// corehost with the bridge inside, as a program of the system that automation objects belong to.
#include "bridges/com/system.h"
#include "host/commands/program.h"

#include <fstream>
#include <string>
#include <vector>

namespace {

/// The arguments as they were given, since the system's own way to main() loses letters outside of a locale
/// with UTF-8.
std::vector<std::string> given_arguments(int count, char** arguments) {
    std::vector<std::string> given;
    std::ifstream line("/proc/self/cmdline", std::ios::binary);
    for (std::string one; given.size() < static_cast<std::size_t>(count) && std::getline(line, one, '\0');)
        given.push_back(one);
    if (given.size() < static_cast<std::size_t>(count))
        given.assign(arguments, arguments + count);
    return given;
}

} // namespace

int main(int argc, char** argv) {
    core::com::system_is_here();
    std::vector<std::string> given = given_arguments(argc, argv);
    std::vector<char*> arguments;
    for (std::string& one : given)
        arguments.push_back(one.data());
    return host::run_main(argc, arguments.data());
}
