// The zel command, run as a user runs it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/support.h"

using zeltest::ProgramResult;
using zeltest::RunProgram;

namespace {

ProgramResult Zel(const std::vector<std::string>& args, const std::string& input = {}) {
    return RunProgram(ZEL_TEST_ZEL_PATH, args, {}, input);
}

TEST(Command, HelpListsTheSubcommandsAndEachHasItsOwn) {
    ProgramResult help = Zel({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* name : {"demo", "modules", "utf", "base64", "hex", "kana", "width", "bidi", "shape", "path", "sys", "conv", "codetables", "kchar", "sortkey", "jamo", "pua", "reg", "ini", "profile", "paths", "error", "locale", "defined"}) {
        EXPECT_NE(help.out.find(std::string("  ") + name + " "), std::string::npos) << name;
        ProgramResult own = Zel({name, "--help"});
        EXPECT_EQ(own.status, 0) << name;
        EXPECT_EQ(own.out.rfind("Usage: zel ", 0), 0u) << name;
    }
    ProgramResult unknown = Zel({"frobnicate"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_NE(unknown.err.find("unknown command"), std::string::npos);
}

TEST(Command, UtfConvertsFilesAndStandardInputBothWays) {
    zeltest::TempDir dir;
    const std::string text = "한국어 日本語 ABC \xF0\x9F\x98\x80";
    zeltest::WriteFile(dir.file("in.txt"), text);
    ProgramResult wide = Zel({"utf", "--from", "utf8", "--to", "utf16", dir.file("in.txt")});
    ASSERT_EQ(wide.status, 0) << wide.err;
    EXPECT_EQ(wide.out.size(), 14u * 2);
    ProgramResult values = Zel({"utf", "--from", "utf16", "--to", "utf32"}, wide.out);
    ASSERT_EQ(values.status, 0);
    EXPECT_EQ(values.out.size(), 13u * 4);
    ProgramResult back = Zel({"utf", "--from", "utf32", "--to", "utf8", "-"}, values.out);
    EXPECT_EQ(back.out, text);

    // Larger than one piece of the converter's target: resumed to the same text.
    std::string big;
    while (big.size() < 300000) big += text;
    ProgramResult bigWide = Zel({"utf", "--from", "utf8", "--to", "utf16"}, big);
    EXPECT_EQ(Zel({"utf", "--from", "utf16", "--to", "utf8"}, bigWide.out).out, big);
}

TEST(Command, UtfReportsWhereAndWhyItStopped) {
    ProgramResult illegal = Zel({"utf", "--from", "utf8", "--to", "utf16"}, "ab\xC0\x80z");
    EXPECT_EQ(illegal.status, 1);
    EXPECT_EQ(illegal.out, std::string("a\0b\0", 4));
    EXPECT_EQ(illegal.err, "zel utf: ZelConvSourceIllegal at byte offset 2\n");
    ProgramResult cut = Zel({"utf", "--from", "utf8", "--to", "utf32"}, "a\xE2\x82");
    EXPECT_EQ(cut.err, "zel utf: ZelConvSourceExhausted at byte offset 1\n");
    const std::string lone("a\0\0\xDC", 4);
    EXPECT_EQ(Zel({"utf", "--from", "utf16", "--to", "utf8"}, lone).err,
              "zel utf: ZelConvSourceIllegal at byte offset 2\n");
    ProgramResult lenient = Zel({"utf", "--from", "utf16", "--to", "utf8", "--lenient"}, lone);
    EXPECT_EQ(lenient.status, 0);
    EXPECT_EQ(lenient.out, "a\xED\xB0\x80");
    EXPECT_EQ(Zel({"utf", "--from", "utf16", "--to", "utf8"}, "abc").status, 1);  // half a unit
    EXPECT_EQ(Zel({"utf", "--from", "utf8", "--to", "utf8"}, "abc").status, 2);
}

TEST(Command, Base64AndHexForms) {
    EXPECT_EQ(Zel({"base64", "encode", "Man"}).out, "TWFu\n");
    EXPECT_EQ(Zel({"base64", "decode"}, "TW\nFu\n").out, "Man");
    ProgramResult bad = Zel({"base64", "decode", "TW*u"});
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(Zel({"hex", "to", "한국"}).out, "U+d55cad6d\n");
    EXPECT_EQ(Zel({"hex", "from", "U+d55cad6d"}).out, "한국\n");
    EXPECT_EQ(Zel({"hex", "from", "u+0041"}).status, 1);
    EXPECT_EQ(Zel({"hex", "unescape"}, "a/u0041b /U0042\n").out, "aAb B\n");
}

TEST(Command, KanaAndWidth) {
    EXPECT_EQ(Zel({"kana", "full", "ｶﾞｷﾞｸﾞﾊﾟ"}).out, "ガギグパ\n");
    EXPECT_EQ(Zel({"kana", "hiragana", "ｶﾞ", "カタカナ"}).out, "が かたかな\n");
    EXPECT_EQ(Zel({"kana", "katakana"}, "ひらがな\n").out, "ヒラガナ\n");
    EXPECT_EQ(Zel({"kana", "half", "ガギぱ"}).out, "ｶﾞｷﾞﾊﾟ\n");
    EXPECT_EQ(Zel({"width", "full", "Zel 70"}).out, "Ｚｅｌ　７０\n");
    EXPECT_EQ(Zel({"width", "half", "Ｚｅｌ　７０ ｱ"}).out, "Zel 70 ｱ\n");
    EXPECT_EQ(Zel({"kana", "sideways", "x"}).status, 2);
}

TEST(Command, BidiAndShape) {
    ProgramResult line = Zel({"bidi", "abc مرحبا 123"});
    ASSERT_EQ(line.status, 0) << line.err;
    EXPECT_EQ(line.out, "abc ابحرم 123\n0000111110000\n");
    ProgramResult rtl = Zel({"bidi", "--rtl", "--mirror"}, "(abc)\n");
    EXPECT_EQ(rtl.out, "(abc)\n12221\n");
    EXPECT_EQ(Zel({"bidi", "--rtl"}, "(abc)").out, ")abc(\n12221\n");
    EXPECT_EQ(Zel({"shape", "--codes", "لا"}).out, "FEFB\n");
    EXPECT_EQ(Zel({"shape", "--codes", "سلام"}).out, "FEE1 FEFC FEB3\n");
    EXPECT_EQ(Zel({"shape", "plain text"}).out, "plain text\n");
    EXPECT_EQ(Zel({"shape", "--sideways", "x"}).status, 2);
}

TEST(Command, DemoRunsThroughEveryService) {
    ProgramResult demo = Zel({"demo"});
    ASSERT_EQ(demo.status, 0) << demo.err;
    for (const char* section : {"== Module frame", "== Bounded strings", "== UTF converters",
                                "== Base64 and hexadecimal forms", "== Kana and width",
                                "== Bidirectional text and Arabic shaping"})
        EXPECT_NE(demo.out.find(section), std::string::npos) << section;
    EXPECT_NE(demo.out.find("ガギグパ"), std::string::npos);
}

TEST(Command, PathExpandsCollapsesAndMakesDirectoriesOnADrive) {
    zeltest::TempDir dir;
    auto zel = [&](const std::vector<std::string>& args) {
        return RunProgram(ZEL_TEST_ZEL_PATH, args, {{"ZEL_DRIVE_Q", dir.path()}});
    };
    EXPECT_EQ("q:\\data\\a.txt\n", zel({"path", "-D", "Data=q:\\data", "abs", "${DATA}\\a.txt"}).out);
    EXPECT_EQ("${App}pple\\x\n", zel({"path", "-D", "App=c:\\a", "rel", "c:\\apple\\x"}).out);
    // -D takes the place of the default Temp; register refuses a second one in any case.
    const std::string registered = zel({"path", "-D", "Temp=\\t", "register", "TEMP", "\\u"}).out;
    EXPECT_EQ(registered.rfind("0\n", 0), 0u) << registered;
    EXPECT_NE(registered.find("\nTemp=\\t\n"), std::string::npos) << registered;
    EXPECT_EQ("c:\\aa\\...\\file.txt\n", zel({"path", "abbrev", "c:\\aa\\bb\\cc\\dd\\file.txt", "20"}).out);
    ProgramResult made = zel({"path", "create", "q:\\x\\y\\"});
    EXPECT_EQ(0, made.status) << made.err;
    EXPECT_EQ("q:\\x\\y\\\n", made.out);
    EXPECT_EQ(0, zeltest::RunProgram("/bin/test", {"-d", dir.file("x/y")}).status);
}

TEST(Command, SysTellsVersionConstantsArgumentsAndArithmetic) {
    ProgramResult version = RunProgram(ZEL_TEST_ZEL_PATH, {"sys", "version"}, {{"ZEL_OS_VERSION", "2.5.1"}});
    EXPECT_EQ("version 6 Windows_XP\n", version.out);
    EXPECT_EQ("os 1\nendian L\napplication-bit 4\nwow64 0\n", Zel({"sys", "constants"}).out);
    ProgramResult args = RunProgram(ZEL_TEST_ZEL_PATH, {"sys", "args", "한글 \"x\""}, {{"ZEL_OS_VERSION", "1.4.0"}, {"ZEL_ACP", "949"}});
    EXPECT_NE(std::string::npos, args.out.find("arg 3 한글 \"x\"\n")) << args.out;
    EXPECT_EQ("-3\n", Zel({"sys", "muldiv", "7", "1", "-2"}).out);
    EXPECT_EQ(2, Zel({"sys", "nonsense"}).status);
}

TEST(Command, ConvRoundTripsEachTableCodePageAndAgreesWithIconv) {
    struct Sample {
        const char* codePage;
        const char* iconvName;
        std::string text;
    };
    const Sample samples[] = {{"949", "CP949", "한국어 텍스트, 똠방각하 ABC\n"},
                              {"1361", "JOHAB", "한국어 텍스트 ABC\n"},
                              {"932", "CP932", "日本語のテキスト ｶﾀｶﾅ ABC\n"},
                              {"936", "CP936", "简体中文文本 ABC\n"},
                              {"950", "CP950", "繁體中文文本 ABC\n"}};
    for (const Sample& sample : samples) {
        ProgramResult ours = Zel({"conv", "-f", "utf-8", "-t", sample.codePage}, sample.text);
        ASSERT_EQ(ours.status, 0) << ours.err;
        ProgramResult peer = RunProgram("/usr/bin/iconv", {"-f", "UTF-8", "-t", sample.iconvName}, {}, sample.text);
        ASSERT_EQ(peer.status, 0) << sample.iconvName;
        EXPECT_EQ(peer.out, ours.out) << sample.codePage;
        ProgramResult back = Zel({"conv", "-f", sample.codePage, "-t", "utf-8"}, ours.out);
        EXPECT_EQ(sample.text, back.out) << sample.codePage;
    }
    ProgramResult tables = Zel({"codetables"});
    EXPECT_NE(tables.out.find("group 949 ready"), std::string::npos) << tables.out;
    EXPECT_NE(tables.out.find("group 9566 failed or missing"), std::string::npos) << tables.out;
    EXPECT_EQ(2, Zel({"conv", "-f", "949"}).status);
}

}  // namespace
