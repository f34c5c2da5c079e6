// File searches with 16-bit names. The 16-bit records are filled in both modes: in ANSI mode from
// an 8-bit record whose names are converted.
#include <zel/paths.h>

#include "paths/os/ansi_text.h"
#include "platform/win32.h"

namespace {

// The numeric fields as they are, the names converted; the call's record may be a failed one.
void CopyFindData(const WIN32_FIND_DATAA& from, WIN32_FIND_DATAW* to) {
    if (!to) return;
    to->dwFileAttributes = from.dwFileAttributes;
    to->ftCreationTime = from.ftCreationTime;
    to->ftLastAccessTime = from.ftLastAccessTime;
    to->ftLastWriteTime = from.ftLastWriteTime;
    to->nFileSizeHigh = from.nFileSizeHigh;
    to->nFileSizeLow = from.nFileSizeLow;
    to->dwReserved0 = from.dwReserved0;
    to->dwReserved1 = from.dwReserved1;
    ZelWideResult(from.cAlternateFileName, sizeof from.cAlternateFileName)
        .CopyTo(to->cAlternateFileName, sizeof to->cAlternateFileName / sizeof(WCHAR));
    ZelWideResult(from.cFileName, sizeof from.cFileName).CopyTo(to->cFileName, sizeof to->cFileName / sizeof(WCHAR));
}

}  // namespace

// The 8-bit call and record in both modes.
HANDLE ZelFindFirstFile(const WCHAR* path, LPWIN32_FIND_DATAA record) {
    return FindFirstFileA(ZelNarrowArg(path).get(), record);
}

HANDLE ZelFindFirstFileW(const WCHAR* path, LPWIN32_FIND_DATAW record) {
    if (!ZelAnsiMode()) return FindFirstFileW(path, record);
    WIN32_FIND_DATAA local = {};
    HANDLE find = FindFirstFileA(ZelNarrowArg(path).get(), &local);
    CopyFindData(local, record);
    return find;
}

BOOL ZelFindNextFileW(HANDLE find, LPWIN32_FIND_DATAW record) {
    if (!ZelAnsiMode()) return FindNextFileW(find, record);
    WIN32_FIND_DATAA local = {};
    const BOOL result = FindNextFileA(find, &local);
    CopyFindData(local, record);
    return result;
}

// In ANSI mode the record is taken to be find data whatever the format asks; it is filled only
// when the caller's size holds a whole 16-bit find record.
HRESULT ZelSHGetDataFromIDList(IShellFolder* folder, LPCITEMIDLIST list, int format, void* record, int size) {
    if (!ZelAnsiMode()) return SHGetDataFromIDListW(folder, list, format, record, size);
    WIN32_FIND_DATAA local = {};
    const HRESULT result = SHGetDataFromIDListA(folder, list, format, &local, sizeof local);
    if (size >= static_cast<int>(sizeof(WIN32_FIND_DATAW))) CopyFindData(local, static_cast<WIN32_FIND_DATAW*>(record));
    return result;
}
