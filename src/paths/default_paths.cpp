// The ten paths that every part of the suite counts on, registered at process attach from the
// library's file name, the registry, the environment and fixed fallbacks. This runs before any
// code table is loaded, so 8-bit text goes through the system's conversion and not the library's.
#include "paths/default_paths.h"

#include <zel/frame.h>
#include <zel/paths.h>

#include "frame/attach_steps.h"
#include "frame/own_module.h"
#include "paths/path_table.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

constexpr char kShellFolders[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

// 8-bit text from the system as 16-bit text of at most 259 characters; longer text is refused, as
// a path row couldn't hold it.
bool FromSystem(const char* text, WCHAR* path) {
    WCHAR wide[2 * MAX_PATH];
    const int units = MultiByteToWideChar(CP_ACP, 0, text, -1, wide, 2 * MAX_PATH);
    if (units <= 0 || units > MAX_PATH) return false;
    wcscpy(path, wide);
    return true;
}

// A string value of the system's registry, read into 260 bytes.
bool ReadRegistryText(HKEY root, const char* keyName, const char* valueName, WCHAR* path) {
    HKEY key = nullptr;
    if (RegOpenKeyA(root, keyName, &key) != ERROR_SUCCESS) return false;
    char text[MAX_PATH + 1] = {};
    DWORD type = 0;
    DWORD size = MAX_PATH;
    const LONG status = RegQueryValueExA(key, valueName, nullptr, &type, reinterpret_cast<BYTE*>(text), &size);
    RegCloseKey(key);
    if (status != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ)) return false;
    return text[0] && FromSystem(text, path);
}

// The drive and directory of a module's file, with a trailing backslash.
bool ModuleDirectory(HMODULE module, WCHAR* path) {
    char file[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameA(module, file, MAX_PATH);
    WCHAR wide[MAX_PATH];
    if (length == 0 || length >= MAX_PATH || !FromSystem(file, wide)) return false;
    WCHAR drive[_MAX_DRIVE], directory[_MAX_DIR];
    _wsplitpath(wide, drive, directory, nullptr, nullptr);
    _wmakepath(path, drive, directory, nullptr, nullptr);
    return true;
}

// format with one text into path; false when the result wouldn't fit a path row.
bool Format(WCHAR* path, const WCHAR* format, const WCHAR* text) {
    const int length = _snwprintf(path, MAX_PATH, format, text);
    return length >= 0 && length < MAX_PATH;
}

// A "Shell Folders" directory followed by Morvalis.
bool SuiteFolder(HKEY root, const char* valueName, WCHAR* path) {
    WCHAR folder[MAX_PATH];
    if (!ReadRegistryText(root, kShellFolders, valueName, folder)) return false;
    const size_t length = wcslen(folder);
    return Format(path, folder[length - 1] == u'\\' ? u"%sMorvalis" : u"%s\\Morvalis", folder);
}

// An environment variable that is set, not empty and not longer than a path row holds, in the
// library's form: a value such as /home/me/tmp comes in as \home\me\tmp.
bool ReadEnvironment(const WCHAR* name, WCHAR* path) {
    const WCHAR* value = _wgetenv(name);
    if (!value || !value[0] || wcslen(value) > MAX_PATH - 1) return false;
    wcscpy(path, ZelPlatformPathFromSystem(value).c_str());
    return true;
}

bool CurrentDirectory(WCHAR* path) {
    char directory[MAX_PATH] = {};
    const DWORD length = GetCurrentDirectoryA(MAX_PATH, directory);
    return length > 0 && length < MAX_PATH && FromSystem(directory, path);
}

// "zel\\Name\\" below Zel when Zel can take files, else below Temp.
void BelowZelOrTemp(WCHAR* path, const WCHAR* format, const WCHAR* zel, const WCHAR* temp) {
    if (!(ZelIsUsableDir(zel) && Format(path, format, zel)) && !Format(path, format, temp)) path[0] = 0;
}

void Register(const WCHAR* name, WCHAR* value, bool removeBackSlash) {
    if (removeBackSlash) ZelRemoveBackSlash(value);
    ZelRegisterPath(name, value);
}

}  // namespace

BOOL ZelIsUsableDir(const WCHAR* directory) {
    if (!directory) return FALSE;
    const size_t length = wcslen(directory);
    if (length >= 3 && directory[0] == u'\\' && directory[1] == u'\\') return FALSE;
    if (length > MAX_PATH - 1) return FALSE;
    WCHAR root[MAX_PATH + 1];
    wcscpy(root, directory);
    wcscpy(root + length, u"\\");
    WCHAR* separator = wcschr(root, u'\\');
    separator[1] = 0;  // the added backslash at the latest
    if (ZelGetDriveType(root) != DRIVE_FIXED) return FALSE;
    WCHAR file[MAX_PATH];
    if (!ZelGetTempFileName(directory, u"tmp", 0, file)) return FALSE;
    ZelDeleteFile(file);
    return TRUE;
}

BOOL ZelFindSharedData(WCHAR* buffer, int size) {
    WCHAR directory[MAX_PATH];
    if (!buffer || size <= 0 ||
        !ReadRegistryText(HKEY_LOCAL_MACHINE, "Software\\Morvalis\\Shared\\Common", "SharedData Path", directory))
        return FALSE;
    WCHAR withSeparator[MAX_PATH];
    const size_t length = wcslen(directory);
    if (!Format(withSeparator, directory[length - 1] == u'\\' ? u"%s" : u"%s\\", directory)) return FALSE;
    WCHAR fontInfo[MAX_PATH];
    if (!Format(fontInfo, u"%sFonts\\FontInfo.dat", withSeparator) || !ZelFileExist(fontInfo)) return FALSE;
    if (wcslen(withSeparator) >= static_cast<size_t>(size)) return FALSE;
    wcscpy(buffer, withSeparator);
    return TRUE;
}

void ZelRegisterDefaultPaths() {
    if (ZelPathTableRows()) return;

    WCHAR app[MAX_PATH];
    if (!ModuleDirectory(nullptr, app)) wcscpy(app, u"c:\\zel\\qdw\\");
    Register(u"App", app, true);

    WCHAR common[MAX_PATH];
    HMODULE library = g_zelOwnModule.moduleHandle ? g_zelOwnModule.moduleHandle : ZelPlatformOwnModule();
    if (!ModuleDirectory(library, common)) wcscpy(common, u"c:\\zel\\common\\");
    Register(u"Common", common, true);

    WCHAR zel[MAX_PATH];
    wcscpy(zel, common);
    if (WCHAR* last = wcsrchr(zel, u'\\')) *last = 0;
    Register(u"Zel", zel, true);

    WCHAR sharedData[MAX_PATH];
    if (!ZelFindSharedData(sharedData, MAX_PATH) && !Format(sharedData, u"%s\\Shared\\", zel)) sharedData[0] = 0;
    Register(u"SharedData", sharedData, true);

    WCHAR temp[MAX_PATH];
    if (!ReadEnvironment(u"TMP", temp) && !ReadEnvironment(u"TEMP", temp) &&
        !(ZelIsUsableDir(zel) && Format(temp, u"%s\\Temp\\", zel)) && !CurrentDirectory(temp))
        temp[0] = 0;
    Register(u"Temp", temp, true);

    WCHAR userData[MAX_PATH];
    if (!SuiteFolder(HKEY_CURRENT_USER, "AppData", userData))
        BelowZelOrTemp(userData, u"%s\\AppData\\", zel, temp);
    Register(u"UserData", userData, true);

    WCHAR allUserData[MAX_PATH];
    if (!SuiteFolder(HKEY_LOCAL_MACHINE, "Common AppData", allUserData))
        BelowZelOrTemp(allUserData, u"%s\\SysData\\", zel, temp);
    Register(u"AllUserData", allUserData, true);

    WCHAR sysExt[MAX_PATH] = {};
    ZelGetResourceExt(static_cast<LANGID>(GetSystemDefaultLCID()), sysExt);
    Register(u"SysExt", sysExt, false);

    WCHAR resExt[MAX_PATH] = {};
    ZelGetResourceExt(0xFFFF, resExt);
    Register(u"ResExt", resExt, false);

    WCHAR dsoExt[] = u"dll";
    Register(u"DsoExt", dsoExt, false);
}
