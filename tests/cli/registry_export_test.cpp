// zel reg export and import: a hive as text and back, the same text again.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/support.h"

using zeltest::ProgramResult;

namespace {

// Text passes the ANSI code page: a Korean one keeps Hangul.
ProgramResult Zel(const std::vector<std::string>& args) {
    return zeltest::RunProgram(ZEL_TEST_ZEL_PATH, args, {{"ZEL_ACP", "949"}}, {});
}

TEST(RegExport, AKeyComesBackFromItsTextAndGivesTheSameTextAgain) {
    zeltest::TempDir dir;
    const std::string key = "HKCU\\Software\\ZelExport";
    ASSERT_EQ(Zel({"reg", "set", key, "Quote \"and\" \\", "sz", "line\tend \"q\" \xea\xb0\x80"}).status, 0);
    ASSERT_EQ(Zel({"reg", "set", key + "\\Deep\\Er", "", "dword", "0xfffffffe"}).status, 0);
    ASSERT_EQ(Zel({"reg", "set", key + "\\Deep", "Blob", "binary", "00 0a ff"}).status, 0);
    ASSERT_EQ(Zel({"reg", "set", key + "\\Empty", "gone", "sz", "x"}).status, 0);
    ASSERT_EQ(Zel({"reg", "delete", key + "\\Empty", "gone"}).status, 0);

    ProgramResult exported = Zel({"reg", "export", key, "-"});
    ASSERT_EQ(exported.status, 0) << exported.err;
    EXPECT_EQ(exported.out,
              "; zel registry export 1\n"
              "[HKCU\\Software\\ZelExport]\n"
              "\"Quote \\\"and\\\" \\\\\"=sz:\"line\\x09end \\\"q\\\" \xea\xb0\x80\"\n"
              "[HKCU\\Software\\ZelExport\\Deep]\n"
              "\"Blob\"=hex(3):00 0a ff\n"
              "[HKCU\\Software\\ZelExport\\Deep\\Er]\n"
              "@=dword:0xfffffffe\n"
              "[HKCU\\Software\\ZelExport\\Empty]\n");

    const std::string file = dir.file("hive.txt");
    zeltest::WriteFile(file, exported.out);
    ASSERT_EQ(Zel({"reg", "delete", key}).status, 0);
    ProgramResult imported = Zel({"reg", "import", file});
    EXPECT_EQ(imported.status, 0) << imported.err;
    EXPECT_EQ(Zel({"reg", "export", key, "-"}).out, exported.out);
}

TEST(RegExport, ImportSaysWhichLinesItCouldNotTake) {
    zeltest::TempDir dir;
    const std::string file = dir.file("broken.txt");
    zeltest::WriteFile(file,
                       "; zel registry export 1\n[HKCU\\Software\\ZelBroken]\n\"a\"=sz:\"unended\n"
                       "\"b\"=dword:0x1\n[HKXX\\Nowhere]\n\"c\"=dword:0x2\n");
    ProgramResult imported = Zel({"reg", "import", file});
    EXPECT_EQ(imported.status, 1);
    EXPECT_NE(imported.err.find(file + ":3: not a value"), std::string::npos) << imported.err;
    EXPECT_NE(imported.err.find(file + ":5: a key begins with"), std::string::npos) << imported.err;
    EXPECT_EQ(Zel({"reg", "get", "HKCU\\Software\\ZelBroken", "b"}).out, "dword 1 (0x1)\n");

    zeltest::WriteFile(file, "[HKCU\\Software\\ZelBroken]\n");
    EXPECT_NE(Zel({"reg", "import", file}).err.find("not a registry export"), std::string::npos);
}

}  // namespace
