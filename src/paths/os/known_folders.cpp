// Known folders, a call of newer systems only: shell32.dll is loaded for each call and released
// after it, and a system without the library or the call gives 1. There is no 8-bit form.
#include <zel/paths.h>

#include "paths/os/dynamic_calls.h"
#include "platform/win32.h"

namespace {

constexpr HRESULT kCallMissing = 1;

template <typename Call, typename... Args>
HRESULT CallKnownFolder(const char* name, Args... args) {
    HMODULE shell = LoadLibraryW(u"shell32.dll");
    if (!shell) return kCallMissing;
    HRESULT result = kCallMissing;
    if (auto call = ZelProcAs<Call>(GetProcAddress(shell, name))) result = call(args...);
    FreeLibrary(shell);
    return result;
}

}  // namespace

HRESULT ZelSHGetKnownFolderPath(REFKNOWNFOLDERID folder, DWORD flags, HANDLE token, PWSTR* path) {
    using Call = HRESULT (*)(REFKNOWNFOLDERID, DWORD, HANDLE, PWSTR*);
    return CallKnownFolder<Call, REFKNOWNFOLDERID>("SHGetKnownFolderPath", folder, flags, token, path);
}

HRESULT ZelSHGetKnownFolderIDList(REFKNOWNFOLDERID folder, DWORD flags, HANDLE token, PIDLIST_ABSOLUTE* list) {
    using Call = HRESULT (*)(REFKNOWNFOLDERID, DWORD, HANDLE, PIDLIST_ABSOLUTE*);
    return CallKnownFolder<Call, REFKNOWNFOLDERID>("SHGetKnownFolderIDList", folder, flags, token, list);
}
