# SPDX-License-Identifier: Apache-2.0
target_link_libraries(bench_containers PRIVATE lmdb sqlite3 zip)
