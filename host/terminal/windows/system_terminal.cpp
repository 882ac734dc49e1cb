// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/system_terminal.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>
// behind the system's functions
#include <shellapi.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace host {
namespace {

HANDLE handle_of(Stream stream) noexcept {
    return ::GetStdHandle(stream == Stream::input    ? STD_INPUT_HANDLE
                          : stream == Stream::output ? STD_OUTPUT_HANDLE
                                                     : STD_ERROR_HANDLE);
}

std::string in_utf8(const wchar_t* text) {
    const int size = ::WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes.data(), size, nullptr, nullptr);
    bytes.pop_back(); // the zero at the end
    return bytes;
}

} // namespace

bool is_terminal(Stream stream) noexcept {
    DWORD mode = 0;
    return ::GetConsoleMode(handle_of(stream), &mode) != 0;
}

std::size_t terminal_width(Stream stream) noexcept {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (::GetConsoleScreenBufferInfo(handle_of(stream), &info) == 0)
        return 0;
    return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1);
}

bool terminal_has_colours(Stream stream) noexcept {
    DWORD mode = 0;
    const HANDLE terminal = handle_of(stream);
    return ::GetConsoleMode(terminal, &mode) != 0 &&
           ::SetConsoleMode(terminal, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

bool system_is_russian() noexcept {
    return PRIMARYLANGID(::GetUserDefaultUILanguage()) == LANG_RUSSIAN;
}

bool await_line() noexcept {
    return true; // reading tells of Ctrl-C by itself
}

std::optional<std::size_t> read_standard_input(std::span<std::byte> bytes) noexcept {
    DWORD done = 0;
    const auto most = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1U << 30U));
    if (::ReadFile(handle_of(Stream::input), bytes.data(), most, &done, nullptr) != 0)
        return done;
    if (::GetLastError() == ERROR_BROKEN_PIPE) // its other end is closed
        return 0;
    errno = ::GetLastError() == ERROR_OPERATION_ABORTED ? EINTR : EIO;
    return std::nullopt;
}

std::uint64_t size_of_standard_input() noexcept {
    LARGE_INTEGER size{};
    const HANDLE input = handle_of(Stream::input);
    return ::GetFileType(input) == FILE_TYPE_DISK && ::GetFileSizeEx(input, &size) != 0
               ? static_cast<std::uint64_t>(size.QuadPart)
               : 0;
}

std::vector<std::string> begin_process(int, char**) {
    // The same bytes as everywhere, and the terminal takes them for UTF-8.
    for (int stream = 0; stream <= 2; ++stream)
        static_cast<void>(::_setmode(stream, _O_BINARY));
    ::SetConsoleOutputCP(CP_UTF8);
    ::SetConsoleCP(CP_UTF8);
    // main() has them in the code page of the system, in which not every name can be written.
    int count = 0;
    const std::unique_ptr<wchar_t*[], decltype(&::LocalFree)> words(
        ::CommandLineToArgvW(::GetCommandLineW(), &count), &::LocalFree);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(in_utf8(words[static_cast<std::size_t>(i)]));
    return arguments;
}

} // namespace host
