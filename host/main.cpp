// SPDX-License-Identifier: Apache-2.0
#include "host/commands/program.h"

int main(int argc, char** argv) {
    return host::run_main(argc, argv);
}
