// What a host registers in the path table when the library's start has not: the temporary
// directory and the library's own directory.
#include <zel/paths.h>

#include "commands.h"

void RegisterTempIfMissing() {
    if (ZelIsRegisterPath(u"Temp")) return;
    WCHAR temp[MAX_PATH];
    DWORD length = ZelGetTempPath(MAX_PATH, temp);
    if (length == 0 || length >= MAX_PATH) return;
    ZelRemoveBackSlash(temp);
    ZelRegisterPath(u"Temp", temp);
}

void RegisterCommonIfMissing() {
    if (ZelIsRegisterPath(u"Common")) return;
    HMODULE library = ZelGetModuleHandle(u"libZelBL70KT.so");
    WCHAR file[MAX_PATH];
    if (!library || !ZelGetModuleFileName(library, file, MAX_PATH)) return;
    CZelPathName name(file);
    WCHAR directory[MAX_PATH];
    name.GetDirectory(directory, MAX_PATH);
    ZelRemoveBackSlash(directory);
    ZelRegisterPath(u"Common", directory);
}
