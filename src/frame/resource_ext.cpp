// The extension of a resource file for a language: an installation may name it per language (and
// per application) below "ResDllExt"; otherwise it is the system's abbreviation of the language.
#include <zel/frame.h>
#include <zel/settings.h>

#include "frame/own_module.h"
#include "frame/resource_lookup.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

constexpr REGSAM kReadAccess = 0x20019;
constexpr LANGID kLibraryLanguage = 0xFFFF;
constexpr LCID kDefaultLanguage = 0x400;
constexpr LCID kEnglish = 0x409;
constexpr LCID kKorean = 0x412;

// The last answer of ZelReadResourceExt.
LANGID cachedLanguage = 0;
WCHAR cachedExtension[MAX_PATH];

// The library's own module: its record's handle once the attach has set it.
HMODULE LibraryModule() {
    return g_zelOwnModule.moduleHandle ? g_zelOwnModule.moduleHandle : ZelPlatformOwnModule();
}

// The language in which the library's own resource file exists; Korean when none is found.
LCID LibraryLanguage() {
    WCHAR base[MAX_PATH] = {};
    if (!ZelResourceBaseName(LibraryModule(), u"", base)) return kKorean;
    WCHAR found[MAX_PATH];
    const LCID user = ZelGetUserLCID();
    // A user language that reads as "the library's language" would ask this question again.
    if (static_cast<LANGID>(user) != kLibraryLanguage && ZelProbeResourceLanguage(user, base, found)) return user;
    for (LCID language : {kDefaultLanguage, kEnglish})
        if (ZelProbeResourceLanguage(language, base, found)) return language;
    return kKorean;
}

}  // namespace

BOOL ZelReadResourceExt(LANGID language, WCHAR* extension) {
    if (language == cachedLanguage && cachedExtension[0]) {
        wcscpy(extension, cachedExtension);
        return TRUE;
    }
    // The application's name has at most 259 characters, so the key always fits.
    WCHAR key[2 * MAX_PATH];
    const WCHAR* application = ZelGetAppInternalName();
    if (application[0])
        _snwprintf(key, 2 * MAX_PATH, u"Software\\Morvalis\\Shared\\Common\\ResDllExt\\%s\\", application);
    else
        wcscpy(key, u"Software\\Morvalis\\Shared\\Common\\ResDllExt\\");
    WCHAR valueName[16];
    _snwprintf(valueName, 16, u"%d", static_cast<int>(language));

    HKEY handle = nullptr;
    if (ZelRegOpenKeyEx(HKEY_LOCAL_MACHINE, key, 0, kReadAccess, &handle, 0) != ERROR_SUCCESS) return FALSE;
    DWORD size = MAX_PATH;
    DWORD length = MAX_PATH;
    WCHAR text[MAX_PATH] = {};
    if (ZelRegQueryValueEx(handle, valueName, nullptr, nullptr, nullptr, &size, 0) != ERROR_SUCCESS ||
        ZelRegQueryString(handle, valueName, nullptr, nullptr, text, &length, 0) != ERROR_SUCCESS) {
        ZelRegCloseKey(handle, 0);
        return FALSE;
    }
    ZelRegCloseKey(handle, 0);
    text[MAX_PATH - 1] = 0;
    wcscpy(extension, text);
    cachedLanguage = language;
    wcscpy(cachedExtension, text);
    return TRUE;
}

void ZelGetResourceExt(LANGID language, WCHAR* extension) {
    if (!extension) return;
    LCID id = language;
    if (language == kLibraryLanguage) id = LibraryLanguage();
    WCHAR abbreviation[4] = {};
    if (ZelGetLocaleInfo(id, LOCALE_SABBREVLANGNAME, abbreviation, 4)) {
        abbreviation[3] = 0;
        _wcsupr(abbreviation);
        wcscpy(extension, abbreviation);
    } else {
        wcscpy(extension, u"KOR");
    }
}

void ZelForgetResourceExt() {
    cachedLanguage = 0;
    cachedExtension[0] = 0;
}
