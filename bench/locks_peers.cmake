# SPDX-License-Identifier: Apache-2.0
find_package(absl REQUIRED)
target_link_libraries(bench_locks PRIVATE absl::synchronization)
