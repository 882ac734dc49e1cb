# SPDX-License-Identifier: Apache-2.0
target_link_libraries(bench_scripts PRIVATE core_script core_host)
