// SPDX-License-Identifier: Apache-2.0
// What docs/text-documents.md shows works as the page says; its C++ code is compiled from the page itself.
#include "tests/host/program_fixture.h"

#include <core/documents.h>

core::TextSnapshot number_lines(core::TextManager& document);

namespace host {
namespace {

TEST(TextDocumentsPage, ItsScriptPrintsWhatItSays) {
    const std::string page = text_of(std::filesystem::path(CORE_SOURCE_DIR) / "docs" / "text-documents.md");
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

TEST(TextDocumentsPage, ItsProgramNumbersLines) {
    core::TextManager document(u"one\r\ntwo");
    EXPECT_EQ(number_lines(document).text(), u"one\r\ntwo");
    EXPECT_EQ(document.text().text(), u"1. one\r\n2. two");
    document.undo();
    EXPECT_EQ(document.text().text(), u"one\r\ntwo");
}

} // namespace
} // namespace host
