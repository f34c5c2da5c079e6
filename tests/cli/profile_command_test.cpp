// zel profile on 8-bit INI files in a temporary directory and on the private win.ini.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/support.h"

using zeltest::ProgramResult;

namespace {

ProgramResult Zel(const std::vector<std::string>& args, const std::string& config = {}) {
    std::map<std::string, std::optional<std::string>> env;
    if (!config.empty()) env["XDG_CONFIG_HOME"] = config;
    return zeltest::RunProgram(ZEL_TEST_ZEL_PATH, args, env, {});
}

TEST(ProfileCommand, SetGetListAndDelete) {
    zeltest::TempDir dir;
    const std::string file = dir.file("app.ini");
    zeltest::WriteFile(file, "; kept\n[View]\nzoom=100\n");
    ASSERT_EQ(Zel({"profile", "set", file, "View", "Mode", "\"wide\""}).status, 0);
    ASSERT_EQ(Zel({"profile", "set", file, "Files", "last", "a.txt"}).status, 0);
    EXPECT_EQ(Zel({"profile", "get", file, "view", "MODE"}).out, "wide\n");
    EXPECT_EQ(Zel({"profile", "get", file, "view", "size", "12"}).out, "12\n");
    EXPECT_EQ(Zel({"profile", "sections", file}).out, "View\nFiles\n");
    EXPECT_EQ(Zel({"profile", "keys", file, "view"}).out, "zoom\nMode\n");

    ProgramResult missing = Zel({"profile", "get", file, "view", "size"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, "zel profile: no key 'size' in [view]\n");

    EXPECT_EQ(Zel({"profile", "delete", file, "view", "zoom"}).status, 0);
    EXPECT_EQ(Zel({"profile", "delete", file, "files"}).status, 0);
    EXPECT_EQ(zeltest::ReadFile(file), "; kept\n[View]\nMode=\"wide\"\n");

    EXPECT_EQ(Zel({"profile", "set", dir.file("no/such.ini"), "a", "b", "c"}).status, 1);
    EXPECT_EQ(Zel({"profile", "get", file}).status, 2);
}

TEST(ProfileCommand, WinIniLiesInTheWindowsDirectory) {
    zeltest::TempDir dir;
    ASSERT_EQ(Zel({"profile", "set", "WIN.INI", "fonts", "size", "9"}, dir.path()).status, 0);
    EXPECT_EQ(Zel({"profile", "get", "", "Fonts", "Size"}, dir.path()).out, "9\n");
    EXPECT_EQ(zeltest::ReadFile(dir.file("Morvalis/Windows/win.ini")), "[fonts]\r\nsize=9\r\n");
}

}  // namespace
