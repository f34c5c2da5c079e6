// zel reg on the test process's private registry: values in and out, and a subtree through a file.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/support.h"

using zeltest::ProgramResult;

namespace {

ProgramResult Zel(const std::vector<std::string>& args) { return zeltest::RunProgram(ZEL_TEST_ZEL_PATH, args, {}, {}); }

TEST(RegCommand, SetGetListAndDeleteValues) {
    const std::string key = "HKCU\\Software\\ZelCli\\Values";
    ASSERT_EQ(Zel({"reg", "set", key, "Name", "sz", "Report"}).status, 0);
    ASSERT_EQ(Zel({"reg", "set", key, "Count", "dword", "0x10"}).status, 0);
    ASSERT_EQ(Zel({"reg", "set", key + "\\Sub", "Mask", "binary", "01ff 20"}).status, 0);
    EXPECT_EQ(Zel({"reg", "get", key, "Name"}).out, "sz \"Report\"\n");
    EXPECT_EQ(Zel({"reg", "get", key, "Count"}).out, "dword 16 (0x10)\n");
    EXPECT_EQ(Zel({"reg", "list", key}).out, "Sub\\\nName = sz \"Report\"\nCount = dword 16 (0x10)\n");
    EXPECT_EQ(Zel({"reg", "get", key + "\\Sub", "Mask"}).out, "binary 01 ff 20\n");

    EXPECT_EQ(Zel({"reg", "set", key, "Bad", "dword", "12x"}).status, 2);
    EXPECT_EQ(Zel({"reg", "set", key, "Bad", "qword", "1"}).status, 2);
    EXPECT_EQ(Zel({"reg", "delete", key, "Name"}).status, 0);
    ProgramResult gone = Zel({"reg", "get", key, "Name"});
    EXPECT_EQ(gone.status, 1);
    EXPECT_NE(gone.err.find("no value 'Name'"), std::string::npos);
    EXPECT_EQ(Zel({"reg", "delete", key}).status, 0);
    EXPECT_EQ(Zel({"reg", "list", key}).status, 1);
    EXPECT_EQ(Zel({"reg", "list", "HKXX\\a"}).status, 1);
}

TEST(RegCommand, SaveDeleteAndLoadBringTheSubtreeBack) {
    zeltest::TempDir dir;
    const std::string key = "HKCU\\Software\\ZelCli\\Tree";
    ASSERT_EQ(Zel({"reg", "set", key, "Title", "sz", "Top"}).status, 0);
    ASSERT_EQ(Zel({"reg", "set", key + "\\A\\B", "Depth", "dword", "2"}).status, 0);
    ASSERT_EQ(Zel({"reg", "set", key + "\\A\\B", "Blob", "binary", "00010203"}).status, 0);
    const std::string file = dir.file("tree.reg");
    ASSERT_EQ(Zel({"reg", "save", key, file}).status, 0);
    EXPECT_EQ(Zel({"reg", "dump", file}).out,
              "key: Software\\ZelCli\\Tree\n"
              "[Tree\\A\\B] 2 values\n  Depth = dword 2 (0x2)\n  Blob = binary 00 01 02 03\n"
              "[Tree] 1 value\n  Title = sz \"Top\"\n");

    const std::string before = Zel({"reg", "list", key + "\\A\\B"}).out;
    ASSERT_EQ(Zel({"reg", "delete", key}).status, 0);
    ASSERT_EQ(Zel({"reg", "list", key}).status, 1);
    ProgramResult loaded = Zel({"reg", "load", file});
    ASSERT_EQ(loaded.status, 0) << loaded.err;
    EXPECT_EQ(loaded.out, "loaded HKCU\\Software\\ZelCli\\Tree\n");
    EXPECT_EQ(Zel({"reg", "list", key + "\\A\\B"}).out, before);
    EXPECT_EQ(Zel({"reg", "get", key, "Title"}).out, "sz \"Top\"\n");
}

TEST(RegCommand, BrokenFilesAndKeysOutsideTheFileFormAreRefused) {
    zeltest::TempDir dir;
    const std::string key = "HKCU\\Software\\ZelCli\\Broken";
    ASSERT_EQ(Zel({"reg", "set", key, "N", "dword", "5"}).status, 0);
    const std::string file = dir.file("whole.reg");
    ASSERT_EQ(Zel({"reg", "save", key, file}).status, 0);
    std::string bytes = zeltest::ReadFile(file);
    zeltest::WriteFile(dir.file("cut.reg"), bytes.substr(0, bytes.size() - 2));
    ProgramResult cut = Zel({"reg", "dump", dir.file("cut.reg")});
    EXPECT_EQ(cut.status, 1);
    EXPECT_NE(cut.err.find("cut short in the data of a value"), std::string::npos) << cut.err;
    EXPECT_EQ(Zel({"reg", "load", dir.file("cut.reg")}).status, 1);

    zeltest::WriteFile(dir.file("long.reg"), std::string("\x04\x01\x00\x00", 4) + std::string(260, 'a'));
    ProgramResult tooLong = Zel({"reg", "dump", dir.file("long.reg")});
    EXPECT_NE(tooLong.err.find("at most 259"), std::string::npos) << tooLong.err;

    EXPECT_NE(Zel({"reg", "save", "HKLM\\Software\\X", file}).err.find("below HKCU"), std::string::npos);
    EXPECT_NE(Zel({"reg", "save", "HKCU\\Software", file}).err.find("directly below the hive"), std::string::npos);
}

}  // namespace

// Only volatile keys may stand below a volatile one, as below the user locale key that every start
// seeds; the refusal names the system's reason.
TEST(RegCommand, KeysBelowAVolatileKeyAreMadeVolatileOrRefusedWithTheReason) {
    const std::string locales = "HKCU\\Software\\Morvalis\\Global Settings\\User Locales";
    ASSERT_EQ(Zel({"reg", "set", "--volatile", locales + "\\Parent", "x", "sz", "1"}).status, 0);
    ProgramResult refused = Zel({"reg", "set", locales + "\\Parent\\zel", "LCID", "dword", "0x412"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.err.find(": Cannot create a stable subkey under a volatile parent key."), std::string::npos)
        << refused.err;
    ASSERT_EQ(Zel({"reg", "set", "--volatile", locales + "\\Parent\\zel", "LCID", "dword", "0x412"}).status, 0);
    EXPECT_EQ(Zel({"reg", "get", locales + "\\Parent\\zel", "LCID"}).out, "dword 1042 (0x412)\n");
}
