// SPDX-License-Identifier: Apache-2.0
// "corehost text": what it tells of texts, and that a conversion writes all of the new text or leaves the old
// one. What docs/texts.md shows works as the page says; its C++ code is compiled from the page itself.
#include "tests/host/program_fixture.h"
#include "tests/script/script_fixture.h"
#include "tests/support/file_helpers.h"

#include <core/files/file_io.h>
#include <core/files/memory_file.h>
#include <core/streams/converter.h>

core::wstring to_plain_text(const core::InterfacePtr<core::IFile>& from,
                            const core::InterfacePtr<core::IFile>& to);

namespace host {
namespace {

class Text : public FolderTest {
  protected:
    static std::string in(const char16_t* encoding, core::wstring_view text) {
        return core::encode_text(text, core::Encoding(encoding));
    }
    static constexpr core::wstring_view kText =
        u"Съешь же ещё этих мягких французских булок,\r\nда выпей чаю.\r\n";
};

TEST_F(Text, InfoTellsEncodingLinesAndWhatDoesNotFit) {
    static_cast<void>(file("old.txt", in(u"IBM866", kText)));
    static_cast<void>(file("mixed.txt", "\xEF\xBB\xBF"
                                        "a\nb\r\n\rlong\xFF"));
    const Answer answer = corehost({"text", "info", path("old.txt"), path("mixed.txt"), path("none")});
    EXPECT_EQ(answer.code, ExitCode::io);
    EXPECT_EQ(answer.out,
              path("old.txt") +
                  ": IBM866, 95 % certain; bytes: 60, lines: 2 (LF 0, CR LF 2, CR 0), longest line: 43 "
                  "units, line 1\n" +
                  path("mixed.txt") +
                  ": UTF-8 with a byte order mark, 100 % certain; bytes: 14, lines: 4 (LF 1, CR LF 1, CR "
                  "1), longest line: 5 units, line 4; does not fit in 1 places, the first at offset 13\n");
    EXPECT_EQ(corehost({"text", "info", path("mixed.txt")}).code, ExitCode::malformed);
    EXPECT_EQ(
        corehost({"--json", "text", "info"}, "plain\n").out,
        R"({"file":"-","encoding":"UTF-8","certainty":100,"mark":false,"bytes":6,"units":6,"lines":1,"lf":1,)"
        R"("crlf":0,"cr":0,"longest":5,"longestLine":1,"faults":0})"
        "\n");
    EXPECT_NE(corehost({"text", "encodings"}).out.find("\nwindows-1251 "), std::string::npos);
}

TEST_F(Text, ConvertWritesTheWholeNewTextOrKeepsTheOldOne) {
    static_cast<void>(file("old.txt", in(u"IBM866", kText)));
    static_cast<void>(file("new.txt", "before"));
    EXPECT_EQ(
        corehost({"text", "convert", "--to", "koi8-r", "--eol", "lf", "-o", path("new.txt"), path("old.txt")})
            .code,
        ExitCode::done);
    EXPECT_EQ(text_of(path("new.txt")),
              in(u"KOI8-R", u"Съешь же ещё этих мягких французских булок,\nда выпей чаю.\n"));
    // A failure in the middle of a long text leaves the file that is converted in place.
    const std::string longText = std::string(300'000, 'x') + "€";
    static_cast<void>(file("long.txt", longText));
    const Answer failed =
        corehost({"text", "convert", "-i", "--to", "koi8-r", path("old.txt"), path("long.txt")});
    EXPECT_EQ(failed.code, ExitCode::malformed);
    EXPECT_NE(failed.err.find("it has no U+20AC, which would stand at byte 300000"), std::string::npos)
        << failed.err;
    EXPECT_EQ(text_of(path("long.txt")), longText);
    EXPECT_EQ(text_of(path("old.txt")), in(u"KOI8-R", kText)) << "the file before it is done";
    EXPECT_EQ(corehost({"text", "convert", "--to", "koi8-r", "--on-error", "escape"}, "5 €").out,
              "5 \\u20AC");
    EXPECT_EQ(corehost({"text", "convert", "--to", "utf-16le", "--mark"}, "a").out, std::string("\xFF\xFE"
                                                                                                "a\0",
                                                                                                4));
    EXPECT_EQ(corehost({"text", "convert", path("old.txt"), path("new.txt")}).code, ExitCode::usage);
    EXPECT_EQ(corehost({"text", "convert", "--to", "klingon"}, "a").code, ExitCode::malformed);
    EXPECT_EQ(corehost({"text", "convert", "--eol", "lfcr"}, "a").code, ExitCode::usage);
    static_cast<void>(file("cyrillic.script", in(u"windows-1251", u"Сообщить(\"да\");")));
    EXPECT_EQ(corehost({"run", "--encoding", "cp1251", path("cyrillic.script")}).out, "да\n");
}

TEST_F(Text, ThePageShowsWhatHappens) {
    if (!core::test::replaces_open_files(path("probe")))
        GTEST_SKIP() << "a file that is open cannot be replaced here, which the page does";
    const std::string page = text_of(std::filesystem::path(CORE_SOURCE_DIR) / "docs" / "texts.md");
    const auto block = [&](const std::string& begin) {
        const std::size_t at = page.find(begin);
        return at == std::string::npos ? std::string() : page.substr(at, page.find("\n```", at) - at);
    };
    {
        const HostProcess process;
        core::script::Session session;
        EXPECT_EQ(session.run(block("File = GetTempFileName")),
                  block("Съешь же ещё этих мягких французских булок, —"));
        const auto from = core::open_memory_file(core::create_memory_data());
        const std::string bytes = in(u"windows-1251", kText);
        core::write_all_at(*from, 0, std::as_bytes(std::span(bytes)));
        const auto to = core::open_memory_file(core::create_memory_data());
        EXPECT_EQ(to_plain_text(from, to), u"windows-1251");
        const auto plain = core::read_whole(*to);
        EXPECT_EQ(core::decode_text(plain, {}),
                  u"Съешь же ещё этих мягких французских булок,\nда выпей чаю.\n");
    }
    static_cast<void>(file("old.txt", in(u"IBM866", kText)));
    const std::string shown = block("$ corehost text info old.txt");
    EXPECT_EQ("$ corehost text info " +
                  corehost({"text", "info", path("old.txt")}).out.substr(path("").size()),
              "$ corehost text info " +
                  shown.substr(shown.find('\n') + 1, shown.rfind('$') - shown.find('\n') - 1));
}

} // namespace
} // namespace host
