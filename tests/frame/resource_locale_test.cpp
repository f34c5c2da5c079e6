// The user's language, the resource file it picks beside a module, and the library's own messages
// in each language. The language is read once per process, so each case runs in a child that
// forgets what its parent read.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include <zel/frame.h>
#include <zel/paths.h>

#include "frame/own_module.h"
#include "frame/resource_lookup.h"
#include "platform/win32.h"
#include "strings/wstr.h"
#include "support/resource_fixtures.h"
#include "support/support.h"

using zeltest::ModuleInDir;
using zeltest::RunInChild;

namespace {

const char kCommonKey[] = "Software\\Morvalis\\Global Settings\\User Locales";
const char kApplicationKey[] = "Software\\Morvalis\\Global Settings\\User Locales\\zel_test_frame";
const char kResDllExt[] = "Software\\Morvalis\\Shared\\Common\\ResDllExt";

// Runs body in a child; a failed expectation there fails the case here.
void InChild(const std::function<void()>& body) {
    EXPECT_EQ(RunInChild([&] {
                  body();
                  return ::testing::Test::HasFailure() ? 1 : 0;
              }),
              0);
}

std::u16string Found(const WCHAR* name) { return name; }

TEST(UserLocale, ApplicationKeyThenCommonKeyThenSystem) {
    InChild([] {
        if (!zeltest::UseSystemLanguage("0x409")) return;
        zeltest::SetRegistryDword(HKEY_CURRENT_USER, kCommonKey, "LCID", 0x411);
        EXPECT_EQ(ZelGetUserLCID(), 0x411u);

        ZelForgetLocaleCaches();
        zeltest::SetRegistryDword(HKEY_CURRENT_USER, kApplicationKey, "LCID", 0x412);
        EXPECT_EQ(ZelGetUserLCID(), 0x412u);
        zeltest::SetRegistryDword(HKEY_CURRENT_USER, kApplicationKey, "LCID", 0x409);
        EXPECT_EQ(ZelGetUserLCID(), 0x412u);  // read once per process

        // A value of the wrong type is passed over.
        ZelForgetLocaleCaches();
        zeltest::SetRegistryText(HKEY_CURRENT_USER, kApplicationKey, "LCID", "1042");
        EXPECT_EQ(ZelGetUserLCID(), 0x411u);
        zeltest::DeleteRegistryValue(HKEY_CURRENT_USER, kCommonKey, "LCID");
        ZelForgetLocaleCaches();
        EXPECT_EQ(ZelGetUserLCID(), 0x409u);
    });
}

TEST(UserLocale, CodePageHasNoSystemFallbackAndIsAskedAgainUntilSet) {
    InChild([] {
        ZelForgetLocaleCaches();
        EXPECT_EQ(ZelGetUserCP(), 0u);
        zeltest::SetRegistryDword(HKEY_CURRENT_USER, kCommonKey, "CODE", 949);
        EXPECT_EQ(ZelGetUserCP(), 949u);
        zeltest::SetRegistryDword(HKEY_CURRENT_USER, kApplicationKey, "CODE", 932);
        EXPECT_EQ(ZelGetUserCP(), 949u);
        ZelForgetLocaleCaches();
        EXPECT_EQ(ZelGetUserCP(), 932u);
    });
}

TEST(ResourceExt, AbbreviationOfTheLanguageOrKorean) {
    struct Case {
        LANGID language;
        const char16_t* extension;
    };
    for (const Case& c : {Case{0x412, u"KOR"}, Case{0x409, u"ENU"}, Case{0x411, u"JPN"}, Case{0x809, u"ENG"},
                          Case{0x7F7F, u"KOR"}, Case{0x812, u"KOR"}}) {
        WCHAR extension[MAX_PATH] = u"xxxxxxxx";
        ZelGetResourceExt(c.language, extension);
        EXPECT_EQ(Found(extension), c.extension) << c.language;
    }
}

TEST(ResourceExt, TheLibrarysLanguageIsTheFirstOneWithAFile) {
    // The program's own files here: KOR, ENU and JPN.
    InChild([] {
        WCHAR extension[MAX_PATH] = {};
        if (zeltest::UseSystemLanguage("0x412")) {
            ZelGetResourceExt(0xFFFF, extension);
            EXPECT_EQ(Found(extension), u"KOR");
        }
        if (zeltest::UseSystemLanguage("0x40C")) {  // no French file: English is next
            ZelGetResourceExt(0xFFFF, extension);
            EXPECT_EQ(Found(extension), u"ENU");
        }
    });
}

TEST(ResourcePath, LanguageFallbacksAndTheSublanguage) {
    ModuleInDir dir;
    dir.WriteResources("m.ENU", {{1, u"english"}});
    InChild([&] {
        if (!zeltest::UseSystemLanguage("0x809")) return;
        WCHAR base[MAX_PATH];
        ASSERT_TRUE(ZelResourceBaseName(dir.handle(), u"", base));
        EXPECT_EQ(Found(base), dir.LibraryPath("m"));
        WCHAR name[MAX_PATH] = {};
        // m.ENG is missing; the first sublanguage of English has a file.
        ASSERT_TRUE(ZelProbeResourceLanguage(0x809, base, name));
        EXPECT_EQ(Found(name), dir.LibraryPath("m.ENU"));
        // A first sublanguage isn't tried twice; Korean has no file at all.
        dir.WriteResources("m.ENG", {{1, u"british"}});
        std::remove(dir.SystemPath("m.ENU").c_str());
        EXPECT_FALSE(ZelProbeResourceLanguage(0x409, base, name));
        EXPECT_FALSE(ZelProbeResourceLanguage(0x412, base, name));
    });
}

TEST(ResourcePath, ResDllExtWinsOnlyWhenItsFileExists) {
    ModuleInDir dir;
    dir.WriteResources("m.ENU", {{1, u"english"}});
    InChild([&] {
        if (!zeltest::UseSystemLanguage("0x409")) return;
        zeltest::SetRegistryText(HKEY_LOCAL_MACHINE, kResDllExt, "1033", "USA");
        WCHAR name[MAX_PATH] = {};
        ASSERT_TRUE(ZelGetResourcePath(dir.handle(), name));
        EXPECT_EQ(Found(name), dir.LibraryPath("m.ENU"));
        dir.WriteResources("m.USA", {{1, u"american"}});
        name[0] = 0;
        ASSERT_TRUE(ZelGetResourcePath(dir.handle(), name));
        EXPECT_EQ(Found(name), dir.LibraryPath("m.USA"));
        WCHAR extension[MAX_PATH] = {};
        EXPECT_TRUE(ZelReadResourceExt(0x409, extension));
        EXPECT_EQ(Found(extension), u"USA");
        EXPECT_FALSE(ZelReadResourceExt(0x412, extension));
        zeltest::DeleteRegistryValue(HKEY_LOCAL_MACHINE, kResDllExt, "1033");
    });
}

TEST(ResourcePath, BaseNameLooksBesideTheModuleUnderThatName) {
    ModuleInDir dir;
    dir.WriteResources("m.KOR", {{1, u"own"}});
    dir.WriteResources("shared.KOR", {{1, u"shared"}});
    InChild([&] {
        if (!zeltest::UseSystemLanguage("0x40C")) return;  // no French files: the fallbacks end at Korean
        WCHAR name[MAX_PATH] = u"shared";
        ASSERT_TRUE(ZelGetResourcePath(dir.handle(), name));
        EXPECT_EQ(Found(name), dir.LibraryPath("shared.KOR"));
        name[0] = 0;
        ASSERT_TRUE(ZelGetResourcePath(dir.handle(), name));
        EXPECT_EQ(Found(name), dir.LibraryPath("m.KOR"));

        // Nothing under the name: error 9 with the module's file name and its terminator.
        wcscpy(name, u"nothing");
        ZelClearError();
        EXPECT_FALSE(ZelGetResourcePath(dir.handle(), name));
        EXPECT_EQ(ZelGetError(), static_cast<DWORD>(ZEL_ERROR_RESOURCE_MISSING));
        ZelErrorDetail detail;
        ZelGetErrorDetail(&detail);
        EXPECT_EQ(detail.kind, 1u);
        EXPECT_EQ(Found(reinterpret_cast<const WCHAR*>(detail.data)), dir.LibraryPath("m.so"));
    });
}

// Every message of the library, with the library's own file loaded in each language as the
// own module's start loads it.
TEST(LibraryMessages, EveryCodeIsDescribedInKoreanEnglishAndJapanese) {
    struct Language {
        const char* lcid;
        bool (*script)(WCHAR);
    };
    const Language languages[] = {
        {"0x412", [](WCHAR c) { return c >= 0xAC00 && c <= 0xD7A3; }},
        {"0x409", [](WCHAR c) { return c >= u'a' && c <= u'z'; }},
        {"0x411", [](WCHAR c) { return (c >= 0x3040 && c <= 0x30FF) || (c >= 0x4E00 && c <= 0x9FFF); }},
    };
    for (const Language& language : languages) {
        InChild([&] {
            if (!zeltest::UseSystemLanguage(language.lcid)) return;
            ZelExitModule(&g_zelOwnModule);
            ASSERT_TRUE(ZelInitModule(&g_zelOwnModule));
            auto describe = [&](DWORD code, const std::u16string& name = {}, DWORD fileError = 0) {
                if (name.empty()) {
                    ZelSetErrorEx(code, code == 1 ? 2 : 0, nullptr, 0);
                } else {
                    ZelSetFileError(fileError, name.c_str());
                }
                ZelErrorDetail detail;
                detail.text[0] = 0;
                ZelGetErrorDetail(&detail);
                return std::u16string(detail.text);
            };
            for (DWORD code : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 12u, 13u, 14u, 15u, 0x80070020u, 0x80070022u,
                               0x82000001u}) {
                const std::u16string text = describe(code);
                EXPECT_FALSE(text.empty()) << language.lcid << " " << code;
                EXPECT_NE(std::find_if(text.begin(), text.end(), language.script), text.end())
                    << language.lcid << " " << code;
            }
            for (DWORD fileError : {3u, 4u, 7u, 14u, 15u}) {
                const std::u16string text = describe(ZEL_ERROR_FILE, u"report.ini", fileError);
                // 14 and 15 read as plain sentences; the others name the file.
                EXPECT_EQ(text.find(u"report.ini") != std::u16string::npos, fileError < 14)
                    << language.lcid << " " << fileError;
                EXPECT_FALSE(text.empty());
                EXPECT_EQ(text.find(u'%'), std::u16string::npos) << language.lcid << " " << fileError;
            }
        });
    }
}

// On a system of the 95 family the language's abbreviation and the module's file name come
// through the ANSI code page: start-up and every resource case above find the same files there.
TEST(ResourceAnsi, TheSameFilesAsInWideMode) {
    if (ZelGetWinVersion() != 1) {
        const char* cases = "ResourceAnsi.*:ResourceExt.*:ResourcePath.*:LibraryMessages.*";
        for (const char* codePage : {"1252", "949"}) {
            const auto child =
                zeltest::RunTestsInNewProcess(cases, {{"ZEL_OS_VERSION", "1.4.0"}, {"ZEL_ACP", codePage}});
            if (child.skipped) continue;  // the run in that code page checks it
            EXPECT_EQ(0, child.status) << codePage << "\n" << child.out << child.err;
            EXPECT_EQ(child.err.find("Initialization Error"), std::string::npos) << codePage << "\n" << child.err;
        }
        return;
    }
    EXPECT_NE(g_zelOwnModule.resourceHandle, nullptr);
    WCHAR extensions[MAX_PATH] = {};
    ZelPathToAbsolute(u"${ResExt}|${SysExt}", extensions);
    EXPECT_EQ(std::u16string(extensions).size(), 7u) << ZelPlatformWideToUtf8(extensions);
    // A three-letter answer fills a size of four exactly.
    WCHAR abbreviation[4] = {};
    EXPECT_TRUE(ZelGetLocaleInfo(0x411, LOCALE_SABBREVLANGNAME, abbreviation, 4));
    EXPECT_EQ(Found(abbreviation), u"JPN");
}

}  // namespace
