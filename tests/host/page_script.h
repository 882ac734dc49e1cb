// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/host/program_fixture.h"

namespace host {

/// Runs the script of a page, the first block behind "## In scripts"; it must print the block behind it.
inline void expect_page_script(const std::string& file) {
    const std::string page = text_of(std::filesystem::path(CORE_SOURCE_DIR) / "docs" / file);
    const std::string fence = "```";
    std::size_t at = page.find("## In scripts");
    const auto block = [&] {
        const std::size_t begin = page.find('\n', page.find(fence, at)) + 1;
        const std::size_t end = page.find(fence, begin);
        at = end + fence.size();
        return page.substr(begin, end - begin);
    };
    const std::string script = block();
    const Answer answer = corehost({"run", "-"}, script);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, block());
}

} // namespace host
