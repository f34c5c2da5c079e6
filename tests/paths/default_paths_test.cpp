// The ten default paths. They are registered once per process, so each case registers them again
// in a child, after it has set the environment and the registry.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <zel/frame.h>
#include <zel/paths.h>

#include "frame/attach_steps.h"
#include "frame/own_module.h"
#include "paths/default_paths.h"
#include "paths/path_table.h"
#include "platform/win32.h"
#include "support/resource_fixtures.h"
#include "support/support.h"

using zeltest::ModuleInDir;
using zeltest::ScopedEnv;

namespace {

const char kShellFolders[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
const char kCommon[] = "Software\\Morvalis\\Shared\\Common";

// Registers the defaults anew in a child, with the library's own file taken to be module, and
// hands the rows to check.
void Registered(HMODULE module, const std::function<void(const std::vector<ZelPathEntry>&)>& check) {
    EXPECT_EQ(zeltest::RunInChild([&] {
                  ZelFreePathTable();
                  if (module) g_zelOwnModule.moduleHandle = module;
                  ZelRegisterDefaultPaths();
                  std::vector<ZelPathEntry> rows;
                  for (const ZelPathEntry* row = ZelPathTableRows(); row && row->name[0]; ++row) rows.push_back(*row);
                  check(rows);
                  return ::testing::Test::HasFailure() ? 1 : 0;
              }),
              0);
}

std::u16string Value(const std::vector<ZelPathEntry>& rows, const std::u16string& name) {
    for (const ZelPathEntry& row : rows)
        if (name == row.name) return row.path;
    return u"(none)";
}

std::u16string Wide(const std::string& path) { return ZelPlatformPathFromSystem(path.c_str()); }

TEST(DefaultPaths, TenNamesInOrderFromTheLibrarysPlace) {
    ModuleInDir library("p/Common/x.so");
    ScopedEnv tmp("TMP", "q:\\any text\\");
    Registered(library.handle(), [&](const std::vector<ZelPathEntry>& rows) {
        std::vector<std::u16string> names;
        for (const ZelPathEntry& row : rows) names.push_back(row.name);
        EXPECT_EQ(names, (std::vector<std::u16string>{u"App", u"Common", u"Zel", u"SharedData", u"Temp", u"UserData",
                                                      u"AllUserData", u"SysExt", u"ResExt", u"DsoExt"}));
        const std::u16string zel = Wide(library.dir().path() + "/p");
        EXPECT_EQ(Value(rows, u"Common"), zel + u"\\Common");
        EXPECT_EQ(Value(rows, u"Zel"), zel);
        EXPECT_EQ(Value(rows, u"SharedData"), zel + u"\\Shared");
        EXPECT_EQ(Value(rows, u"Temp"), u"q:\\any text");  // taken as it is, less the separator
        EXPECT_EQ(Value(rows, u"UserData"), zel + u"\\AppData");
        EXPECT_EQ(Value(rows, u"AllUserData"), zel + u"\\SysData");
        EXPECT_EQ(Value(rows, u"DsoExt"), u"dll");
        WCHAR program[MAX_PATH];
        ZelGetModuleFileName(nullptr, program, MAX_PATH);
        std::u16string app = program;
        EXPECT_EQ(Value(rows, u"App"), app.substr(0, app.rfind(u'\\')));
        // A second registration finds the table and leaves it alone.
        ZelUnregisterPath(u"Temp");
        ZelRegisterDefaultPaths();
        EXPECT_FALSE(ZelIsRegisterPath(u"Temp"));
    });
}

TEST(DefaultPaths, TempFromTmpThenTempThenZelThenTheCurrentDirectory) {
    ModuleInDir library("p/Common/x.so");
    const std::u16string zel = Wide(library.dir().path() + "/p");
    {
        ScopedEnv tmp("TMP", std::string(300, 'x'));  // longer than a path row: refused
        ScopedEnv temp("TEMP", "q:\\from temp");
        Registered(library.handle(), [](const std::vector<ZelPathEntry>& rows) {
            EXPECT_EQ(Value(rows, u"Temp"), u"q:\\from temp");
        });
    }
    ScopedEnv tmp("TMP", std::nullopt);
    ScopedEnv temp("TEMP", std::nullopt);
    Registered(library.handle(), [&](const std::vector<ZelPathEntry>& rows) {
        if (ZelIsUsableDir(zel.c_str())) {
            EXPECT_EQ(Value(rows, u"Temp"), zel + u"\\Temp");
        }
    });

#ifndef _WIN32  // a module loaded through a directory link, made and taken away with this system's calls
    // Zel gone, its name reached through a link that no longer exists: the current directory.
    zeltest::TempDir other;
    std::filesystem::create_directories(other.path() + "/real/Common");
    WCHAR math[MAX_PATH] = {};
    GetModuleFileNameW(GetModuleHandleA("libm.so.6"), math, MAX_PATH);
    std::filesystem::copy_file(ZelPlatformPathToSystem(math), other.path() + "/real/Common/x.so");
    std::filesystem::create_directory_symlink(other.path() + "/real", other.path() + "/link");
    HMODULE linked = LoadLibraryW(Wide(other.path() + "/link/Common/x.so").c_str());
    ASSERT_NE(linked, nullptr);
    std::filesystem::remove(other.path() + "/link");
    zeltest::TempDir current;
    const std::u16string here = Wide(current.path());
    EXPECT_EQ(zeltest::RunInChild([&] {
                  if (chdir(current.path().c_str()) != 0) return 2;
                  ZelFreePathTable();
                  g_zelOwnModule.moduleHandle = linked;
                  ZelRegisterDefaultPaths();
                  const ZelPathEntry* rows = ZelPathTableRows();
                  EXPECT_EQ(std::u16string(rows[2].path), Wide(other.path() + "/link"));
                  EXPECT_EQ(std::u16string(rows[4].path), here);
                  EXPECT_EQ(std::u16string(rows[5].path), here + u"\\AppData");
                  EXPECT_EQ(std::u16string(rows[6].path), here + u"\\SysData");
                  return ::testing::Test::HasFailure() ? 1 : 0;
              }),
              0);
    FreeLibrary(linked);
#endif
}

// TMP and TEMP hold paths in the system's form; Temp gets the library's, so that a directory that
// isn't there yet can be made below it.
TEST(DefaultPaths, TempFromTheEnvironmentInTheLibrarysForm) {
    ModuleInDir library("p/Common/x.so");
    for (const char* variable : {"TMP", "TEMP"}) {
        zeltest::TempDir dir;
        ScopedEnv tmp("TMP", std::nullopt), temp("TEMP", std::nullopt), set(variable, dir.path() + "/tmp/new/");
        Registered(library.handle(), [&](const std::vector<ZelPathEntry>& rows) {
            EXPECT_EQ(Value(rows, u"Temp"), Wide(dir.path() + "/tmp/new")) << variable;
            WCHAR name[MAX_PATH] = {};
            EXPECT_NE(ZelPathMakeTemp(u"pre", 0, name), 0u) << variable;
            EXPECT_TRUE(std::filesystem::is_regular_file(ZelPlatformPathToSystem(name))) << variable;
        });
    }
}

TEST(DefaultPaths, RegistryFoldersAndSharedData) {
    ModuleInDir library("p/Common/x.so");
    const zeltest::TempDir shared{zeltest::TempDir::SharedWithReruns{}};
    const std::u16string sharedPath = Wide(shared.path());
    EXPECT_EQ(zeltest::RunInChild([&] {
                  zeltest::SetRegistryText(HKEY_CURRENT_USER, kShellFolders, "AppData", "q:\\Users\\me\\AppData");
                  zeltest::SetRegistryText(HKEY_LOCAL_MACHINE, kShellFolders, "Common AppData", "q:\\All\\");
                  std::string windowsForm = shared.path();  // ASCII, in the library's form
                  for (char& c : windowsForm) c = c == '/' ? '\\' : c;
                  zeltest::SetRegistryText(HKEY_LOCAL_MACHINE, kCommon, "SharedData Path", windowsForm);
                  return 0;
              }),
              0);
    Registered(library.handle(), [&](const std::vector<ZelPathEntry>& rows) {
        EXPECT_EQ(Value(rows, u"UserData"), u"q:\\Users\\me\\AppData\\Morvalis");
        EXPECT_EQ(Value(rows, u"AllUserData"), u"q:\\All\\Morvalis");
        // The value exists, but its directory lacks Fonts\FontInfo.dat.
        EXPECT_EQ(Value(rows, u"SharedData"), Wide(library.dir().path() + "/p/Shared"));
    });
    std::filesystem::create_directories(shared.path() + "/Fonts");
    zeltest::WriteFile(shared.path() + "/Fonts/FontInfo.dat", "fonts");
    Registered(library.handle(), [&](const std::vector<ZelPathEntry>& rows) {
        EXPECT_EQ(Value(rows, u"SharedData"), sharedPath);
        WCHAR found[MAX_PATH];
        EXPECT_TRUE(ZelFindSharedData(found, MAX_PATH));
        EXPECT_EQ(std::u16string(found), sharedPath + u"\\");
        EXPECT_FALSE(ZelFindSharedData(found, 3));
    });
    // A folder value longer than a path row is refused like a missing one.
    EXPECT_EQ(zeltest::RunInChild([&] {
                  zeltest::SetRegistryText(HKEY_CURRENT_USER, kShellFolders, "AppData", "q:\\" + std::string(258, 'a'));
                  return 0;
              }),
              0);
    Registered(library.handle(), [&](const std::vector<ZelPathEntry>& rows) {
        EXPECT_EQ(Value(rows, u"UserData").substr(0, 2), Wide(library.dir().path()).substr(0, 2));
        EXPECT_EQ(Value(rows, u"UserData").find(u"aaaa"), std::u16string::npos);
    });
    zeltest::DeleteRegistryValue(HKEY_CURRENT_USER, kShellFolders, "AppData");
    zeltest::DeleteRegistryValue(HKEY_LOCAL_MACHINE, kShellFolders, "Common AppData");
    zeltest::DeleteRegistryValue(HKEY_LOCAL_MACHINE, kCommon, "SharedData Path");
}

TEST(DefaultPaths, UsableDirectories) {
    EXPECT_FALSE(ZelIsUsableDir(u"\\\\server\\share"));
    EXPECT_FALSE(ZelIsUsableDir(u"nothing"));
    EXPECT_FALSE(ZelIsUsableDir(nullptr));
    zeltest::TempDir dir;
    EXPECT_FALSE(ZelIsUsableDir(Wide(dir.path() + "/missing").c_str()));
    if (ZelGetDriveType(u"\\") != DRIVE_FIXED) GTEST_SKIP() << "the root is no fixed drive here";
    EXPECT_TRUE(ZelIsUsableDir(Wide(dir.path()).c_str()));
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));  // the probe file is gone again
}

}  // namespace
