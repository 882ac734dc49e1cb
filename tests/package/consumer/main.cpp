// SPDX-License-Identifier: Apache-2.0
// A program outside the tree: it links both libraries and finds the messages, wherever the package stands.
#include <core/runtime/exception.h>
#include <core/runtime/utf8.h>
#include <host/host_process.h>

#include <iostream>

int main() {
    core::Settings settings;
    settings.locale = core::Locale("ru");
    const host::HostProcess process(settings);
    const std::string text = core::to_utf8(core::message_text("IDS_NUMERROR_DIVIDEBYZERO"));
    std::cout << text << '\n';
    return text.starts_with("IDS_") ? 1 : 0;
}
