// Finding, loading and freeing a module's resource file: m.KOR beside m.dll, in the user's
// language or one of the fallbacks.
#include <zel/frame.h>
#include <zel/paths.h>

#include "frame/resource_lookup.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

// After the user's language, in this order.
constexpr LCID kFallbackLanguages[] = {0x400, 0x409, 0x412};

constexpr DWORD kSublanguageMask = 0xFFFF03FF;
constexpr DWORD kFirstSublanguage = 0x400;

// base "." extension into name when it exists. A name longer than a path holds is no file here.
bool ProbeName(const WCHAR* base, const WCHAR* extension, WCHAR* name) {
    WCHAR candidate[MAX_PATH];
    const int length = _snwprintf(candidate, MAX_PATH, u"%s.%s", base, extension);
    if (length < 0 || length >= MAX_PATH) return false;
    if (u__waccess(candidate, 0) != 0) return false;
    wcscpy(name, candidate);
    return true;
}

}  // namespace

bool ZelResourceBaseName(HMODULE module, const WCHAR* name, WCHAR* base) {
    WCHAR file[MAX_PATH] = {};
    if (!ZelGetModuleFileName(module, file, MAX_PATH)) return false;
    WCHAR drive[_MAX_DRIVE], directory[_MAX_DIR], title[_MAX_FNAME], extension[_MAX_EXT];
    _wsplitpath(file, drive, directory, title, extension);
    // A shared object is loaded under a name with its version behind the extension
    // (libZelBL70KT.so.0): its title ends before ".so", as the title of m.dll ends before ".dll".
    if (WCHAR* version = wcsstr(title, u".so.")) *version = 0;
    const size_t length = wcslen(title);
    if (length > 3 && wcscmp(title + length - 3, u".so") == 0 && extension[0]) title[length - 3] = 0;
    _wmakepath(base, drive, directory, name && name[0] ? name : title, nullptr);
    return true;
}

BOOL ZelProbeResourceFile(LCID language, const WCHAR* base, WCHAR* name) {
    WCHAR extension[MAX_PATH] = {};
    if (ZelReadResourceExt(static_cast<LANGID>(language), extension) && extension[0] &&
        ProbeName(base, extension, name))
        return TRUE;
    extension[0] = 0;
    ZelGetResourceExt(static_cast<LANGID>(language), extension);
    if (!extension[0]) return FALSE;
    return ProbeName(base, extension, name) ? TRUE : FALSE;
}

BOOL ZelProbeResourceLanguage(LCID language, const WCHAR* base, WCHAR* name) {
    if (ZelProbeResourceFile(language, base, name)) return TRUE;
    if (((language >> 10) & 0x3F) == 1) return FALSE;
    return ZelProbeResourceFile((language & kSublanguageMask) | kFirstSublanguage, base, name);
}

BOOL ZelGetResourcePath(HMODULE module, WCHAR* name) {
    if (!name) return FALSE;
    WCHAR base[MAX_PATH] = {};
    if (ZelResourceBaseName(module, name, base)) {
        if (ZelProbeResourceLanguage(ZelGetUserLCID(), base, name)) return TRUE;
        for (LCID language : kFallbackLanguages)
            if (ZelProbeResourceLanguage(language, base, name)) return TRUE;
    }
    ZelSetResourceMissingError(module);
    return FALSE;
}

void ZelSetResourceMissingError(HMODULE module) {
    WCHAR fileName[MAX_PATH] = {};
    ZelGetModuleFileName(module, fileName, MAX_PATH);
    fileName[MAX_PATH - 1] = 0;
    ZelSetErrorEx(ZEL_ERROR_RESOURCE_MISSING, 1, fileName, static_cast<DWORD>((wcslen(fileName) + 1) * sizeof(WCHAR)));
}

HMODULE ZelLoadResource(const WCHAR* name) { return ZelLoadLibrary(name); }

BOOL ZelFreeResource(HMODULE resource) { return FreeLibrary(resource); }
