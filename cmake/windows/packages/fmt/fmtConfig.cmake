# SPDX-License-Identifier: Apache-2.0
# Headers alone, which are the same for every system.
add_library(fmt::fmt-header-only INTERFACE IMPORTED)
target_compile_definitions(fmt::fmt-header-only INTERFACE FMT_HEADER_ONLY=1)
