#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cerrno>
#include <cmath>
#include <thread>
#include <string>

#include "platform/win32.h"
#include "support/support.h"

using zeltest::TempDir;

namespace {

std::u16string Wide(const std::string& text) { return std::u16string(text.begin(), text.end()); }

bool EndsWith(const std::u16string& text, const std::u16string& tail) {
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

TEST(Modules, LoadFindAndFreeASharedObject) {
    HMODULE math = LoadLibraryA("libm.so.6");
    ASSERT_NE(math, nullptr);
    auto cosine = reinterpret_cast<double (*)(double)>(reinterpret_cast<void (*)()>(GetProcAddress(math, "cos")));
    ASSERT_NE(cosine, nullptr);
    EXPECT_DOUBLE_EQ(cosine(0.0), 1.0);
    EXPECT_EQ(GetProcAddress(math, "no_such_function_here"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));

    EXPECT_EQ(GetModuleHandleA("libm.so"), math);
    EXPECT_EQ(GetModuleHandleW(u"LIBM.SO.6"), math);  // names are case-blind
    WCHAR name[MAX_PATH];
    DWORD length = GetModuleFileNameW(math, name, MAX_PATH);
    ASSERT_GT(length, 0u);
    std::u16string path(name, length);
    EXPECT_EQ(path[0], u'\\');
    EXPECT_EQ(path.find(u'/'), std::u16string::npos);
    EXPECT_TRUE(EndsWith(path, u"\\libm.so.6"));
    EXPECT_TRUE(FreeLibrary(math));
}

TEST(Modules, MissingModulesAndBadHandles) {
    EXPECT_EQ(LoadLibraryW(u"c:\\no\\such\\module.so"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(LoadLibraryW(nullptr), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(GetModuleHandleW(u"surely-not-loaded.so"), nullptr);
    EXPECT_FALSE(FreeLibrary(nullptr));
    EXPECT_FALSE(FreeLibrary(reinterpret_cast<HMODULE>(0x1230)));
    WCHAR name[8];
    EXPECT_EQ(GetModuleFileNameW(reinterpret_cast<HMODULE>(0x1230), name, 8), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
}

TEST(Modules, ExecutableNameAndShortBuffers) {
    WCHAR name[MAX_PATH];
    DWORD length = GetModuleFileNameW(nullptr, name, MAX_PATH);
    ASSERT_GT(length, 0u);
    EXPECT_TRUE(EndsWith(std::u16string(name, length), u"\\zel_test_platform"));
    EXPECT_EQ(GetModuleHandleW(nullptr), ZelPlatformOwnModule());  // linked into this program

    WCHAR shortName[6] = {u'x', u'x', u'x', u'x', u'x', u'x'};
    EXPECT_EQ(GetModuleFileNameW(nullptr, shortName, 5), 5u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(std::u16string(shortName), std::u16string(name, 4));
    EXPECT_EQ(shortName[5], u'x');
    char narrow[5];
    EXPECT_EQ(GetModuleFileNameA(nullptr, narrow, 5), 5u);
    EXPECT_EQ(std::string(narrow), std::string(name, name + 4));
    EXPECT_EQ(GetModuleFileNameW(nullptr, name, 0), 0u);
}

TEST(Modules, FilesThatAreNotObjectsLoadAsData) {
    TempDir dir;
    zeltest::WriteFile(dir.file("m.KOR"), "string tables");
    const std::u16string path = Wide(dir.file("m.KOR"));
    HMODULE resource = LoadLibraryW(path.c_str());
    ASSERT_NE(resource, nullptr);
    const ZelDataModule* data = ZelPlatformDataModule(resource);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(data->bytes), data->size), "string tables");
    EXPECT_EQ(GetProcAddress(resource, "cos"), nullptr);
    EXPECT_TRUE(FreeLibrary(resource));
    EXPECT_EQ(ZelPlatformDataModule(resource), nullptr);
    EXPECT_FALSE(FreeLibrary(resource));

    // An object file asked for as data is read, not mapped.
    HMODULE asData = LoadLibraryExA("libm.so.6", nullptr, LOAD_LIBRARY_AS_DATAFILE);
    if (asData) {  // found beside us only when the system keeps it there; the search is the loader's
        EXPECT_NE(ZelPlatformDataModule(asData), nullptr);
        FreeLibrary(asData);
    }
    EXPECT_EQ(ZelPlatformDataModule(nullptr), nullptr);
}

TEST(Modules, AnotherModulesNameHasABaseWithoutExtension) {
    // A name without an extension is looked for with the library extension as well.
    TempDir dir;
    const std::string source = ZEL_TEST_LIBRARY_PATH;
    const std::u16string bare = Wide(source.substr(0, source.size() - 3));  // without ".so"
    HMODULE library = LoadLibraryW(bare.c_str());
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_NE(GetProcAddress(library, "_Z14LoadZelBL70DLLv"), nullptr);
    EXPECT_EQ(GetModuleHandleA("libZelBL70KT"), library);
    FreeLibrary(library);
}

TEST(ThreadSlots, ValuesArePerThreadAndSlotsAreReused) {
    DWORD slot = TlsAlloc();
    ASSERT_NE(slot, TLS_OUT_OF_INDEXES);
    int here = 0, there = 0;
    EXPECT_TRUE(TlsSetValue(slot, &here));
    std::thread([&] {
        EXPECT_EQ(TlsGetValue(slot), nullptr);
        TlsSetValue(slot, &there);
        EXPECT_EQ(TlsGetValue(slot), &there);
    }).join();
    EXPECT_EQ(TlsGetValue(slot), &here);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(TlsFree(slot));
    EXPECT_FALSE(TlsFree(slot));
    EXPECT_EQ(TlsGetValue(slot), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_FALSE(TlsSetValue(slot, &here));
    EXPECT_EQ(TlsAlloc(), slot);
    TlsFree(slot);
}

TEST(Errors, PosixErrorsBecomeWin32Codes) {
    EXPECT_EQ(ZelPlatformErrorFromErrno(ENOENT), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(ZelPlatformErrorFromErrno(ENOTDIR), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(ZelPlatformErrorFromErrno(EACCES), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(ZelPlatformErrorFromErrno(ENOSPC), static_cast<DWORD>(ERROR_DISK_FULL));
    EXPECT_EQ(ZelPlatformErrorFromErrno(EEXIST), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
    EXPECT_EQ(ZelPlatformErrorFromErrno(0), static_cast<DWORD>(ERROR_SUCCESS));
    errno = EBADF;
    EXPECT_EQ(ZelPlatformSetLastErrorFromErrno(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(Paths, WindowsFormMeetsTheSystemsForm) {
    {
        zeltest::ScopedEnv noDrive("ZEL_DRIVE_C", std::nullopt);
        EXPECT_EQ(ZelPlatformPathToSystem(u"c:\\suite\\m.ini"), "/suite/m.ini");
        EXPECT_EQ(ZelPlatformPathToSystem(u"C:"), "/");
    }
    zeltest::ScopedEnv drive("ZEL_DRIVE_D", "/srv/d/");
    EXPECT_EQ(ZelPlatformPathToSystem(u"d:\\x\\y"), "/srv/d/x/y");
    EXPECT_EQ(ZelPlatformPathToSystem(u"D:x"), "/srv/d/x");
    EXPECT_EQ(ZelPlatformPathToSystem(u"rel\\dir/file"), "rel/dir/file");
    EXPECT_EQ(ZelPlatformPathToSystem(u"\\\\server\\share"), "//server/share");
    EXPECT_EQ(ZelPlatformPathToSystem(u"c\\:x"), "c/:x");  // a colon not after a letter is a name
    EXPECT_EQ(ZelPlatformPathToSystem(u"\\자료\\日本.txt"), "/자료/日本.txt");
    EXPECT_EQ(ZelPlatformPathToSystem(nullptr), "");
    EXPECT_EQ(ZelPlatformPathFromSystem("/home/자료/a.txt"), u"\\home\\자료\\a.txt");
    EXPECT_EQ(ZelPlatformPathFromSystem(static_cast<const char*>(nullptr)), u"");
}

}  // namespace
