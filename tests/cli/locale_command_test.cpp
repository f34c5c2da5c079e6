// zel paths, error, locale and defined: what the library chose at its start, as a user sees it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/resource_fixtures.h"
#include "support/support.h"

using zeltest::ProgramResult;
using zeltest::RunProgram;

namespace {

// zel in a language of the system's: the suite's own setting for all users is taken away first,
// so that ZEL_LCID decides.
ProgramResult ZelIn(const char* lcid, const std::vector<std::string>& args) {
    zeltest::DeleteRegistryValue(HKEY_CURRENT_USER, "Software\\Morvalis\\Global Settings\\User Locales", "LCID");
    return RunProgram(ZEL_TEST_ZEL_PATH, args, {{"ZEL_LCID", lcid}});
}

TEST(LocaleCommand, ErrorTextsComeInTheUsersLanguage) {
    struct Case {
        const char* lcid;
        const char* text;
        const char* extension;
    };
    for (const Case& c : {Case{"0x412", "메모리가 부족하여 작업을 완료할 수 없습니다.\n", "KOR"},
                          Case{"0x409", "There is not enough memory to complete the operation.\n", "ENU"},
                          Case{"0x411", "メモリが不足しているため、操作を完了できません。\n", "JPN"}}) {
        ProgramResult error = ZelIn(c.lcid, {"error", "2"});
        EXPECT_EQ(error.status, 0) << error.err;
        EXPECT_EQ(error.out, c.text);
        EXPECT_EQ(error.err, "");  // the library's own file was found: no failure box
        EXPECT_EQ(ZelIn(c.lcid, {"error", "0x2"}).out, c.text);
        ProgramResult locale = ZelIn(c.lcid, {"locale"});
        EXPECT_NE(locale.out.find(std::string("resource-ext ") + c.extension + "\n"), std::string::npos) << locale.out;
        EXPECT_NE(locale.out.find("layout left-to-right\n"), std::string::npos);
    }
    // A language without a file of its own falls back to English.
    EXPECT_EQ(ZelIn("0x40C", {"error", "2"}).out, "There is not enough memory to complete the operation.\n");
}

TEST(LocaleCommand, ErrorTakesAnyCodeAndRefusesNonsense) {
    EXPECT_EQ(ZelIn("0x409", {"error", "9"}).out, "Resource file is missing or corrupt.\n");
    EXPECT_EQ(ZelIn("0x409", {"error", "0x40000002"}).status, 0);  // the run-time's text of ENOENT
    ProgramResult none = ZelIn("0x409", {"error", "11"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.out, "");
    for (const char* bad : {"x", "0x100000000", "-1", ""}) EXPECT_EQ(ZelIn("0x409", {"error", bad}).status, 2) << bad;
}

TEST(LocaleCommand, PathsListsTheDefaultsInTableOrder) {
    ProgramResult paths = RunProgram(ZEL_TEST_ZEL_PATH, {"paths"}, {{"TMP", "q:\\scratch\\"}});
    ASSERT_EQ(paths.status, 0);
    std::vector<std::string> names;
    for (size_t at = 0; at < paths.out.size();) {
        const size_t end = paths.out.find('\n', at);
        names.push_back(paths.out.substr(at, paths.out.find('=', at) - at));
        at = end + 1;
    }
    EXPECT_EQ(names, (std::vector<std::string>{"App", "Common", "Zel", "SharedData", "Temp", "UserData", "AllUserData",
                                               "SysExt", "ResExt", "DsoExt"}));
    EXPECT_NE(paths.out.find("\nTemp=q:\\scratch\n"), std::string::npos) << paths.out;
    EXPECT_NE(paths.out.find("\nDsoExt=dll\n"), std::string::npos);
}

TEST(LocaleCommand, DefinedAnswersByStatus) {
    // The language's resource file defines its own name.
    ProgramResult korean = ZelIn("0x412", {"defined", "KOREAN"});
    EXPECT_EQ(korean.out, "1\n");
    EXPECT_EQ(korean.status, 0);
    ProgramResult english = ZelIn("0x412", {"defined", "ENGLISH"});
    EXPECT_EQ(english.out, "0\n");
    EXPECT_EQ(english.status, 1);
    EXPECT_EQ(ZelIn("0x412", {"defined", "korean"}).status, 1);
}

}  // namespace
