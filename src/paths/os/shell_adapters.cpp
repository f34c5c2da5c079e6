// The shell's calls with 16-bit strings.
#include <zel/paths.h>

#include "paths/os/ansi_text.h"
#include "paths/os/dynamic_calls.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {
constexpr UINT kDropFileCount = 0xFFFFFFFFu;
}

// The result is the call's in all cases. With the index that asks for the count, or without a
// buffer, nothing is converted; a name is copied as wcsncpy does, cut at size.
UINT ZelDragQueryFile(HDROP drop, UINT index, WCHAR* buffer, UINT size) {
    if (!ZelAnsiMode()) return DragQueryFileW(drop, index, buffer, size);
    char local[kZelAnsiResultBytes + 1] = {};
    const UINT result = DragQueryFileA(drop, index, buffer ? local : nullptr, buffer ? ZelAnsiResultSize(size) : 0);
    if (index != kDropFileCount && result > 0 && buffer && size > 0)
        wcsncpy(buffer, ZelWideResult(local, sizeof local).get(), size);
    return result;
}

HINSTANCE ZelShellExecute(HWND owner, const WCHAR* operation, const WCHAR* file, const WCHAR* parameters,
                          const WCHAR* directory, int show) {
    if (!ZelAnsiMode()) return ShellExecuteW(owner, operation, file, parameters, directory, show);
    return ShellExecuteA(owner, ZelNarrowArg(operation).get(), ZelNarrowArg(file).get(),
                         ZelNarrowArg(parameters).get(), ZelNarrowArg(directory).get(), show);
}

// The wide call from the NT family on; a version of 0 (unknown) takes the 8-bit call here.
BOOL ZelSHGetPathFromIDList(LPCITEMIDLIST list, WCHAR* buffer) {
    if (ZelGetWinVersion() >= 4) return SHGetPathFromIDListW(list, buffer) == 1 ? TRUE : FALSE;
    char local[kZelAnsiResultBytes + 1] = {};
    if (SHGetPathFromIDListA(list, local) != 1) return FALSE;
    ZelWideResult(local, sizeof local).CopyTo(buffer, MAX_PATH);
    return TRUE;
}

// In ANSI mode an item list (SHGFI_PIDL) passes as it is, and the 8-bit record's names are
// converted into the caller's record when that record is whole.
DWORD_PTR ZelSHGetFileInfo(const WCHAR* path, DWORD attributes, SHFILEINFOW* record, UINT size, UINT flags) {
    if (!ZelAnsiMode()) return SHGetFileInfoW(path, attributes, record, size, flags);
    SHFILEINFOA local = {};
    DWORD_PTR result;
    if (flags & SHGFI_PIDL) {
        result = SHGetFileInfoA(reinterpret_cast<LPCSTR>(path), attributes, &local, sizeof local, flags);
    } else {
        result = SHGetFileInfoA(ZelNarrowArg(path).get(), attributes, &local, sizeof local, flags);
    }
    if (record && size >= sizeof(SHFILEINFOW)) {
        record->hIcon = local.hIcon;
        record->iIcon = local.iIcon;
        record->dwAttributes = local.dwAttributes;
        ZelWideResult(local.szDisplayName, sizeof local.szDisplayName)
            .CopyTo(record->szDisplayName, sizeof record->szDisplayName / sizeof(WCHAR));
        ZelWideResult(local.szTypeName, sizeof local.szTypeName)
            .CopyTo(record->szTypeName, sizeof record->szTypeName / sizeof(WCHAR));
    }
    return result;
}

// Bound at run time; 0 on a system without the call.
BOOL ZelSHGetSpecialFolderPath(HWND owner, WCHAR* buffer, int folder, BOOL create) {
    using WideCall = BOOL (*)(HWND, LPWSTR, int, BOOL);
    using AnsiCall = BOOL (*)(HWND, LPSTR, int, BOOL);
    if (!ZelAnsiMode()) {
        auto call = ZelDynamicFunction<WideCall>(ZelDynamicCall::SHGetSpecialFolderPathW);
        return call ? call(owner, buffer, folder, create) : FALSE;
    }
    auto call = ZelDynamicFunction<AnsiCall>(ZelDynamicCall::SHGetSpecialFolderPathA);
    if (!call) return FALSE;
    char local[kZelAnsiResultBytes + 1] = {};
    const BOOL result = call(owner, local, folder, create);
    if (result) ZelWideResult(local, sizeof local).CopyTo(buffer, MAX_PATH);
    return result;
}

// Bound at run time; 0 and nothing done on a system without the call.
BOOL ZelSHGetSettings(LPSHELLFLAGSTATE record, DWORD mask) {
    using Call = void (*)(LPSHELLFLAGSTATE, DWORD);
    auto call = ZelDynamicFunction<Call>(ZelDynamicCall::SHGetSettings);
    if (!call) return FALSE;
    call(record, mask);
    return TRUE;
}
