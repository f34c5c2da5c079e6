// zel ini as a user runs it: a file made, changed and listed, and INI text in and out of UTF-8.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/support.h"

using zeltest::ProgramResult;

namespace {

ProgramResult Zel(const std::vector<std::string>& args) { return zeltest::RunProgram(ZEL_TEST_ZEL_PATH, args, {}, {}); }

TEST(IniCommand, AddSetGetListAndRemove) {
    zeltest::TempDir dir;
    const std::string file = dir.file("a.ini");
    ASSERT_EQ(Zel({"ini", "add", file, "General", "Name", "보고서"}).status, 0);
    ASSERT_EQ(Zel({"ini", "add", file, "[General]", "Count", "3"}).status, 0);
    ASSERT_EQ(Zel({"ini", "add", file, "Empty"}).status, 0);
    EXPECT_EQ(Zel({"ini", "get", file, "General", "Name"}).out, "보고서\n");
    EXPECT_EQ(Zel({"ini", "set", file, "General", "Count", "4"}).status, 0);
    EXPECT_EQ(Zel({"ini", "list", file}).out, "[General]\n  Name=보고서\n  Count=4\n[Empty]\n");
    EXPECT_EQ(Zel({"ini", "list", file, "General"}).out, "  Name=보고서\n  Count=4\n");
    EXPECT_EQ(zeltest::ReadFile(file).substr(0, 4), std::string("\xFF\xFE[\0", 4));

    ProgramResult missing = Zel({"ini", "set", file, "General", "Nothing", "x"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.err.find("no entry 'Nothing'"), std::string::npos);
    EXPECT_EQ(Zel({"ini", "add", file, "General", "Name", "again"}).status, 1);
    EXPECT_EQ(Zel({"ini", "get", dir.file("none.ini"), "General", "Name"}).status, 1);

    EXPECT_EQ(Zel({"ini", "remove", file, "General", "Name"}).status, 0);
    EXPECT_EQ(Zel({"ini", "remove", file, "Empty"}).status, 0);
    EXPECT_EQ(Zel({"ini", "list", file}).out, "[General]\n  Count=4\n");
    EXPECT_EQ(Zel({"ini", "frobnicate"}).status, 2);
}

TEST(IniCommand, ImportAndExportThroughTheModel) {
    zeltest::TempDir dir;
    zeltest::WriteFile(dir.file("in.txt"), "\xEF\xBB\xBF; comment\n[한국]\r\nkey = 値 \r\n\r\n[B]\r\n");
    ASSERT_EQ(Zel({"ini", "import", dir.file("in.txt"), dir.file("x.ini")}).status, 0);
    EXPECT_EQ(Zel({"ini", "get", dir.file("x.ini"), "한국", "key"}).out, "値 \n");
    ASSERT_EQ(Zel({"ini", "export", dir.file("x.ini"), dir.file("out.txt")}).status, 0);
    EXPECT_EQ(zeltest::ReadFile(dir.file("out.txt")), "[한국]\r\nkey=値 \r\n\r\n[B]\r\n");

    ProgramResult notIni = Zel({"ini", "list", dir.file("in.txt")});
    EXPECT_EQ(notIni.status, 1);
    EXPECT_NE(notIni.err.find("byte order mark"), std::string::npos);
}

}  // namespace
