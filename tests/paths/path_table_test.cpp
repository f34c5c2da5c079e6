// The table of named paths and the ${Name} macros. The table is shared by every test of the
// program, so each test puts back what it changed.
#include <gtest/gtest.h>
#include <zel/paths.h>

#include <string>

#include "frame/attach_steps.h"
#include "platform/win32.h"
#include "support/support.h"

namespace {

std::u16string Absolute(const std::u16string& source) {
    WCHAR out[MAX_PATH + 8];
    ZelPathToAbsolute(source.c_str(), out);
    return out;
}

std::u16string Relative(const std::u16string& source) {
    WCHAR out[MAX_PATH + 8];
    ZelPathToRelative(source.c_str(), out);
    return out;
}

// A row for the length of a test; a default row of the same name steps aside meanwhile.
struct ScopedPath {
    ScopedPath(const std::u16string& n, const std::u16string& value) : name(n), old(Absolute(u"${" + n + u"}")) {
        hadOld = ZelUnregisterPath(n.c_str());
        added = ZelRegisterPath(n.c_str(), value.c_str());
    }
    ~ScopedPath() {
        if (added) ZelUnregisterPath(name.c_str());
        if (hadOld) ZelRegisterPath(name.c_str(), old.c_str());
    }
    std::u16string name, old;
    BOOL hadOld, added;
};

}  // namespace

TEST(PathTable, RegistersANameOnceAndRefusesWhatARowCannotHold) {
    const std::u16string longest(259, u'v');
    ScopedPath temp(u"Temp", u"c:\\t"), full(u"FifteenCharsXyz", longest);
    ASSERT_TRUE(temp.added && full.added);
    EXPECT_FALSE(ZelRegisterPath(u"TEMP", u"d:\\other"));
    EXPECT_EQ(u"c:\\t" + longest.substr(0, 255), Absolute(u"${TEMP}${fifteencharsxyz}"));
    EXPECT_TRUE(ZelIsRegisterPath(u"tEmP"));
    EXPECT_FALSE(ZelRegisterPath(u"SixteenCharsXyzw", u"x") || ZelRegisterPath(u"Long", (longest + u"v").c_str()) ||
                 ZelRegisterPath(u"", u"x") || ZelRegisterPath(nullptr, u"x") || ZelRegisterPath(u"V", nullptr));
    EXPECT_FALSE(ZelUnregisterPath(u"Nobody") || ZelUnregisterPath(nullptr) || ZelIsRegisterPath(nullptr));
}

TEST(PathTable, FirstRowInOrderDecidesAndUnregisterKeepsTheOrder) {
    ScopedPath a(u"RowA", u"c:\\a"), b(u"RowB", u"c:\\a\\b"), c(u"RowC", u"c:\\c"), d(u"RowD", u"c:\\d"),
        empty(u"Empty", u"");
    // Not the longest value; no separator is needed behind it; an empty value matches nothing.
    EXPECT_EQ(u"${RowA}\\b\\f", Relative(u"c:\\a\\b\\f"));
    EXPECT_EQ(u"${RowA}pple", Relative(u"C:\\Apple"));
    EXPECT_EQ(u"", Relative(u"e:\\x"));
    EXPECT_EQ(u"${RowA}" + std::u16string(252, u'z'), Relative(u"c:\\a" + std::u16string(300, u'z')));
    c.added = a.added = 0;
    ASSERT_TRUE(ZelUnregisterPath(u"RowC") && ZelUnregisterPath(u"RowA"));
    EXPECT_TRUE(ZelIsRegisterPath(u"RowB") && ZelIsRegisterPath(u"RowD") && !ZelIsRegisterPath(u"RowC"));
    EXPECT_EQ(u"${RowB}\\f", Relative(u"c:\\a\\b\\f"));
    EXPECT_EQ(u"${RowD}\\x", Relative(u"C:\\D\\x"));
}

TEST(PathTable, AbsoluteExpandsKnownMacrosAndDropsBrokenOnes) {
    ScopedPath temp(u"Temp", u"c:\\t"), self(u"Self", u"${Self}x"), wide(u"Wide", std::u16string(200, u'w'));
    const std::u16string cases[][2] = {
        {u"${temp}\\a.txt", u"c:\\t\\a.txt"}, {u"a${Nobody}b", u"ab"},   {u"a${Temp", u"a"},
        {u"a${", u"a"},                       {u"${}", u""},             {u"a$b{c}", u"a$b{c}"},
        {u"$${Temp}}$", u"$c:\\t}$"},         {u"${Self}", u"${Self}x"}, {u"${Wide}${Wide}", std::u16string(259, u'w')},
    };
    for (const auto& c : cases) EXPECT_EQ(c[1], Absolute(c[0])) << ZelPlatformWideToUtf8(c[0]);
    WCHAR out[MAX_PATH] = u"x";
    ZelPathToAbsolute(nullptr, out);
    EXPECT_EQ(u'\0', out[0]);
}

TEST(PathTable, AnEmptyTableExpandsNothing) {
    // Freeing the table belongs to process detach, so it runs in a child.
    EXPECT_EQ(0, zeltest::RunInChild([] {
        ZelFreePathTable();
        bool ok = !ZelIsRegisterPath(u"Temp") && !ZelUnregisterPath(u"Temp") && Relative(u"c:\\t").empty() &&
                  Absolute(u"${Temp}\\a") == u"${Temp}\\a";
        return ok && ZelRegisterPath(u"Temp", u"c:\\u") && Absolute(u"${Temp}") == u"c:\\u" ? 0 : 1;
    }));
}

TEST(PathTable, ModulePathsUseTheModulesDirectory) {
    WCHAR exe[MAX_PATH] = {};
    ASSERT_TRUE(ZelGetModuleFileName(nullptr, exe, MAX_PATH));
    ASSERT_TRUE(ZelRegisterModulePath(u"TestModule", nullptr));
    const std::u16string directory = Absolute(u"${TestModule}");
    ZelUnregisterPath(u"TestModule");
    EXPECT_EQ(u'\\', directory.back());
    EXPECT_EQ(0u, std::u16string(exe).find(directory));
    EXPECT_FALSE(ZelRegisterModulePath(nullptr, nullptr));

    // Loading makes the module's directory current only for the length of the load.
    auto currentDirectory = [] {
        WCHAR out[MAX_PATH] = {};
        return ZelGetCurrentDirectory(MAX_PATH, out) ? std::u16string(out) : u"";
    };
    const std::u16string before = currentDirectory();
    HMODULE module = ZelLoadLibraryModulePath(ZelPlatformPathFromSystem(ZEL_TEST_LIBRARY_PATH).c_str());
    EXPECT_NE(nullptr, module);
    if (module) FreeLibrary(module);
    EXPECT_EQ(nullptr, ZelLoadLibraryModulePath(u"\\no\\such\\module.so"));
    EXPECT_EQ(before, currentDirectory());
}
