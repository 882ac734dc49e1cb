// SPDX-License-Identifier: Apache-2.0
// What docs/text-documents.md shows works as the page says; its C++ code is compiled from the page itself.
#include "tests/host/page_script.h"

#include <core/documents.h>

core::TextSnapshot number_lines(core::TextManager& document);

namespace host {
namespace {

TEST(TextDocumentsPage, ItsScriptPrintsWhatItSays) {
    expect_page_script("text-documents.md");
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
