// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// What the system tells of the terminal and of the standard streams, and does with them.
namespace host {

enum class Stream { input, output, error };

[[nodiscard]] bool is_terminal(Stream stream) noexcept;
/// In columns; 0 where it is not known.
[[nodiscard]] std::size_t terminal_width(Stream stream) noexcept;
/// Whether a stream goes to a terminal that takes escape sequences for colours.
[[nodiscard]] bool terminal_has_colours(Stream stream) noexcept;
/// Whether the system speaks Russian, where the environment does not say.
[[nodiscard]] bool system_is_russian() noexcept;

/// Waits until a line can be read from the terminal; false when Ctrl-C came instead.
[[nodiscard]] bool await_line() noexcept;
/// Reads what there is of standard input, at least one byte; 0 at the end. Nothing when it fails, a signal
/// comes or nothing has come for a while, with the reason in errno, EINTR for the last two.
[[nodiscard]] std::optional<std::size_t> read_standard_input(std::span<std::byte> bytes) noexcept;
/// Returns the size of the file that standard input is; 0 for what is not a file.
[[nodiscard]] std::uint64_t size_of_standard_input() noexcept;

/// Makes the process ready: standard streams, limits, memory. Returns the arguments of the program in UTF-8.
[[nodiscard]] std::vector<std::string> begin_process(int count, char** arguments);

} // namespace host
