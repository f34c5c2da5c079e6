// The shell's adapters: item lists, file operations on lists of names, calls bound at run time
// and the known folders that only newer systems have.
#include <gtest/gtest.h>
#include <zel/paths.h>

#include <cstdlib>
#include <string>


#include "paths/os/dynamic_calls.h"
#include "platform/win32.h"
#include "support/support.h"
#include "support/system.h"

namespace {

std::u16string Dir(const zeltest::TempDir& dir) { return ZelPlatformPathFromSystem(dir.path().c_str()) + u"\\"; }

using zeltest::Exists;

constexpr IID kIShellFolder = {0x000214E6, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// RoamingAppData.
constexpr KNOWNFOLDERID kRoamingAppData = {0x3EB685DB, 0x65F9, 0x4CF6,
                                           {0xA0, 0x3A, 0xE3, 0xEF, 0x65, 0x72, 0x9F, 0x3D}};

TEST(AdapterShell, ItemListsGiveKoreanNames) {
    zeltest::TempDir dir;
    zeltest::WriteFile(dir.file("한글.txt"), "abcd");
    std::u16string name = Dir(dir) + u"\uD55C\uAE00.txt";
    IShellFolder* desktop = nullptr;
    ASSERT_EQ(S_OK, SHGetDesktopFolder(&desktop));
    LPITEMIDLIST list = nullptr;
    ASSERT_EQ(S_OK, desktop->ParseDisplayName(nullptr, nullptr, name.data(), nullptr, &list, nullptr));

    WCHAR path[MAX_PATH] = {};
    EXPECT_EQ(TRUE, ZelSHGetPathFromIDList(list, path));
    EXPECT_EQ(name, path);

    // The record is asked of the folder that holds the item.
    IShellFolder* parent = nullptr;
    LPCITEMIDLIST item = nullptr;
    ASSERT_EQ(S_OK, SHBindToParent(list, kIShellFolder, reinterpret_cast<void**>(&parent), &item));
    WIN32_FIND_DATAW found = {};
    EXPECT_EQ(S_OK, ZelSHGetDataFromIDList(parent, item, SHGDFIL_FINDDATA, &found, sizeof found));
    parent->Release();
    // Wine keeps the name inside the list in the ANSI code page, so only a Korean one carries it.
    if (!zeltest::RunningUnderWine() || GetACP() == 949) {
        EXPECT_EQ(std::u16string(u"\uD55C\uAE00.txt"), found.cFileName);
    }
    EXPECT_EQ(4u, found.nFileSizeLow);

    SHFILEINFOW info = {};
    EXPECT_NE(0u, ZelSHGetFileInfo(reinterpret_cast<const WCHAR*>(list), 0, &info, sizeof info,
                                   SHGFI_PIDL | SHGFI_DISPLAYNAME));
    EXPECT_EQ(std::u16string(u"\uD55C\uAE00.txt"), info.szDisplayName);
    info = {};
    EXPECT_NE(0u, ZelSHGetFileInfo(name.c_str(), 0, &info, sizeof info, SHGFI_DISPLAYNAME));
    EXPECT_EQ(std::u16string(u"\uD55C\uAE00.txt"), info.szDisplayName);
    CoTaskMemFree(list);
}

TEST(AdapterShell, FileOperationTakesEveryNameOfTheList) {
    zeltest::TempDir dir;
    zeltest::WriteFile(dir.file("가.txt"), "1");
    zeltest::WriteFile(dir.file("나.txt"), "2");
    ASSERT_EQ(0, u__wmkdir((Dir(dir) + u"\uD55C").c_str()));
    // Two names, each with its terminator, and one more behind the last.
    const std::u16string from = Dir(dir) + u"\uAC00.txt" + u'\0' + Dir(dir) + u"\uB098.txt" + u'\0';
    const std::u16string to = Dir(dir) + u"\uD55C" + u'\0';
    SHFILEOPSTRUCTW copy = {};
    copy.wFunc = FO_COPY;
    copy.pFrom = from.c_str();
    copy.pTo = to.c_str();
    copy.fFlags = FOF_NOCONFIRMATION | FOF_SILENT | FOF_NOERRORUI;
    EXPECT_EQ(0, ZelSHFileOperation(&copy));
    EXPECT_EQ("1", zeltest::ReadFile(dir.file("한/가.txt")));
    EXPECT_EQ("2", zeltest::ReadFile(dir.file("한/나.txt")));

    // No destination list at all, as a deletion has.
    SHFILEOPSTRUCTW remove = {};
    remove.wFunc = FO_DELETE;
    remove.pFrom = from.c_str();
    remove.fFlags = FOF_NOCONFIRMATION | FOF_SILENT | FOF_NOERRORUI;
    EXPECT_EQ(0, ZelSHFileOperation(&remove));
    EXPECT_FALSE(Exists(dir.file("가.txt")));
    EXPECT_FALSE(Exists(dir.file("나.txt")));
}

TEST(AdapterShell, KnownFoldersWithAndWithoutTheCall) {
    PWSTR path = nullptr;
    ASSERT_EQ(S_OK, ZelSHGetKnownFolderPath(kRoamingAppData, 0, nullptr, &path));
    ASSERT_NE(nullptr, path);
    WCHAR special[MAX_PATH] = {};
    EXPECT_TRUE(ZelSHGetSpecialFolderPath(nullptr, special, CSIDL_APPDATA, FALSE));
    EXPECT_EQ(std::u16string(path), special);
    CoTaskMemFree(path);

#ifndef _WIN32  // only this layer can take a system call away
    zeltest::ScopedEnv hide("ZEL_HIDE_CALLS", "SHGetKnownFolderPath,SHGetKnownFolderIDList");
    path = nullptr;
    PIDLIST_ABSOLUTE list = nullptr;
    EXPECT_EQ(1, ZelSHGetKnownFolderPath(kRoamingAppData, 0, nullptr, &path));
    EXPECT_EQ(1, ZelSHGetKnownFolderIDList(kRoamingAppData, 0, nullptr, &list));
    EXPECT_EQ(nullptr, path);
    EXPECT_EQ(nullptr, list);
#endif
}

TEST(AdapterShell, CallsBoundAtRunTimeMayBeMissing) {
    SHELLFLAGSTATE state = {};
    EXPECT_TRUE(ZelSHGetSettings(&state, SSF_SHOWEXTENSIONS));
#ifndef _WIN32  // only this layer can take a system call away
    // The bindings are cached for the process: a child forgets them and sees the calls hidden.
    EXPECT_EQ(0, zeltest::RunInChild([] {
        zeltest::SetEnvironment("ZEL_HIDE_CALLS", "SHGetSpecialFolderPathA,SHGetSpecialFolderPathW,SHGetSettings");
        ZelDynamicCallsForget();
        WCHAR buffer[MAX_PATH] = {u'#', 0};
        SHELLFLAGSTATE flags = {};
        if (ZelSHGetSpecialFolderPath(nullptr, buffer, CSIDL_APPDATA, FALSE) || buffer[0] != u'#') return 1;
        if (ZelSHGetSettings(&flags, SSF_SHOWEXTENSIONS)) return 2;
        return 0;
    }));
#endif
}

}  // namespace
