// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace core::script {

/// Thrown by Exit: the script ends, and nothing in it handles that.
struct ScriptExit {
    int code = 0;
};

} // namespace core::script
