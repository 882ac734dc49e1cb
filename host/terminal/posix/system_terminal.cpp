// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/system_terminal.h"

#include <fcntl.h>
#include <malloc.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string_view>

namespace host {
namespace {

int number_of(Stream stream) noexcept {
    return stream == Stream::input ? STDIN_FILENO : stream == Stream::output ? STDOUT_FILENO : STDERR_FILENO;
}

/// Keeps the numbers of closed standard streams from being those of files that are opened later: what is
/// written to a closed stream still fails, but does not end up in a container.
void keep_standard_streams() {
    for (int stream = 0; stream <= 2; ++stream) {
        if (::fcntl(stream, F_GETFD) == -1)
            static_cast<void>(
                ::open("/dev/null", stream == 0 ? O_WRONLY : O_RDONLY)); // the lowest that is free
    }
}

/// A file that must not grow further is an error of the write, like a full disk, and ends nothing by itself.
void keep_running_at_limits() {
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
}

/// Scripts make large values and drop them all the time: pages given back at once would be asked for again,
/// which takes longer than filling them.
void keep_freed_memory() {
    constexpr int kKept = 256 << 20;
    constexpr int kMapped = 32 << 20; // the most that the system takes
    static_cast<void>(::mallopt(M_TRIM_THRESHOLD, kKept));
    static_cast<void>(::mallopt(M_MMAP_THRESHOLD, kMapped));
}

} // namespace

bool is_terminal(Stream stream) noexcept {
    return ::isatty(number_of(stream)) == 1;
}

std::size_t terminal_width(Stream stream) noexcept {
    winsize size{};
    return ::ioctl(number_of(stream), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool terminal_has_colours(Stream stream) noexcept {
    const char* const terminal = std::getenv("TERM");
    return terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb" &&
           is_terminal(stream);
}

bool system_is_russian() noexcept {
    return false; // the environment is all that says it
}

bool await_line() noexcept {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return ::poll(&input, 1, -1) >= 0 || errno != EINTR;
}

std::optional<std::size_t> read_standard_input(std::span<std::byte> bytes) noexcept {
    // A signal that comes just before a wait does not end it, so that no wait is long.
    constexpr int kLongestWait = 100; // milliseconds
    pollfd input{STDIN_FILENO, POLLIN, 0};
    const int ready = ::poll(&input, 1, kLongestWait);
    if (ready == 0)
        errno = EINTR;
    if (ready <= 0)
        return std::nullopt;
    const ::ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    return count < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(count));
}

std::uint64_t size_of_standard_input() noexcept {
    struct stat status {};
    return ::fstat(STDIN_FILENO, &status) == 0 && S_ISREG(status.st_mode)
               ? static_cast<std::uint64_t>(status.st_size)
               : 0;
}

std::vector<std::string> begin_process(int count, char** arguments) {
    keep_standard_streams();
    keep_running_at_limits();
    keep_freed_memory();
    return {arguments + 1, arguments + count};
}

} // namespace host
