// Paths and files: the table of named paths with ${Name} macros, string operations on paths,
// temporary names, the 16-bit adapters over the operating system, and system queries.
//
// Paths are in the Windows form: backslash separators and an optional drive x:. Path buffers hold
// 260 characters (MAX_PATH), and the operations that take no size expect that much room.
#ifndef ZEL_PATHS_H
#define ZEL_PATHS_H

#include <zel/wintypes.h>

#include <cstdio>
#include <map>

// ---------------------------------------------------------------------------------------------
// The path table and macros

// One row of the process-wide table; an empty name ends the table.
struct ZelPathEntry {
    WCHAR name[16];
    WCHAR path[260];
};

// Adds a row. 0 when the name is already there (in any case of a to z, the value stays), when
// memory ran out, or when the name is empty or longer than 15 characters or the value longer than
// 259: those are refused, never cut.
ZEL_API BOOL ZelRegisterPath(const WCHAR* name, const WCHAR* value);
ZEL_API BOOL ZelUnregisterPath(const WCHAR* name);
ZEL_API BOOL ZelIsRegisterPath(const WCHAR* name);
// ${Name} becomes the registered value; an unknown macro vanishes, and an unclosed one ends the
// text. destination holds 260 characters; a longer result is cut there.
ZEL_API void ZelPathToAbsolute(const WCHAR* source, WCHAR* destination);
// The first row in table order whose value begins source gives "${Name}" and the rest; with no
// such row destination is empty. destination holds 260 characters; a longer result is cut there.
// A row with an empty value matches nothing.
ZEL_API void ZelPathToRelative(const WCHAR* source, WCHAR* destination);
// Registers the directory of a module's file, with its trailing backslash.
ZEL_API BOOL ZelRegisterModulePath(const WCHAR* name, HMODULE module);
// Loads a module with its own directory current for the length of the load.
ZEL_API HMODULE ZelLoadLibraryModulePath(const WCHAR* fileName);

// A path and its parts, for use on the stack.
class ZEL_API CZelPathName {
public:
    CZelPathName();
    explicit CZelPathName(const WCHAR* path);
    virtual ~CZelPathName();

    void SetPath(const WCHAR* path);
    // A null part stays, an empty one is emptied, any other replaces the part (cut to its size).
    void SetParts(const WCHAR* drive, const WCHAR* dir, const WCHAR* fname, const WCHAR* ext);
    // Drive and directory, with the trailing separator, cut to size characters with terminator.
    void GetDirectory(WCHAR* buffer, int size) const;
    void Clear();

    WCHAR drive[3];
    WCHAR dir[256];
    WCHAR fname[256];
    WCHAR ext[256];
    WCHAR full[260];
};

// ---------------------------------------------------------------------------------------------
// Path transforms

ZEL_API void ZelAppendBackSlash(WCHAR* path);
ZEL_API void ZelRemoveBackSlash(WCHAR* path);
// 0 with a buffer; with a null buffer the size that the title needs, terminator included.
ZEL_API int ZelGetFileTitle(const WCHAR* path, WCHAR* buffer, int size);
// Shortens path in place to at most maximum characters for display, as c:\aa\...\file.txt.
ZEL_API void ZelAbbreviateName(WCHAR* path, int maximum, BOOL keepTitle);
// Walks a list of masks separated by ";": a list starts a walk, null continues the last one.
// destination holds 260 characters; a longer mask is cut there.
ZEL_API BOOL ZelGetNextMask(const WCHAR* list, WCHAR* destination);
// Creates every missing directory of the path (macros expanded); the last component counts as a
// file name unless the path ends in a backslash.
ZEL_API BOOL ZelPathCreate(const WCHAR* path);
ZEL_API BOOL ZelPathIsValidDirName(const WCHAR* name);
ZEL_API BOOL ZelPathIsReservedFileName(const WCHAR* name);
ZEL_API BOOL ZelPathToLongPath(const WCHAR* path, WCHAR* destination);

// ---------------------------------------------------------------------------------------------
// Temporary names below the registered Temp directory

ZEL_API UINT ZelPathMakeTemp(const WCHAR* prefix, UINT number, WCHAR* destination);
ZEL_API UINT ZelPathMakeTempEx(const WCHAR* subdirectory, const WCHAR* prefix, UINT number, const WCHAR* extension,
                               WCHAR* destination);
ZEL_API BOOL ZelPathMakeImageTemp(const WCHAR* sourceFileName, WCHAR* destination);

// ---------------------------------------------------------------------------------------------
// File and shell adapters. Each has the arguments and results of the system call that it wraps,
// with 16-bit strings; in ANSI mode (ZelGetWinVersion gives 1 to 3) strings pass through the
// system's ANSI code page and lengths are in bytes.

// The run-time's calls.
ZEL_API int u__waccess(const WCHAR* path, int mode);
ZEL_API int u__wchdir(const WCHAR* path);
ZEL_API int u__wchmod(const WCHAR* path, int mode);
ZEL_API int u__wcreat(const WCHAR* path, int mode);
ZEL_API FILE* u__wfopen(const WCHAR* path, const WCHAR* mode);
ZEL_API FILE* u__wfreopen(const WCHAR* path, const WCHAR* mode, FILE* stream);
ZEL_API FILE* u__wfsopen(const WCHAR* path, const WCHAR* mode, int shareFlag);
ZEL_API WCHAR* u__wfullpath(WCHAR* buffer, const WCHAR* path, size_t maxLength);
ZEL_API WCHAR* u__wgetcwd(WCHAR* buffer, int maxLength);
ZEL_API int u__wmkdir(const WCHAR* path);
// A permission of 0 opens without one.
ZEL_API int u__wopen(const WCHAR* path, int flags, int permission = 0);
ZEL_API int u__wremove(const WCHAR* path);
ZEL_API int u__wrename(const WCHAR* oldPath, const WCHAR* newPath);
ZEL_API int u__wrmdir(const WCHAR* path);
ZEL_API void u__wsearchenv(const WCHAR* fileName, const WCHAR* variable, WCHAR* buffer);
ZEL_API int u__wsopen(const WCHAR* path, int flags, int shareFlag, int permission = 0);
ZEL_API int u__wstat(const WCHAR* path, struct _stat* record);
ZEL_API int u__wunlink(const WCHAR* path);
// 8-bit records in both modes.
ZEL_API intptr_t u__wfindfirst(const WCHAR* path, struct _finddata_t* record);
ZEL_API int u__wfindnext(intptr_t handle, struct _finddata_t* record);

// The system's calls.
ZEL_API BOOL ZelCreateDirectory(const WCHAR* path, LPSECURITY_ATTRIBUTES security);
ZEL_API BOOL ZelCreateDirectoryEx(const WCHAR* templateDirectory, const WCHAR* path, LPSECURITY_ATTRIBUTES security);
ZEL_API HANDLE ZelCreateFile(const WCHAR* path, DWORD access, DWORD shareMode, LPSECURITY_ATTRIBUTES security,
                             DWORD creation, DWORD flagsAndAttributes, HANDLE templateFile);
ZEL_API BOOL ZelDeleteFile(const WCHAR* path);
ZEL_API HWND ZelFindWindow(const WCHAR* className, const WCHAR* windowName);
ZEL_API BOOL ZelGetBinaryType(const WCHAR* path, LPDWORD binaryType);
ZEL_API int ZelGetClassName(HWND window, WCHAR* buffer, int size);  // 1 or 0
ZEL_API BOOL ZelGetCurrentDirectory(DWORD size, WCHAR* buffer);     // 1 or 0
ZEL_API BOOL ZelGetDiskFreeSpace(const WCHAR* root, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector,
                                 LPDWORD freeClusters, LPDWORD totalClusters);
ZEL_API BOOL ZelGetDiskFreeSpaceEx(const WCHAR* directory, ULARGE_INTEGER* freeToCaller, ULARGE_INTEGER* total,
                                   ULARGE_INTEGER* totalFree);
ZEL_API UINT ZelGetDriveType(const WCHAR* root);
ZEL_API DWORD ZelGetFileAttributes(const WCHAR* path);
ZEL_API BOOL ZelGetFileAttributesEx(const WCHAR* path, GET_FILEEX_INFO_LEVELS level, LPVOID information);
ZEL_API DWORD ZelGetModuleFileName(HMODULE module, WCHAR* buffer, DWORD size);  // 1 or 0
ZEL_API HMODULE ZelGetModuleHandle(const WCHAR* name);
ZEL_API DWORD ZelGetShortPathName(const WCHAR* path, WCHAR* buffer, DWORD size);
ZEL_API UINT ZelGetTempFileName(const WCHAR* directory, const WCHAR* prefix, UINT number, WCHAR* buffer);
ZEL_API DWORD ZelGetTempPath(DWORD size, WCHAR* buffer);
ZEL_API BOOL ZelGetUserName(WCHAR* buffer, LPDWORD size);
ZEL_API UINT ZelGetWindowsDirectory(WCHAR* buffer, UINT size);
ZEL_API HMODULE ZelLoadLibrary(const WCHAR* name);
ZEL_API HMODULE ZelLoadLibraryEx(const WCHAR* name, HANDLE file, DWORD flags);
ZEL_API BOOL ZelMoveFile(const WCHAR* oldPath, const WCHAR* newPath);
ZEL_API BOOL ZelRemoveDirectory(const WCHAR* path);
ZEL_API BOOL ZelSetCurrentDirectory(const WCHAR* path);
ZEL_API BOOL ZelSetFileAttributes(const WCHAR* path, DWORD attributes);
ZEL_API BOOL ZelLockFile(HANDLE file, DWORD offsetLow, DWORD offsetHigh, DWORD lengthLow, DWORD lengthHigh);

// The shell's calls.
ZEL_API UINT ZelDragQueryFile(HDROP drop, UINT index, WCHAR* buffer, UINT size);
ZEL_API HINSTANCE ZelShellExecute(HWND owner, const WCHAR* operation, const WCHAR* file, const WCHAR* parameters,
                                  const WCHAR* directory, int show);
ZEL_API BOOL ZelSHGetPathFromIDList(LPCITEMIDLIST list, WCHAR* buffer);  // 1 or 0

// The 8-bit call in both modes; records stay in their 8-bit form.
ZEL_API HANDLE ZelFindFirstFile(const WCHAR* path, LPWIN32_FIND_DATAA record);
ZEL_API BOOL ZelCopyFileA(const WCHAR* newPath, const WCHAR* existingPath);
ZEL_API BOOL ZelGetClassInfo(HINSTANCE instance, const WCHAR* className, LPWNDCLASSA record);
ZEL_API BOOL ZelGetClassInfoEx(HINSTANCE instance, const WCHAR* className, LPWNDCLASSEXA record);
ZEL_API UINT ZelGetSystemDirectory(WCHAR* buffer, UINT size);

// 16-bit records in both modes.
ZEL_API HANDLE ZelFindFirstFileW(const WCHAR* path, LPWIN32_FIND_DATAW record);
ZEL_API BOOL ZelFindNextFileW(HANDLE find, LPWIN32_FIND_DATAW record);
ZEL_API HRESULT ZelSHGetDataFromIDList(IShellFolder* folder, LPCITEMIDLIST list, int format, void* record, int size);
ZEL_API DWORD_PTR ZelSHGetFileInfo(const WCHAR* path, DWORD attributes, SHFILEINFOW* record, UINT size, UINT flags);
ZEL_API DWORD ZelGetLongPathName(const WCHAR* path, WCHAR* buffer, DWORD size);
ZEL_API BOOL ZelSHGetSpecialFolderPath(HWND owner, WCHAR* buffer, int folder, BOOL create);
ZEL_API BOOL ZelSHGetSettings(LPSHELLFLAGSTATE record, DWORD mask);
// 1 when the system lacks the call.
ZEL_API HRESULT ZelSHGetKnownFolderPath(REFKNOWNFOLDERID folder, DWORD flags, HANDLE token, PWSTR* path);
ZEL_API HRESULT ZelSHGetKnownFolderIDList(REFKNOWNFOLDERID folder, DWORD flags, HANDLE token, PIDLIST_ABSOLUTE* list);
// Copies, moves, renames or deletes lists of names. In ANSI mode a failed allocation of the 8-bit
// lists gives ERROR_NOT_ENOUGH_MEMORY and nothing is done.
ZEL_API int ZelSHFileOperation(LPSHFILEOPSTRUCTW operation);

// The library's own file operations.
// Copies source to destination (destination first). 0 with the system error reported when a file
// can't be opened, or when a read or write moves no bytes before the end: the partial destination
// is then removed.
ZEL_API BOOL ZelCopyFile(const WCHAR* destination, const WCHAR* source);
ZEL_API DWORD ZelExistDir(const WCHAR* path);  // FILE_ATTRIBUTE_DIRECTORY (16) or 0
ZEL_API BOOL ZelFileExist(const WCHAR* path);
ZEL_API BOOL ZelCheckRemovableDrive(const WCHAR* path);

// ---------------------------------------------------------------------------------------------
// System information

// 1 to 3 mean a system of the 95 family and ANSI mode; this platform gives 9 unless
// ZEL_OS_VERSION says otherwise before the first call.
ZEL_API int ZelGetWinVersion();
ZEL_API WCHAR* ZelGetOSVersion();
ZEL_API int ZelGetOS();              // 1
ZEL_API int ZelGetEndian();          // 'L'
ZEL_API int ZelGetApplicationBit();  // 4
ZEL_API BOOL IsWinWow64();
// The argument at index, cut to size characters (without terminator when it fills them).
ZEL_API BOOL ZelGetArgV(int index, WCHAR* buffer, int size);
ZEL_API BOOL ZelGetFiletime(FILETIME* time);
// The long date of the user's language, and with withTime the time behind a blank; buffer holds
// 260 characters.
ZEL_API BOOL ZelGetFiletimeStr(WCHAR* buffer, const FILETIME* time, BOOL withTime);
ZEL_API int ZelGetDateFormat(LCID locale, DWORD flags, const SYSTEMTIME* date, const WCHAR* format, WCHAR* buffer,
                             int size);
ZEL_API int ZelGetTimeFormat(LCID locale, DWORD flags, const SYSTEMTIME* time, const WCHAR* format, WCHAR* buffer,
                             int size);
ZEL_API DWORD ZelGetVolumeSerialNumber(const WCHAR* path);
// a x b / c rounded half away from zero; c of 0 gives 0 (the caller's limit).
ZEL_API int ZelIntMulDiv(int a, int b, int c);
// One map from window to data, shared by every module of the process; the clients guard it.
ZEL_API std::map<HWND, void*>& GetWMSWindowMap();

#endif  // ZEL_PATHS_H
