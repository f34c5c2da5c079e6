// A Win32-style application of the suite on the installed library: it registers a module and routes
// an error to it, finds files by a mask and reads one, reads a setting of the system registry,
// loads a string of the library, loads a component library and calls it, and gives back every
// handle and block that it was given. Run from a directory that holds data\a.txt ("alpha"),
// data\b.txt and data\c.dat; the argument is the component library's path.
#include <zel/zel.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

int failures = 0;
#define CHECK(condition) \
    ((condition) ? void() : (std::fprintf(stderr, "consumer.cpp:%d: %s\n", __LINE__, #condition), ++failures, void()))

LONG Describe(ZelModuleDef*, LONG, LONG request, ZelErrorDetail* detail, DWORD) {
    if (request == ZEL_SUBMODULE_DESCRIBE) std::memcpy(detail->text, u"ok", sizeof u"ok");
    return 0;
}
ZelSubModuleEntry rows[] = {{1, Describe}, {-1, nullptr}};
ZelModuleDef module = {u"Consumer", nullptr, nullptr, nullptr, ZEL_MODULE_ID_ASSIGNED, 0, rows};

void ModuleAndError() {
    CHECK(ZelInitModule(&module));
    ZelSetError(ZEL_MAKE_ERROR(module.moduleId, 1, 3));
    ZelErrorDetail detail;
    CHECK(ZelGetErrorDetail(&detail) && detail.text[0] == u'o');
    ZelExitModule(&module);
}

// Every search shape counts the two .txt files and ends.
void Searches() {
    int found = 0;
    WIN32_FIND_DATAW wide;
    HANDLE search = ZelFindFirstFileW(u"data\\*.TXT", &wide);
    CHECK(search != INVALID_HANDLE_VALUE);
    if (search != INVALID_HANDLE_VALUE) {
        do ++found;
        while (FindNextFileW(search, &wide));
        CHECK(GetLastError() == ERROR_NO_MORE_FILES);
        CHECK(FindClose(search));
    }
    WIN32_FIND_DATAA narrow;
    search = ZelFindFirstFile(u"data\\?.txt", &narrow);
    CHECK(search != INVALID_HANDLE_VALUE);
    if (search != INVALID_HANDLE_VALUE) {
        do ++found;
        while (FindNextFileA(search, &narrow));
        CHECK(FindClose(search));
    }
    struct _finddata_t record;
    intptr_t handle = u__wfindfirst(u"data\\*.txt", &record);
    CHECK(handle != -1);
    if (handle != -1) {
        do ++found;
        while (_findnext(handle, &record) == 0);
        CHECK(_findclose(handle) == 0);
    }
    CHECK(found == 6);
}

void Reads() {
    SetLastError(0);
    CHECK(ZelCreateFile(u"data\\none.txt", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr) ==
          INVALID_HANDLE_VALUE);
    CHECK(GetLastError() == ERROR_FILE_NOT_FOUND);

    HANDLE file = ZelCreateFile(u"data\\a.txt", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr);
    CHECK(file != INVALID_HANDLE_VALUE);
    char text[16] = {};
    DWORD read = 0;
    CHECK(GetFileSize(file, nullptr) == 5);
    CHECK(SetFilePointer(file, 2, nullptr, FILE_BEGIN) == 2);
    CHECK(ReadFile(file, text, sizeof text, &read, nullptr) && read == 3 && std::strcmp(text, "pha") == 0);
    CHECK(ZelLockFile(file, 0, 0, 5, 0) && UnlockFile(file, 0, 0, 5, 0));
    CHECK(CloseHandle(file));
    CHECK(!CloseHandle(file) && GetLastError() == ERROR_INVALID_HANDLE);

    int fd = u__wopen(u"data\\a.txt", _O_RDONLY | _O_BINARY);
    CHECK(fd >= 0);
    CHECK(_filelength(fd) == 5 && _lseek(fd, 1, 0) == 1);
    CHECK(_read(fd, text, sizeof text) == 4 && std::memcmp(text, "lpha", 4) == 0);
    CHECK(_close(fd) == 0);
}

// A value written through the adapters comes back through the system's calls.
void Registry() {
    HKEY key = nullptr;
    CHECK(ZelRegCreateKeyEx(HKEY_CURRENT_USER, u"Software\\Consumer\\Settings", 0, nullptr, 0, KEY_ALL_ACCESS,
                            nullptr, &key, nullptr) == ERROR_SUCCESS);
    static const char greeting[] = "hello";
    CHECK(ZelRegSetValueEx(key, u"Greeting", 0, REG_SZ, reinterpret_cast<const BYTE*>(greeting), sizeof greeting) ==
          ERROR_SUCCESS);
    CHECK(RegCloseKey(key) == ERROR_SUCCESS);

    CHECK(ZelRegOpenKeyEx(HKEY_CURRENT_USER, u"Software\\Consumer", 0, KEY_READ, &key) == ERROR_SUCCESS);
    DWORD subKeys = 0, values = 0;
    CHECK(RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &subKeys, nullptr, nullptr, &values, nullptr, nullptr,
                           nullptr, nullptr) == ERROR_SUCCESS);
    CHECK(subKeys == 1 && values == 0);
    WCHAR name[MAX_PATH];
    CHECK(RegEnumKeyW(key, 0, name, MAX_PATH) == ERROR_SUCCESS && name[0] == u'S');
    CHECK(RegEnumKeyW(key, 1, name, MAX_PATH) == ERROR_NO_MORE_ITEMS);
    HKEY settings = nullptr;
    CHECK(ZelRegOpenKey(key, name, &settings) == ERROR_SUCCESS);
    char value[16] = {};
    DWORD type = 0, size = sizeof value;
    CHECK(RegQueryValueExA(settings, "Greeting", nullptr, &type, reinterpret_cast<BYTE*>(value), &size) ==
          ERROR_SUCCESS);
    CHECK(type == REG_SZ && size == sizeof greeting && std::strcmp(value, greeting) == 0);
    DWORD nameSize = MAX_PATH;
    CHECK(RegEnumValueW(settings, 0, name, &nameSize, nullptr, &type, nullptr, nullptr) == ERROR_SUCCESS);
    CHECK(nameSize == 8 && type == REG_SZ);
    CHECK(RegCloseKey(settings) == ERROR_SUCCESS && RegCloseKey(key) == ERROR_SUCCESS);
}

// The library's own record finds its resource file beside the installed library.
void Strings() {
    ZelModuleDef* own = nullptr;
    for (int position = ZelGetFirstModule(); ZelModuleDef* record = ZelGetNextModule(&position);)
        if (record->resourceHandle) own = record;
    CHECK(own != nullptr);
    WCHAR text[ZEL_ERROR_TEXT_SIZE];
    CHECK(own && ZelLoadStringExW(own, 283, text, ZEL_ERROR_TEXT_SIZE) > 10);

    HMODULE library = GetModuleHandleW(u"libZelBL70KT.so");
    CHECK(library != nullptr);
    WCHAR path[MAX_PATH] = {};
    HMODULE resource = library && ZelGetResourcePath(library, path) ? ZelLoadResource(path) : nullptr;
    CHECK(resource != nullptr);
    WCHAR again[ZEL_ERROR_TEXT_SIZE];
    CHECK(ZelLoadStringW(resource, 283, again, ZEL_ERROR_TEXT_SIZE) > 10 && std::u16string(again) == text);
    CHECK(FreeLibrary(resource));
}

void Component(const char* path) {
    std::u16string name(path, path + std::strlen(path));
    HMODULE library = ZelLoadLibrary(name.c_str());
    CHECK(library != nullptr);
    // Through the function type that converts to and from any other.
    auto answer = reinterpret_cast<int (*)()>(reinterpret_cast<void (*)()>(GetProcAddress(library, "ConsumerAnswer")));
    CHECK(answer && answer() == 42);
    CHECK(!GetProcAddress(library, "Missing") && GetLastError() == ERROR_PROC_NOT_FOUND);
    CHECK(FreeLibrary(library));
}

void Memory() {
    char* text = nullptr;
    CHECK(ZelAsciiToBase64("alpha", 5, &text) > 0 && text && std::strcmp(text, "YWxwaGE=") == 0);
    std::free(text);

    PWSTR folder = nullptr;
    CHECK(ZelSHGetKnownFolderPath(FOLDERID_LocalAppData, 0, nullptr, &folder) == S_OK && folder);
    PIDLIST_ABSOLUTE list = nullptr;
    CHECK(ZelSHGetKnownFolderIDList(FOLDERID_LocalAppData, 0, nullptr, &list) == S_OK && list);
    WCHAR path[MAX_PATH] = {};
    CHECK(ZelSHGetPathFromIDList(list, path) && folder && std::u16string(path) == folder);
    CoTaskMemFree(folder);
    IMalloc* allocator = nullptr;
    CHECK(SHGetMalloc(&allocator) == S_OK);
    allocator->Free(list);
    allocator->Release();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    ModuleAndError();
    Searches();
    Reads();
    Registry();
    Strings();
    Component(argv[1]);
    Memory();
    if (failures) return 1;
    std::puts("consumer ok");
    return 0;
}
