// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace host {

/// What corehost answers to the shell. The numbers are part of its interface and documented in its help.
enum class ExitCode : int {
    done = 0,
    no = 1,            ///< it worked and the answer is no
    usage = 2,         ///< the command line makes no sense
    malformed = 3,     ///< malformed input, or an error in a script
    io = 4,            ///< a file could not be read or written
    internal = 70,     ///< a fault of this program
    interrupted = 130, ///< Ctrl-C, or a request to end; what was begun is cleared away
};

} // namespace host
