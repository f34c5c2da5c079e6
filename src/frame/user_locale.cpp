// The user's language and code page: the suite's own setting per application, then for all
// applications, then (for the language) the system's. Each is read once per process.
#include <cstring>
#include <string>
#include <vector>

#include <zel/codetables.h>
#include <zel/frame.h>
#include <zel/paths.h>
#include <zel/settings.h>

#include "frame/resource_lookup.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

constexpr DWORD kUnknownLanguage = 0xFFFFFFFF;
constexpr REGSAM kReadAccess = 0x20019;
constexpr WCHAR kUserLocalesKey[] = u"Software\\Morvalis\\Global Settings\\User Locales\\";

DWORD userLanguage = kUnknownLanguage;
DWORD userCodePage = 0;
WCHAR appInternalName[MAX_PATH];

// The REG_DWORD value of key; false when the key or the value is missing or of another type.
bool ReadDword(const WCHAR* key, const WCHAR* valueName, DWORD* value) {
    HKEY handle = nullptr;
    if (ZelRegOpenKeyEx(HKEY_CURRENT_USER, key, 0, kReadAccess, &handle, 0) != ERROR_SUCCESS) return false;
    DWORD type = 0;
    DWORD data = 0;
    DWORD size = sizeof data;
    const bool read = ZelRegQueryValueEx(handle, valueName, nullptr, &type, reinterpret_cast<BYTE*>(&data), &size,
                                         0) == ERROR_SUCCESS &&
                      type == REG_DWORD;
    ZelRegCloseKey(handle, 0);
    if (read) *value = data;
    return read;
}

// The application's own key: the common key followed by the executable's title.
void ApplicationKey(WCHAR* key) {
    WCHAR file[MAX_PATH] = {};
    ZelGetModuleFileName(nullptr, file, MAX_PATH);
    WCHAR title[_MAX_FNAME] = {};
    _wsplitpath(file, nullptr, nullptr, title, nullptr);
    // The title has at most 255 characters, so the key always fits.
    _snwprintf(key, 2 * MAX_PATH, u"%s%s", kUserLocalesKey, title);
}

// The value from the application's key, else from the common key.
bool ReadUserSetting(const WCHAR* valueName, DWORD* value) {
    WCHAR key[2 * MAX_PATH];
    ApplicationKey(key);
    return ReadDword(key, valueName, value) || ReadDword(kUserLocalesKey, valueName, value);
}

}  // namespace

LCID ZelGetUserLCID() {
    if (userLanguage != kUnknownLanguage) return userLanguage;
    DWORD value = kUnknownLanguage;
    if (ReadUserSetting(u"LCID", &value)) userLanguage = value;
    if (userLanguage == kUnknownLanguage) userLanguage = GetUserDefaultLCID();
    return userLanguage;
}

UINT ZelGetUserCP() {
    if (userCodePage != 0) return userCodePage;
    DWORD value = 0;
    if (ReadUserSetting(u"CODE", &value)) userCodePage = value;
    return userCodePage;
}

const WCHAR* ZelGetAppInternalName() {
    if (appInternalName[0]) return appInternalName;
    char file[MAX_PATH] = {};
    if (!GetModuleFileNameA(nullptr, file, MAX_PATH)) return appInternalName;
    DWORD handle = 0;
    const DWORD size = GetFileVersionInfoSizeA(file, &handle);
    if (size == 0) return appInternalName;
    std::vector<BYTE> block(size);
    void* value = nullptr;
    UINT length = 0;
    if (!GetFileVersionInfoA(file, handle, size, block.data()) ||
        !VerQueryValueA(block.data(), "\\StringFileInfo\\040904b0\\InternalName", &value, &length) || !value ||
        length == 0)
        return appInternalName;
    // The value need not end within the block: convert only what it says it holds.
    std::string text(static_cast<const char*>(value), strnlen(static_cast<const char*>(value), length));
    ZelAnsiToUnicode(0, CP_ACP, text.c_str(), -1, appInternalName, MAX_PATH);
    appInternalName[MAX_PATH - 1] = 0;
    return appInternalName;
}

void ZelForgetLocaleCaches() {
    userLanguage = kUnknownLanguage;
    userCodePage = 0;
    appInternalName[0] = 0;
    ZelForgetResourceExt();
}
