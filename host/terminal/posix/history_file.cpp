// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/history_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
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

/// The file at a path, open for appending and locked; nobody else replaces it or appends to it meanwhile.
class LockedFile {
  public:
    LockedFile(const std::string& path, int flags) noexcept {
        do {
            leave();
            descriptor_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | flags, 0600);
        } while (isOpen() && ::flock(descriptor_, LOCK_EX) == 0 && !isAt(path));
    }
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;
    ~LockedFile() { leave(); }

    [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }
    /// One write, so that a line is there whole or, where the disk is full, ends the file.
    [[nodiscard]] bool append(std::string_view bytes) const noexcept {
        return ::write(descriptor_, bytes.data(), bytes.size()) == static_cast<::ssize_t>(bytes.size());
    }

  private:
    /// False when another file has taken its place while the lock was waited for.
    [[nodiscard]] bool isAt(const std::string& path) const noexcept {
        struct stat opened {
        }, there{};
        return ::fstat(descriptor_, &opened) == 0 && ::stat(path.c_str(), &there) == 0 &&
               opened.st_dev == there.st_dev && opened.st_ino == there.st_ino;
    }
    void leave() noexcept {
        if (isOpen())
            ::close(descriptor_);
    }

    int descriptor_ = -1;
};

constexpr std::string_view kSeparator = "\u2028"; // nobody types one

std::string replaced(std::string text, std::string_view what, std::string_view by) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
        text.replace(at, what.size(), by);
    return text;
}

std::vector<std::string> read_lines(const std::string& path) {
    std::vector<std::string> lines;
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);)
        lines.push_back(std::move(line));
    return lines;
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
    std::vector<std::string> lines = lastLines();
    for (std::string& line : lines)
        line = replaced(std::move(line), kSeparator, "\n");
    return lines;
}

std::vector<std::string> HistoryFile::lastLines() const {
    std::error_code ignored;
    if (!fs::is_regular_file(path_, ignored))
        return {};
    std::vector<std::string> lines = read_lines(path_);
    if (lines.size() <= 2 * kMostLines)
        return lines;
    const LockedFile history(path_, 0);
    lines = read_lines(path_); // what came meanwhile, too
    lines.erase(lines.begin(), lines.end() - std::min<std::ptrdiff_t>(std::ssize(lines), kMostLines));
    if (!history.isOpen())
        return lines;
    std::string text;
    for (const std::string& line : lines)
        text += line + '\n';
    const std::string beside = path_ + "." + std::to_string(::getpid());
    const LockedFile shortened(beside, O_EXCL);
    if (shortened.isOpen() && shortened.append(text))
        fs::rename(beside, path_, ignored);
    else
        fs::remove(beside, ignored);
    return lines;
}

void HistoryFile::append(std::string_view entry) const noexcept {
    if (path_.empty())
        return;
    try {
        std::error_code ignored;
        fs::create_directories(fs::path(path_).parent_path(), ignored);
        if (const LockedFile history(path_, 0); history.isOpen())
            static_cast<void>(history.append(replaced(std::string(entry), "\n", kSeparator) + '\n'));
    } catch (const std::exception&) { // no memory for a path: nothing that the user must know
    }
}

} // namespace host
