// SPDX-License-Identifier: Apache-2.0
// The functions of texts, regular expressions and numbers: every edge of a position, characters outside the
// plane, exact results, and refusals that say what was wrong.
#include "tests/script/script_fixture.h"

#include <random>

namespace core::script {
namespace {

using LibraryTest = ScriptTest;

TEST_F(LibraryTest, TextsAreSearchedCutAndJoined) {
    check({
        {"StrFind(\"abcabc\", \"bc\"); StrFind(\"abcabc\", \"bc\", 3); СтрНайти(\"abc\", \"x\"); "
         "StrFind(\"abc\", "
         "\"a\", 0); StrFind(\"abc\", \"c\", 99)",
         "2\n5\n0\n1\n0"},
        {"StrOccurrenceCount(\"aaaa\", \"aa\"); StrReplace(\"a.b.c\", \".\", \"--\"); СтрЗаменить(\"aaa\", "
         "\"aa\", \"\")",
         "2\n\"a--b--c\"\n\"a\""},
        {"StrStartsWith(\"abc\", \"ab\"); StrEndsWith(\"abc\", \"ab\"); СтрНачинаетсяС(\"\", \"\")",
         "True\nFalse\nTrue"},
        {"StrSplit(\"a, b,,c\", \",\"); StrSplit(\"a,,c\", \",\", True); StrSplit(\"\", \",\"); "
         "StrSplit(\"a--b-\", "
         "\"--\")",
         "Array [\"a\", \" b\", \"\", \"c\"]\nArray [\"a\", \"c\"]\nArray [\"\"]\nArray [\"a\", \"b-\"]"},
        {"StrConcat(StrSplit(\"1 2 3\", \" \"), \"+\"); StrConcat(New Array); a = New Array; a.Add(1.5); "
         "a.Add(True); СтрСоединить(a, \"; \")",
         "\"1+2+3\"\n\"\"\n\"1.5; Yes\""},
        {"Right(\"abc\", 2); Прав(\"abc\", 9); Right(\"abc\", -1); TrimL(\"  a \") + \"|\"; СокрП(\"  a \") "
         "+ \"|\"",
         "\"bc\"\n\"abc\"\n\"\"\n\"a |\"\n\"  a|\""},
        {"CharCode(\"Ж\"); CharCode(\"a𝄞\", 2); Char(119070) = \"𝄞\"; Символ(1046); StrLen(Char(119070))",
         "1046\n119070\nTrue\n\"Ж\"\n2"},
        {"StrTemplate(\"%1 of %2, 100%%, %x %\", 1.5, \"a\"); СтрШаблон(\"%9%1\", \"%2\", \"no\")",
         "\"1.5 of a, 100%, %x %\"\n\"%2\""},
        {"StrSplit(\"a\", \"\")", "! 1:1 StrSplit: the parameter Separator does not take this value: \"\"."},
        {"CharCode(\"\")", "! 1:1 CharCode: the parameter Position does not take this value: Undefined."},
        {"Char(1114112)", "! 1:1 Char: the parameter Code does not take this value: 1114112."},
        {"StrReplace(1, 2, 3)",
         "! 1:1 StrReplace: the parameter Text does not take a value of the type Number: 1."},
    });
}

TEST_F(LibraryTest, SplittingAndJoiningAreInverse) {
    std::mt19937 random(1);
    Session session;
    for (int i = 0; i < 300; ++i) {
        std::string text;
        for (auto n = random() % 12; n > 0; --n)
            text += "ab,;"[random() % 4];
        const std::string separator = i % 2 == 0 ? "," : "ab";
        EXPECT_EQ(session.run("StrConcat(StrSplit(\"" + text + "\", \"" + separator + "\"), \"" + separator +
                              "\") = \"" + text + "\""),
                  "True")
            << text;
    }
}

TEST_F(LibraryTest, RegularExpressions) {
    check({
        {"RegexTest(\"Order 42\", \"\\d+\"); RegexTest(\"x\", \"^\\d\"); РегПроверить(\"ЁЖ\", \"(?i)ёж\")",
         "True\nFalse\nTrue"},
        {"M = RegexFind(\"on 2024-02-29\", \"(\\d{4})-(\\d\\d)(x)?\"); M.Text; M.Position; M.Группы; M",
         "\"2024-02\"\n4\nFixedArray [\"2024\", \"02\", Undefined]\n"
         "TextMatch {Text: \"2024-02\", Position: 4, Groups: FixedArray [\"2024\", \"02\", Undefined]}"},
        {"RegexFind(\"abc\", \"x\"); RegexFind(\"aXa\", \"a\", 2).Position; RegexFind(\"\", \"a*\").Position",
         "Undefined\n3\n1"},
        {"For Each M In RegexFindAll(\"a1b22\", \"[a-z](\\d+)\") Do Print(M.Groups[0]) EndDo", "1\n22"},
        {"RegexReplace(\"John Smith\", \"(\\w+) (\\w+)\", \"$2 $1\"); РегЗаменить(\"aaa\", \"a\", \"\")",
         "\"Smith John\"\n\"\""},
        {"RegexSplit(\"a1b22c\", \"\\d+\"); RegexSplit(\"abc\", \"x*\"); RegexSplit(\"\", \",\")",
         "Array [\"a\", \"b\", \"c\"]\nArray [\"abc\"]\nArray [\"\"]"},
        {"RegexTest(\"a\", \"(a\")", "! 1:1 The regular expression (a is malformed in line 1, column 3."},
        {"RegexReplace(\"a\", \"a\", \"$5\")",
         "! 1:1 The replacement names a group that the regular expression does not have."},
    });
    const std::string slow = Session().run("s = \"\"; For i = 1 To 50 Do s = s + \"a\" EndDo; RegexTest(s, "
                                           "\"(a|aa)+$b\")");
    EXPECT_TRUE(slow == "False" || slow.find("takes too long") != std::string::npos) << slow;
}

TEST_F(LibraryTest, NumbersStayExact) {
    check({
        {"Min(3, 1, 2); Max(\"b\", \"a\"); Мин('20240102', '20240101'); Max(1); Max(False, True)",
         "1\n\"b\"\n'20240101000000'\n1\nTrue"},
        {"Abs(-1.5); Модуль(2); Int(-1.5); Цел(1.9); Floor(-1.5); Ceil(-1.5); Ceil(1.2); Floor(7)",
         "1.5\n2\n-1\n1\n-2\n-1\n2\n7"},
        {"Pow(2, 100); Степень(1.1, 3); Pow(2, -2); Pow(5, 0); Pow(-2, 3)",
         "1267650600228229401496703205376\n1.331\n0.25\n1\n-8"},
        {"Min(1, \"a\")", "! 1:1 Min: the parameter Value2 does not take a value of the type String: \"a\"."},
        {"Pow(2, 0.5)", "! 1:1 Pow: the parameter Exponent does not take this value: 0.5."},
        {"Pow(99, 999999)", "! 1:1 Pow: the parameter Exponent does not take this value: 999999."},
        {"Pow(0, -1)", "! 1:1 Division by zero."},
        {"Abs(\"x1\")", "! 1:1 Abs: \"x1\" is not a number (parameter Number)."},
        {"Date(\"soon\")", "! 1:1 Date: \"soon\" is not a date (parameter Value)."},
        {"Date(New Map)", "! 1:1 Date: the parameter Value does not take a value of the type Map: Map {}."},
    });
}

} // namespace
} // namespace core::script
