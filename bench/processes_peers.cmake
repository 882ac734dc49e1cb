# SPDX-License-Identifier: Apache-2.0
target_link_libraries(bench_processes PRIVATE core::host) # the process whose look-ups are measured
