#include <gtest/gtest.h>

#include <filesystem>
#include <chrono>
#include <string>
#include <thread>

#include "platform/win32.h"
#include "support/support.h"
#include "support/system.h"

using zeltest::ReadFile;
using zeltest::ScopedEnv;
using zeltest::TempDir;
using zeltest::WriteFile;

namespace {

constexpr IID kIShellFolder = {0x000214E6, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

std::u16string Win(const std::string& path) { return ZelPlatformPathFromSystem(path.c_str()); }

// A list of names for SHFileOperation: each with its terminator, one more at the end.
std::u16string List(std::initializer_list<std::string> paths) {
    std::u16string list;
    for (const std::string& path : paths) list += Win(path) + u'\0';
    return list + u'\0';
}

int Operate(UINT function, const std::u16string& from, const std::u16string* to, FILEOP_FLAGS flags = 0) {
    SHFILEOPSTRUCTW operation{};
    operation.wFunc = function;
    operation.pFrom = from.c_str();
    operation.pTo = to ? to->c_str() : nullptr;
    operation.fFlags = flags | FOF_NOCONFIRMATION | FOF_SILENT;
    operation.fAnyOperationsAborted = TRUE;
    const int result = SHFileOperationW(&operation);
    EXPECT_FALSE(operation.fAnyOperationsAborted);
    return result;
}

using zeltest::Exists;

TEST(Shell, FileOperationsCopyIntoDirectoriesAndByMask) {
    TempDir dir;
    WriteFile(dir.file("a.txt"), "alpha");
    WriteFile(dir.file("b.txt"), "beta");
    WriteFile(dir.file("c.log"), "log");
    std::filesystem::create_directory(dir.file("sub").c_str());
    std::filesystem::create_directory(dir.file("tree").c_str());
    std::filesystem::create_directory(dir.file("tree/inner").c_str());
    WriteFile(dir.file("tree/inner/deep.txt"), "deep");

    const std::u16string sub = List({dir.file("sub")});
    EXPECT_EQ(Operate(FO_COPY, List({dir.file("a.txt")}), &sub), 0);
    EXPECT_EQ(ReadFile(dir.file("sub/a.txt")), "alpha");

    const std::u16string copy = List({dir.file("copy.txt")});  // one source to a new name
    EXPECT_EQ(Operate(FO_COPY, List({dir.file("b.txt")}), &copy), 0);
    EXPECT_EQ(ReadFile(dir.file("copy.txt")), "beta");

    const std::u16string masked = List({dir.file("masked")});
    EXPECT_EQ(Operate(FO_COPY, List({dir.file("*.TXT")}), &masked), 0);
    EXPECT_TRUE(Exists(dir.file("masked/a.txt")) && Exists(dir.file("masked/b.txt")));
    EXPECT_FALSE(Exists(dir.file("masked/c.log")));

    const std::u16string several = List({dir.file("new/place")});
    EXPECT_EQ(Operate(FO_COPY, List({dir.file("c.log"), dir.file("tree")}), &several), 0);
    EXPECT_EQ(ReadFile(dir.file("new/place/c.log")), "log");
    EXPECT_EQ(ReadFile(dir.file("new/place/tree/inner/deep.txt")), "deep");

    const std::u16string pairs = List({dir.file("one"), dir.file("two")});
    EXPECT_EQ(Operate(FO_COPY, List({dir.file("a.txt"), dir.file("b.txt")}), &pairs, FOF_MULTIDESTFILES), 0);
    EXPECT_EQ(ReadFile(dir.file("one")), "alpha");
    EXPECT_EQ(ReadFile(dir.file("two")), "beta");

    const std::u16string all = List({dir.file("filesonly")});
    EXPECT_EQ(Operate(FO_COPY, List({dir.file("*")}), &all, FOF_FILESONLY), 0);
    EXPECT_TRUE(Exists(dir.file("filesonly/c.log")));
    EXPECT_FALSE(Exists(dir.file("filesonly/tree")));

    // Wine copies a directory into itself; Windows refuses.
    const std::u16string self = List({dir.file("tree/inner")});
    if (!zeltest::RunningUnderWine()) {
        EXPECT_NE(Operate(FO_COPY, List({dir.file("tree")}), &self), 0);
    }
}

TEST(Shell, FileOperationsMoveRenameAndDelete) {
    TempDir dir;
    WriteFile(dir.file("a.txt"), "alpha");
    std::filesystem::create_directory(dir.file("tree").c_str());
    WriteFile(dir.file("tree/x"), "x");

    const std::u16string target = List({dir.file("moved")});
    EXPECT_EQ(Operate(FO_MOVE, List({dir.file("tree")}), &target), 0);
    EXPECT_FALSE(Exists(dir.file("tree")));
    EXPECT_EQ(ReadFile(dir.file("moved/x")), "x");

    const std::u16string renameTo = List({dir.file("renamed.txt")});
    EXPECT_EQ(Operate(FO_RENAME, List({dir.file("a.txt")}), &renameTo), 0);
    EXPECT_EQ(ReadFile(dir.file("renamed.txt")), "alpha");

    EXPECT_EQ(Operate(FO_DELETE, List({dir.file("moved"), dir.file("renamed.txt")}), nullptr, FOF_ALLOWUNDO), 0);
    EXPECT_FALSE(Exists(dir.file("moved")));
    EXPECT_FALSE(Exists(dir.file("renamed.txt")));

    EXPECT_EQ(Operate(FO_DELETE, List({dir.file("missing")}), nullptr), ERROR_FILE_NOT_FOUND);
    // Wine answers a missing source of a copy with 0x402, which Windows gave before Vista.
    if (!zeltest::RunningUnderWine()) {
        EXPECT_EQ(Operate(FO_COPY, List({dir.file("missing")}), &target), ERROR_FILE_NOT_FOUND);
    }
    EXPECT_EQ(Operate(0x99, List({dir.file("moved")}), nullptr), ERROR_INVALID_PARAMETER);
}

TEST(Shell, FileOperationAnsiListsCarryEveryName) {
    TempDir dir;
    WriteFile(dir.file("a"), "1");
    WriteFile(dir.file("b"), "2");
    const std::string from = ZelPlatformWideToAnsi(Win(dir.file("a")).c_str()) + '\0' +
                             ZelPlatformWideToAnsi(Win(dir.file("b")).c_str()) + '\0';
    SHFILEOPSTRUCTA operation{};
    operation.wFunc = FO_DELETE;
    operation.pFrom = from.c_str();  // the string's own terminator ends the list
    operation.fFlags = FOF_NOCONFIRMATION | FOF_SILENT | FOF_NOERRORUI;
    EXPECT_EQ(SHFileOperationA(&operation), 0);
    EXPECT_FALSE(Exists(dir.file("a")) || Exists(dir.file("b")));
}

// The same folder through each of the calls that name it.
TEST(Shell, SpecialAndKnownFoldersAgree) {
    WCHAR special[MAX_PATH];
    ASSERT_TRUE(SHGetSpecialFolderPathW(nullptr, special, CSIDL_APPDATA, FALSE));
    char narrow[MAX_PATH];
    ASSERT_TRUE(SHGetSpecialFolderPathA(nullptr, narrow, CSIDL_APPDATA, FALSE));
    EXPECT_EQ(ZelPlatformAnsiToWide(narrow).text, special);
    PWSTR known = nullptr;
    ASSERT_EQ(SHGetKnownFolderPath(FOLDERID_RoamingAppData, 0, nullptr, &known), S_OK);
    EXPECT_EQ(std::u16string(known), special);
    CoTaskMemFree(known);
    PIDLIST_ABSOLUTE list = nullptr;
    ASSERT_EQ(SHGetKnownFolderIDList(FOLDERID_RoamingAppData, 0, nullptr, &list), S_OK);
    WCHAR path[MAX_PATH];
    ASSERT_TRUE(SHGetPathFromIDListW(list, path));
    EXPECT_EQ(std::u16string(path), special);
    CoTaskMemFree(list);

    const KNOWNFOLDERID unknown = {0x12345678, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}};
    known = reinterpret_cast<PWSTR>(1);
    const HRESULT result = SHGetKnownFolderPath(unknown, 0, nullptr, &known);
    // Wine answers an unknown folder with ERROR_FILE_NOT_FOUND as an HRESULT.
    if (!zeltest::RunningUnderWine()) {
        EXPECT_EQ(result, E_INVALIDARG);
    }
    EXPECT_TRUE(FAILED(result));
    EXPECT_EQ(known, nullptr);
}

#ifndef _WIN32  // where the folders lie below HOME and the XDG directories is this layer's own choice
TEST(Shell, SpecialAndKnownFoldersFollowHomeAndXdg) {
    TempDir dir;
    ScopedEnv home("HOME", dir.path());
    ScopedEnv config("XDG_CONFIG_HOME", dir.file("cfg"));
    ScopedEnv data("XDG_DATA_HOME", "relative/is/ignored");
    ScopedEnv cache("XDG_CACHE_HOME", std::nullopt);
    ScopedEnv dataDirs("XDG_DATA_DIRS", "/opt/share:/usr/share");
    const struct {
        int id;
        std::string expected;
    } cases[] = {
        {CSIDL_APPDATA, dir.file("cfg")},
        {CSIDL_LOCAL_APPDATA, dir.file(".local/share")},
        {CSIDL_FONTS, dir.file(".local/share/fonts")},
        {CSIDL_INTERNET_CACHE, dir.file(".cache")},
        {CSIDL_PERSONAL, dir.file("Documents")},
        {CSIDL_DESKTOPDIRECTORY, dir.file("Desktop")},
        {CSIDL_PROFILE, dir.path()},
        {CSIDL_COMMON_APPDATA, "/opt/share"},
        {CSIDL_PROGRAM_FILES, "/usr/local"},
    };
    WCHAR path[MAX_PATH];
    for (const auto& c : cases) {
        ASSERT_TRUE(SHGetSpecialFolderPathW(nullptr, path, c.id, FALSE)) << c.id;
        EXPECT_EQ(std::u16string(path), Win(c.expected)) << c.id;
    }
    EXPECT_FALSE(Exists(dir.file("Documents")));
    ASSERT_TRUE(SHGetSpecialFolderPathW(nullptr, path, CSIDL_PERSONAL | CSIDL_FLAG_CREATE, FALSE));
    EXPECT_TRUE(Exists(dir.file("Documents")));
    EXPECT_FALSE(SHGetSpecialFolderPathW(nullptr, path, CSIDL_STARTUP, FALSE));
    char narrow[MAX_PATH];
    ASSERT_TRUE(SHGetSpecialFolderPathA(nullptr, narrow, CSIDL_APPDATA, TRUE));
    EXPECT_TRUE(Exists(dir.file("cfg")));

    PWSTR known = nullptr;
    ASSERT_EQ(SHGetKnownFolderPath(FOLDERID_Music, KF_FLAG_CREATE, nullptr, &known), S_OK);
    EXPECT_EQ(std::u16string(known), Win(dir.file("Music")));
    EXPECT_TRUE(Exists(dir.file("Music")));
    CoTaskMemFree(known);
}
#endif

TEST(Shell, DesktopFolderParsesPathsIntoItemLists) {
    TempDir dir;
    WriteFile(dir.file("doc.pdf"), "%PDF");
    IShellFolder* desktop = nullptr;
    ASSERT_EQ(SHGetDesktopFolder(&desktop), S_OK);
    IMalloc* allocator = nullptr;
    ASSERT_EQ(SHGetMalloc(&allocator), S_OK);

    std::u16string name = Win(dir.file("doc.pdf"));
    ULONG eaten = 0;
    LPITEMIDLIST list = nullptr;
    ASSERT_EQ(desktop->ParseDisplayName(nullptr, nullptr, name.data(), &eaten, &list, nullptr), S_OK);
    // Wine leaves the count of characters parsed at 0.
    if (!zeltest::RunningUnderWine()) {
        EXPECT_EQ(eaten, name.size());
    }
    WCHAR path[MAX_PATH];
    ASSERT_TRUE(SHGetPathFromIDListW(list, path));
    EXPECT_EQ(std::u16string(path), Win(dir.file("doc.pdf")));

    // The record is asked of the folder that holds the item.
    IShellFolder* parent = nullptr;
    LPCITEMIDLIST item = nullptr;
    ASSERT_EQ(SHBindToParent(list, kIShellFolder, reinterpret_cast<void**>(&parent), &item), S_OK);
    WIN32_FIND_DATAW found{};
    EXPECT_EQ(SHGetDataFromIDListW(parent, item, SHGDFIL_FINDDATA, &found, sizeof found), S_OK);
    EXPECT_EQ(std::u16string(found.cFileName), u"doc.pdf");
    EXPECT_EQ(found.nFileSizeLow, 4u);
    EXPECT_EQ(SHGetDataFromIDListW(parent, item, SHGDFIL_FINDDATA, &found, sizeof found - 1), E_INVALIDARG);
    parent->Release();

    SHFILEINFOW info{};
    EXPECT_EQ(SHGetFileInfoW(reinterpret_cast<LPCWSTR>(list), 0, &info, sizeof info,
                             SHGFI_PIDL | SHGFI_DISPLAYNAME | SHGFI_TYPENAME),
              1u);
    // Wine names the type of an extension without a program ".pdf file", Windows "PDF File".
    if (!zeltest::RunningUnderWine()) {
        EXPECT_EQ(std::u16string(info.szTypeName), u"PDF File");
    }
    allocator->Free(list);

    std::u16string missing = Win(dir.file("nothing"));
    list = reinterpret_cast<LPITEMIDLIST>(1);
    EXPECT_EQ(desktop->ParseDisplayName(nullptr, nullptr, missing.data(), nullptr, &list, nullptr),
              static_cast<HRESULT>(0x80070002L));
    EXPECT_EQ(list, nullptr);
    EXPECT_FALSE(SHGetPathFromIDListW(nullptr, path));
    // The empty list names the desktop.
    const USHORT empty = 0;
    EXPECT_TRUE(SHGetPathFromIDListW(reinterpret_cast<LPCITEMIDLIST>(&empty), path));
    WCHAR desktopPath[MAX_PATH];
    ASSERT_TRUE(SHGetSpecialFolderPathW(nullptr, desktopPath, CSIDL_DESKTOPDIRECTORY, FALSE));
    EXPECT_EQ(std::u16string(path), desktopPath);
}

TEST(Shell, FileInfoNamesTypesWithoutIcons) {
    TempDir dir;
    const struct {
        const char16_t* path;
        DWORD attributes;
        const char16_t* display;
        const char16_t* type;
    } cases[] = {
        {u"c:\\x\\Report.final.docx", FILE_ATTRIBUTE_NORMAL, u"Report.final.docx", u"DOCX File"},
        {u"c:\\x\\README", FILE_ATTRIBUTE_NORMAL, u"README", u"File"},
        {u"c:\\x\\folder.d", FILE_ATTRIBUTE_DIRECTORY, u"folder.d", u"File folder"},
    };
    for (const auto& c : cases) {
        SHFILEINFOW info{};
        info.iIcon = 7;
        EXPECT_EQ(SHGetFileInfoW(c.path, c.attributes, &info, sizeof info,
                                 SHGFI_USEFILEATTRIBUTES | SHGFI_DISPLAYNAME | SHGFI_TYPENAME | SHGFI_ICON),
                  1u);
        EXPECT_EQ(std::u16string(info.szDisplayName), c.display);
        // Wine writes ".docx file" and "Folder" where Windows writes "DOCX File" and "File folder".
        if (!zeltest::RunningUnderWine()) {
            EXPECT_EQ(std::u16string(info.szTypeName), c.type);
        }
#ifndef _WIN32  // this system has no icons: the call answers without one
        EXPECT_EQ(info.hIcon, nullptr);
        EXPECT_EQ(info.iIcon, 0);
#endif
    }
    SHFILEINFOA narrow{};
    EXPECT_EQ(SHGetFileInfoA(ZelPlatformWideToAnsi(Win(dir.file("gone.txt")).c_str()).c_str(), 0, &narrow,
                             sizeof narrow, SHGFI_TYPENAME),
              0u);
    EXPECT_EQ(SHGetFileInfoA(ZelPlatformWideToAnsi(Win(dir.path()).c_str()).c_str(), 0, &narrow, sizeof narrow,
                             SHGFI_TYPENAME | SHGFI_ATTRIBUTES),
              1u);
    if (!zeltest::RunningUnderWine()) {
        EXPECT_STREQ(narrow.szTypeName, "File folder");
    }

#ifndef _WIN32  // the settings are the user's on Windows; this layer answers fixed ones
    SHELLFLAGSTATE state{};
    state.fShowAllObjects = 1;
    SHGetSettings(&state, SSF_SHOWEXTENSIONS | SSF_SHOWALLOBJECTS);
    EXPECT_TRUE(state.fShowExtensions);
    EXPECT_FALSE(state.fShowAllObjects);
#endif
}

TEST(Shell, ExecuteRunsProgramsWithTheirParameters) {
    TempDir dir;
    std::filesystem::create_directory(dir.file("work"));
    const std::u16string work = Win(dir.file("work"));
    // The probe writes its arguments into "out" in the directory it was started in.
    HINSTANCE result = ShellExecuteW(nullptr, u"open", Win(ZEL_TEST_PROBE_PATH).c_str(),
                                     u"args out one \"two words\" a\\\"b", work.c_str(), SW_HIDE);
    EXPECT_GT(reinterpret_cast<INT_PTR>(result), 32);
    for (int i = 0; i < 500 && !Exists(dir.file("work/out")); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(ReadFile(dir.file("work/out")), "one|two words|a\"b|");

    EXPECT_EQ(reinterpret_cast<INT_PTR>(ShellExecuteW(nullptr, nullptr, Win(dir.file("none")).c_str(), nullptr,
                                                      nullptr, SW_SHOW)),
              SE_ERR_FNF);
    EXPECT_EQ(reinterpret_cast<INT_PTR>(ShellExecuteA(nullptr, "print", "x", nullptr, nullptr, SW_SHOW)), SE_ERR_FNF);
#ifndef _WIN32  // Windows opens text files with a program of its own
    ScopedEnv path("PATH", dir.file("work"));  // no opener to hand a document to
    WriteFile(dir.file("notes.txt"), "n");
    EXPECT_EQ(reinterpret_cast<INT_PTR>(ShellExecuteW(nullptr, u"open", Win(dir.file("notes.txt")).c_str(), nullptr,
                                                      nullptr, SW_SHOW)),
              SE_ERR_NOASSOC);
    EXPECT_EQ(reinterpret_cast<INT_PTR>(ShellExecuteW(nullptr, u"print", Win(dir.file("notes.txt")).c_str(), nullptr,
                                                      nullptr, SW_SHOW)),
              SE_ERR_NOASSOC);
#endif
}

}  // namespace
