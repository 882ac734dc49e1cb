# SPDX-License-Identifier: Apache-2.0
# Headers alone, which are the same for every system.
add_library(CLI11::CLI11 INTERFACE IMPORTED)
