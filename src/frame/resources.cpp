#include "frame/resources.h"

#include "platform/win32.h"
#include "strings/wstr.h"

namespace {
const ZelResourceAccess* access = nullptr;

template <typename Char>
int EmptyString(Char* buffer, int size) {
    if (buffer && size > 0) buffer[0] = 0;
    return 0;
}
}  // namespace

void ZelSetResourceAccess(const ZelResourceAccess* newAccess) { access = newAccess; }

bool ZelResourceFilesAvailable() { return access != nullptr; }

BOOL ZelGetResourcePath(HMODULE module, WCHAR* name) { return access ? access->getPath(module, name) : FALSE; }

HMODULE ZelLoadResource(const WCHAR* name) { return access ? access->load(name) : nullptr; }

BOOL ZelFreeResource(HMODULE resource) { return access ? access->free(resource) : FALSE; }

int ZelLoadStringW(HMODULE module, UINT id, WCHAR* buffer, int size) {
    return access ? access->loadStringW(module, id, buffer, size) : EmptyString(buffer, size);
}

int LoadStringA(HMODULE module, UINT id, char* buffer, int size) {
    return access ? access->loadStringA(module, id, buffer, size) : EmptyString(buffer, size);
}

void ZelSetResourceMissingError(HMODULE module) {
    WCHAR fileName[MAX_PATH] = {};
    GetModuleFileNameW(module, fileName, MAX_PATH);
    ZelSetErrorEx(ZEL_ERROR_RESOURCE_MISSING, 1, fileName, static_cast<DWORD>((wcslen(fileName) + 1) * sizeof(WCHAR)));
}
