// SPDX-License-Identifier: Apache-2.0
#include "host/console/history_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace host {
namespace {

namespace fs = std::filesystem;

std::string absolute_variable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr && value[0] == '/' ? value : "";
}

/// One write, so that lines of consoles side by side do not mix.
bool append_bytes(const std::string& path, std::string_view bytes, int flags) noexcept {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | flags, 0600);
    if (descriptor < 0)
        return false;
    const bool whole =
        ::write(descriptor, bytes.data(), bytes.size()) == static_cast<::ssize_t>(bytes.size());
    ::close(descriptor);
    return whole;
}

} // namespace

HistoryFile HistoryFile::of_user() {
    std::string folder = absolute_variable("XDG_STATE_HOME");
    if (folder.empty()) {
        folder = absolute_variable("HOME");
        if (folder.empty())
            return HistoryFile({});
        folder += "/.local/state";
    }
    return HistoryFile(folder + "/corehost/history");
}

std::vector<std::string> HistoryFile::load() const {
    std::vector<std::string> lines;
    std::error_code ignored;
    if (!fs::is_regular_file(path_, ignored))
        return lines;
    std::ifstream file(path_, std::ios::binary);
    for (std::string line; std::getline(file, line);)
        lines.push_back(std::move(line));
    if (lines.size() <= 2 * kMostLines)
        return lines;
    lines.erase(lines.begin(), lines.end() - kMostLines);
    std::string text;
    for (const std::string& line : lines)
        text += line + '\n';
    const std::string beside = path_ + "." + std::to_string(::getpid());
    if (append_bytes(beside, text, O_EXCL))
        fs::rename(beside, path_, ignored);
    else
        fs::remove(beside, ignored);
    return lines;
}

void HistoryFile::append(std::string_view line) const noexcept {
    if (path_.empty())
        return;
    try {
        std::error_code ignored;
        fs::create_directories(fs::path(path_).parent_path(), ignored);
        append_bytes(path_, std::string(line) + '\n', 0);
    } catch (const std::exception&) { // no memory for a path: nothing that the user must know
    }
}

} // namespace host
