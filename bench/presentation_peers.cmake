# SPDX-License-Identifier: Apache-2.0
target_compile_definitions(bench_presentation PRIVATE CORE_SOURCE_DIR="${PROJECT_SOURCE_DIR}") # for the kept pictures
target_link_libraries(bench_presentation PRIVATE core::host) # the process of the report
