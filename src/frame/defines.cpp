// Symbol defines: names that an installation, an application or a language declares, kept in one
// list ";name1;name2;...;" built at the first question. The layout direction of the library's
// language is the other switch here.
#include <mutex>

#include <zel/codetables.h>
#include <zel/frame.h>
#include <zel/settings.h>

#include "frame/own_module.h"
#include "frame/resource_lookup.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

constexpr REGSAM kReadAccess = 0x20019;
constexpr UINT kLanguageSymbols = 102;
constexpr UINT kLayoutDirection = 111;
constexpr WCHAR kDefineKey[] = u"Software\\Morvalis\\Shared\\Common\\SymbolDefine\\";

// The list holds 259 characters. A name that doesn't fit whole, with its ";", is left out:
// a cut name would define a different symbol.
WCHAR defineList[MAX_PATH];
// Two first questions at once must not build the list together.
std::mutex listLock;

int direction = -1;

void Append(const WCHAR* name) {
    const size_t used = wcslen(defineList);
    const size_t length = wcslen(name);
    if (used + length + 1 > MAX_PATH - 1) return;
    wcscpy(defineList + used, name);
    wcscpy(defineList + used + length, u";");
}

// The names of the values of one key of the system's registry.
void AppendValueNames(const WCHAR* key) {
    HKEY handle = nullptr;
    if (ZelRegOpenKeyEx(HKEY_LOCAL_MACHINE, key, 0, kReadAccess, &handle, 0) != ERROR_SUCCESS) return;
    DWORD count = 0;
    if (RegQueryInfoKeyA(handle, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count, nullptr, nullptr,
                         nullptr, nullptr) == ERROR_SUCCESS) {
        for (DWORD index = 0; index < count; ++index) {
            char name[MAX_PATH] = {};
            DWORD nameSize = MAX_PATH;
            if (RegEnumValueA(handle, index, name, &nameSize, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
                continue;
            name[MAX_PATH - 1] = 0;
            WCHAR wide[MAX_PATH] = {};
            ZelAnsiToUnicode(0, CP_ACP, name, -1, wide, MAX_PATH);
            wide[MAX_PATH - 1] = 0;
            if (wide[0]) Append(wide);
        }
    }
    ZelRegCloseKey(handle, 0);
}

void BuildList() {
    wcscpy(defineList, u";");
    AppendValueNames(kDefineKey);
    const WCHAR* application = ZelGetAppInternalName();
    if (application[0]) {
        WCHAR key[2 * MAX_PATH];
        _snwprintf(key, 2 * MAX_PATH, u"%s%s\\", kDefineKey, application);
        AppendValueNames(key);
    }
    WCHAR symbols[MAX_PATH];
    ZelLoadStringW(g_zelOwnModule.resourceHandle, kLanguageSymbols, symbols, MAX_PATH);
    Append(symbols);
}

}  // namespace

BOOL ZelIsDefined(const WCHAR* name) {
    if (!name) return FALSE;
    {
        std::lock_guard<std::mutex> hold(listLock);
        if (!defineList[0]) BuildList();
    }
    // Only the first occurrence counts, also when it is the tail of a longer name.
    const WCHAR* found = wcsstr(defineList, name);
    if (!found) return FALSE;
    const bool startsName = found == defineList || found[-1] == u';';
    const WCHAR behind = found[wcslen(name)];
    return startsName && (behind == u';' || behind == 0) ? TRUE : FALSE;
}

BOOL ZelLayoutIsR2L() {
    if (direction != -1) return direction == 1 ? TRUE : FALSE;
    if (!g_zelOwnModule.resourceHandle) return FALSE;
    WCHAR text[MAX_PATH];
    const int length = ZelLoadStringW(g_zelOwnModule.resourceHandle, kLayoutDirection, text, MAX_PATH);
    direction = length > 0 && text[0] == u'1' ? 1 : 0;
    return direction == 1 ? TRUE : FALSE;
}

void ZelForgetDefines() {
    // A forked child may stand in for a fresh process: the list and the direction are asked anew.
    std::lock_guard<std::mutex> hold(listLock);
    defineList[0] = 0;
    direction = -1;
}
