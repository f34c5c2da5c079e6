// The operating system's interfaces that the library calls, under their Win32 names. On POSIX the
// bodies live in posix/, one folder per area (process, files, shell, nls, modules, profile,
// runtime, registry); each A call converts through the ANSI code page and calls its W twin.
// Those that a program needs for what the interface hands it are declared, and exported, in
// zel/platform.h; none of the others is exported.
#ifndef ZEL_PLATFORM_WIN32_H
#define ZEL_PLATFORM_WIN32_H

#include <zel/platform.h>
#include <zel/wintypes.h>

#include <cstdarg>
#include <cstdio>
#include <string>

// ---------------------------------------------------------------------------------------------
// Process (posix/process/process.cpp)

// The library's entry point, implemented by the frame; the platform calls it at load, at unload
// and when a thread that used a thread slot ends.
// On Windows the system's entry point of that name is the platform's (windows/process/dll_entry.cpp).
#if defined(_WIN32)
BOOL DllMain(HINSTANCE module, DWORD reason, LPVOID reserved) __asm__("ZelFrameDllMain");
#else
BOOL DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);
#endif

// Run the entry point for process attach and detach. The shared library calls these from its
// ELF constructor and destructor; a program that links the library's objects calls them itself.
void ZelPlatformProcessAttach();
void ZelPlatformProcessDetach();

// The module handle of the library itself.
HMODULE ZelPlatformOwnModule();

DWORD TlsAlloc() ZEL_SYSTEM_CALL(TlsAlloc);
BOOL TlsFree(DWORD index) ZEL_SYSTEM_CALL(TlsFree);
LPVOID TlsGetValue(DWORD index) ZEL_SYSTEM_CALL(TlsGetValue);
BOOL TlsSetValue(DWORD index, LPVOID value) ZEL_SYSTEM_CALL(TlsSetValue);

// A block of bytes from the system, aligned to 2 MB where the system has large pages and offered
// to them; throws std::bad_alloc. Released with its size.
void* ZelPlatformAllocateLargeBlock(size_t bytes);
void ZelPlatformReleaseLargeBlock(void* block, size_t bytes);

// The environment as 16-bit text (posix/process/environment.cpp, from the UTF-8 environment).
DWORD GetEnvironmentVariableW(LPCWSTR name, LPWSTR buffer, DWORD size) ZEL_SYSTEM_CALL(GetEnvironmentVariableW);

LONG InterlockedIncrement(LONG volatile* value);
LONG InterlockedDecrement(LONG volatile* value);

// ---------------------------------------------------------------------------------------------
// Errors (posix/process/errors.cpp). GetLastError and SetLastError: zel/platform.h.

// The one place where a POSIX errno becomes a Win32 error code.
DWORD ZelPlatformErrorFromErrno(int error);
// Sets the last error from errno and returns it.
DWORD ZelPlatformSetLastErrorFromErrno();

// ---------------------------------------------------------------------------------------------
// Modules (posix/modules/modules.cpp). GetProcAddress, GetModuleHandleA/W and FreeLibrary: zel/platform.h.

HMODULE LoadLibraryA(LPCSTR fileName);
HMODULE LoadLibraryW(LPCWSTR fileName);
HMODULE LoadLibraryExA(LPCSTR fileName, HANDLE reserved, DWORD flags);
HMODULE LoadLibraryExW(LPCWSTR fileName, HANDLE reserved, DWORD flags);
DWORD GetModuleFileNameA(HMODULE module, LPSTR fileName, DWORD size);
DWORD GetModuleFileNameW(HMODULE module, LPWSTR fileName, DWORD size);

// A module loaded as a data file: its bytes, for the resource reader. Null for any other handle.
struct ZelDataModule {
    const BYTE* bytes;
    size_t size;
};
const ZelDataModule* ZelPlatformDataModule(HMODULE module);


// ---------------------------------------------------------------------------------------------
// Resources (posix/modules/resources.cpp): the resources of a data module, read from its bytes as a
// resource file (posix/modules/resource_file_layout.h). Names and types are integers (MAKEINTRESOURCE) or
// "#123". A file that is no resource file fails with ERROR_RESOURCE_DATA_NOT_FOUND and a damaged
// one with ERROR_BAD_FORMAT; nothing outside the file's bytes is ever read.

HRSRC FindResourceA(HMODULE module, LPCSTR name, LPCSTR type);
HRSRC FindResourceW(HMODULE module, LPCWSTR name, LPCWSTR type);
// The address of the resource's bytes inside the module, valid while the module stays loaded.
HGLOBAL LoadResource(HMODULE module, HRSRC resource);
LPVOID LockResource(HGLOBAL resource);
DWORD SizeofResource(HMODULE module, HRSRC resource);
// String id of the module's string table in the ANSI code page, cut to size - 1 bytes between two
// characters, with a terminator: the bytes copied, or 0 and an empty buffer when it has none.
int LoadStringA(HMODULE module, UINT id, LPSTR buffer, int size);

// ---------------------------------------------------------------------------------------------
// Messages: debug output (posix/shell/debug_output.cpp), message boxes
// (common/shell/message_boxes.cpp)

void OutputDebugStringA(LPCSTR text) ZEL_SYSTEM_CALL(OutputDebugStringA);
int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT style);
int MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT style);

// The system's message texts (posix/modules/format_message.cpp), in English whatever the language asked
// for: language 0, a default language or any English one. A code may come as its HRESULT
// 0x8007xxxx. With FORMAT_MESSAGE_ALLOCATE_BUFFER, buffer receives a block from LocalAlloc, which
// LocalFree releases.
DWORD FormatMessageA(DWORD flags, LPCVOID source, DWORD messageId, DWORD languageId, LPSTR buffer, DWORD size,
                     va_list* arguments) ZEL_SYSTEM_CALL(FormatMessageA);
HLOCAL LocalAlloc(UINT flags, SIZE_T size) ZEL_SYSTEM_CALL(LocalAlloc);

// ---------------------------------------------------------------------------------------------
// Locale (posix/nls/locale.cpp)

LANGID GetUserDefaultLangID() ZEL_SYSTEM_CALL(GetUserDefaultLangID);
LCID GetUserDefaultLCID() ZEL_SYSTEM_CALL(GetUserDefaultLCID);
LANGID GetSystemDefaultLangID() ZEL_SYSTEM_CALL(GetSystemDefaultLangID);
LCID GetSystemDefaultLCID() ZEL_SYSTEM_CALL(GetSystemDefaultLCID);

// Locale information from a table of the system's locales (posix/nls/locale_info.cpp). The default
// locale values stand for the user's and the system's language.
int GetLocaleInfoW(LCID locale, LCTYPE type, LPWSTR buffer, int size) ZEL_SYSTEM_CALL(GetLocaleInfoW);
int GetLocaleInfoA(LCID locale, LCTYPE type, LPSTR buffer, int size) ZEL_SYSTEM_CALL(GetLocaleInfoA);

// ---------------------------------------------------------------------------------------------
// Version information (posix/files/version_info.cpp). The library's executables and libraries carry no
// version resource, and these calls answer as Win32 does for such a file.

DWORD GetFileVersionInfoSizeA(LPCSTR fileName, LPDWORD handle) ZEL_SYSTEM_CALL(GetFileVersionInfoSizeA);
BOOL GetFileVersionInfoA(LPCSTR fileName, DWORD handle, DWORD size, LPVOID data) ZEL_SYSTEM_CALL(GetFileVersionInfoA);
BOOL VerQueryValueA(LPCVOID block, LPCSTR subBlock, LPVOID* value, PUINT length) ZEL_SYSTEM_CALL(VerQueryValueA);

// ---------------------------------------------------------------------------------------------
// Code pages (posix/nls/codepages.cpp)

UINT GetACP() ZEL_SYSTEM_CALL(GetACP);
UINT GetOEMCP() ZEL_SYSTEM_CALL(GetOEMCP);
int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR multiByte, int multiByteCount, LPWSTR wide,
                        int wideCount) ZEL_SYSTEM_CALL(MultiByteToWideChar);
int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int wideCount, LPSTR multiByte,
                        int multiByteCount, LPCSTR defaultChar, LPBOOL usedDefaultChar)
    ZEL_SYSTEM_CALL(WideCharToMultiByte);

// Whole-string helpers for the A thunks: null stays null (the bool says which).
struct ZelAnsiArg {
    std::u16string text;
    bool null = true;
    LPCWSTR get() const { return null ? nullptr : text.c_str(); }
};
// Through the ANSI code page, or another that a call names (a locale's own, for its A forms).
ZelAnsiArg ZelPlatformAnsiToWide(LPCSTR text, UINT codePage = CP_ACP);
std::string ZelPlatformWideToAnsi(LPCWSTR text, UINT codePage = CP_ACP);
// UTF-8 text for the system's side: names on disk, standard error.
std::string ZelPlatformWideToUtf8(const std::u16string& text);
std::u16string ZelPlatformUtf8ToWide(const std::string& text);

// ---------------------------------------------------------------------------------------------
// Registry (posix/registry/)

// RegQueryValueExA/W, RegEnumKeyA/W, RegEnumValueA/W, RegQueryInfoKeyA/W and RegCloseKey:
// zel/platform.h.
LONG RegOpenKeyA(HKEY key, LPCSTR subKey, PHKEY result) ZEL_SYSTEM_CALL(RegOpenKeyA);
LONG RegOpenKeyW(HKEY key, LPCWSTR subKey, PHKEY result) ZEL_SYSTEM_CALL(RegOpenKeyW);
LONG RegOpenKeyExA(HKEY key, LPCSTR subKey, DWORD options, REGSAM access, PHKEY result) ZEL_SYSTEM_CALL(RegOpenKeyExA);
LONG RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) ZEL_SYSTEM_CALL(RegOpenKeyExW);
LONG RegCreateKeyA(HKEY key, LPCSTR subKey, PHKEY result) ZEL_SYSTEM_CALL(RegCreateKeyA);
LONG RegCreateKeyW(HKEY key, LPCWSTR subKey, PHKEY result) ZEL_SYSTEM_CALL(RegCreateKeyW);
LONG RegCreateKeyExA(HKEY key, LPCSTR subKey, DWORD reserved, LPSTR keyClass, DWORD options, REGSAM access,
                     const SECURITY_ATTRIBUTES* security, PHKEY result, LPDWORD disposition)
    ZEL_SYSTEM_CALL(RegCreateKeyExA);
LONG RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass, DWORD options, REGSAM access,
                     const SECURITY_ATTRIBUTES* security, PHKEY result, LPDWORD disposition)
    ZEL_SYSTEM_CALL(RegCreateKeyExW);
LONG RegQueryValueA(HKEY key, LPCSTR subKey, LPSTR data, PLONG dataSize) ZEL_SYSTEM_CALL(RegQueryValueA);
LONG RegQueryValueW(HKEY key, LPCWSTR subKey, LPWSTR data, PLONG dataSize) ZEL_SYSTEM_CALL(RegQueryValueW);
LONG RegSetValueA(HKEY key, LPCSTR subKey, DWORD type, LPCSTR data, DWORD dataSize) ZEL_SYSTEM_CALL(RegSetValueA);
LONG RegSetValueW(HKEY key, LPCWSTR subKey, DWORD type, LPCWSTR data, DWORD dataSize) ZEL_SYSTEM_CALL(RegSetValueW);
LONG RegSetValueExA(HKEY key, LPCSTR valueName, DWORD reserved, DWORD type, const BYTE* data, DWORD dataSize)
    ZEL_SYSTEM_CALL(RegSetValueExA);
LONG RegSetValueExW(HKEY key, LPCWSTR valueName, DWORD reserved, DWORD type, const BYTE* data, DWORD dataSize)
    ZEL_SYSTEM_CALL(RegSetValueExW);
LONG RegDeleteKeyA(HKEY key, LPCSTR subKey) ZEL_SYSTEM_CALL(RegDeleteKeyA);
LONG RegDeleteKeyW(HKEY key, LPCWSTR subKey) ZEL_SYSTEM_CALL(RegDeleteKeyW);
LONG RegDeleteValueA(HKEY key, LPCSTR valueName) ZEL_SYSTEM_CALL(RegDeleteValueA);
LONG RegDeleteValueW(HKEY key, LPCWSTR valueName) ZEL_SYSTEM_CALL(RegDeleteValueW);
LONG RegSaveKeyA(HKEY key, LPCSTR fileName, const SECURITY_ATTRIBUTES* security) ZEL_SYSTEM_CALL(RegSaveKeyA);
LONG RegSaveKeyW(HKEY key, LPCWSTR fileName, const SECURITY_ATTRIBUTES* security) ZEL_SYSTEM_CALL(RegSaveKeyW);

// ---------------------------------------------------------------------------------------------
// Paths (posix/files/paths.cpp): the one place where the library's Windows form of a path meets the
// system's. Toward the system backslashes become slashes and a drive x: becomes the directory that
// ZEL_DRIVE_X names, or the root; from the system slashes become backslashes. Names are UTF-8.
// A path that the system gives as 16-bit text (an environment variable read with _wgetenv) takes
// the same way in.

std::string ZelPlatformPathToSystem(LPCWSTR path);
std::u16string ZelPlatformPathFromSystem(const char* path);
std::u16string ZelPlatformPathFromSystem(LPCWSTR path);

// ---------------------------------------------------------------------------------------------
// Files and directories (posix/files/files.cpp, posix/files/directories.cpp, posix/files/find.cpp,
// posix/files/volumes.cpp). Paths are in the library's Windows form; failures set the last error.

// CreateFileA/W, ReadFile, WriteFile, GetFileSize, SetFilePointer, LockFile, UnlockFile and
// CloseHandle: zel/platform.h.
BOOL GetBinaryTypeA(LPCSTR applicationName, LPDWORD binaryType) ZEL_SYSTEM_CALL(GetBinaryTypeA);
BOOL GetBinaryTypeW(LPCWSTR applicationName, LPDWORD binaryType) ZEL_SYSTEM_CALL(GetBinaryTypeW);

BOOL CreateDirectoryA(LPCSTR path, LPSECURITY_ATTRIBUTES security) ZEL_SYSTEM_CALL(CreateDirectoryA);
BOOL CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES security) ZEL_SYSTEM_CALL(CreateDirectoryW);
BOOL CreateDirectoryExA(LPCSTR templateDirectory, LPCSTR path, LPSECURITY_ATTRIBUTES security)
    ZEL_SYSTEM_CALL(CreateDirectoryExA);
BOOL CreateDirectoryExW(LPCWSTR templateDirectory, LPCWSTR path, LPSECURITY_ATTRIBUTES security)
    ZEL_SYSTEM_CALL(CreateDirectoryExW);
BOOL RemoveDirectoryA(LPCSTR path) ZEL_SYSTEM_CALL(RemoveDirectoryA);
BOOL RemoveDirectoryW(LPCWSTR path) ZEL_SYSTEM_CALL(RemoveDirectoryW);
BOOL DeleteFileA(LPCSTR fileName) ZEL_SYSTEM_CALL(DeleteFileA);
BOOL DeleteFileW(LPCWSTR fileName) ZEL_SYSTEM_CALL(DeleteFileW);
BOOL MoveFileA(LPCSTR existingName, LPCSTR newName) ZEL_SYSTEM_CALL(MoveFileA);
BOOL MoveFileW(LPCWSTR existingName, LPCWSTR newName) ZEL_SYSTEM_CALL(MoveFileW);
BOOL CopyFileA(LPCSTR existingName, LPCSTR newName, BOOL failIfExists) ZEL_SYSTEM_CALL(CopyFileA);
BOOL CopyFileW(LPCWSTR existingName, LPCWSTR newName, BOOL failIfExists) ZEL_SYSTEM_CALL(CopyFileW);
DWORD GetFileAttributesA(LPCSTR fileName) ZEL_SYSTEM_CALL(GetFileAttributesA);
DWORD GetFileAttributesW(LPCWSTR fileName) ZEL_SYSTEM_CALL(GetFileAttributesW);
BOOL GetFileAttributesExA(LPCSTR fileName, GET_FILEEX_INFO_LEVELS level, LPVOID information)
    ZEL_SYSTEM_CALL(GetFileAttributesExA);
BOOL GetFileAttributesExW(LPCWSTR fileName, GET_FILEEX_INFO_LEVELS level, LPVOID information)
    ZEL_SYSTEM_CALL(GetFileAttributesExW);
BOOL SetFileAttributesA(LPCSTR fileName, DWORD attributes) ZEL_SYSTEM_CALL(SetFileAttributesA);
BOOL SetFileAttributesW(LPCWSTR fileName, DWORD attributes) ZEL_SYSTEM_CALL(SetFileAttributesW);
DWORD GetCurrentDirectoryA(DWORD size, LPSTR buffer) ZEL_SYSTEM_CALL(GetCurrentDirectoryA);
DWORD GetCurrentDirectoryW(DWORD size, LPWSTR buffer) ZEL_SYSTEM_CALL(GetCurrentDirectoryW);
BOOL SetCurrentDirectoryA(LPCSTR path) ZEL_SYSTEM_CALL(SetCurrentDirectoryA);
BOOL SetCurrentDirectoryW(LPCWSTR path) ZEL_SYSTEM_CALL(SetCurrentDirectoryW);

// Masks with * and ?, matched without regard to the case of a to z; "." and ".." are found too.
// FindNextFileA/W and FindClose: zel/platform.h.
HANDLE FindFirstFileA(LPCSTR fileName, LPWIN32_FIND_DATAA findData) ZEL_SYSTEM_CALL(FindFirstFileA);
HANDLE FindFirstFileW(LPCWSTR fileName, LPWIN32_FIND_DATAW findData) ZEL_SYSTEM_CALL(FindFirstFileW);
// True when name matches mask by the rules of the searches above.
bool ZelPlatformMaskMatches(const std::u16string& mask, const std::u16string& name);

UINT GetTempFileNameA(LPCSTR pathName, LPCSTR prefix, UINT unique, LPSTR tempFileName)
    ZEL_SYSTEM_CALL(GetTempFileNameA);
UINT GetTempFileNameW(LPCWSTR pathName, LPCWSTR prefix, UINT unique, LPWSTR tempFileName)
    ZEL_SYSTEM_CALL(GetTempFileNameW);
DWORD GetTempPathA(DWORD size, LPSTR buffer) ZEL_SYSTEM_CALL(GetTempPathA);
DWORD GetTempPathW(DWORD size, LPWSTR buffer) ZEL_SYSTEM_CALL(GetTempPathW);
DWORD GetShortPathNameA(LPCSTR longPath, LPSTR shortPath, DWORD size) ZEL_SYSTEM_CALL(GetShortPathNameA);
DWORD GetShortPathNameW(LPCWSTR longPath, LPWSTR shortPath, DWORD size) ZEL_SYSTEM_CALL(GetShortPathNameW);
DWORD GetLongPathNameA(LPCSTR shortPath, LPSTR longPath, DWORD size) ZEL_SYSTEM_CALL(GetLongPathNameA);
DWORD GetLongPathNameW(LPCWSTR shortPath, LPWSTR longPath, DWORD size) ZEL_SYSTEM_CALL(GetLongPathNameW);
UINT GetDriveTypeA(LPCSTR rootPath) ZEL_SYSTEM_CALL(GetDriveTypeA);
UINT GetDriveTypeW(LPCWSTR rootPath) ZEL_SYSTEM_CALL(GetDriveTypeW);
BOOL GetDiskFreeSpaceA(LPCSTR rootPath, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector, LPDWORD freeClusters,
                       LPDWORD totalClusters) ZEL_SYSTEM_CALL(GetDiskFreeSpaceA);
BOOL GetDiskFreeSpaceW(LPCWSTR rootPath, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector, LPDWORD freeClusters,
                       LPDWORD totalClusters) ZEL_SYSTEM_CALL(GetDiskFreeSpaceW);
BOOL GetDiskFreeSpaceExA(LPCSTR directory, ULARGE_INTEGER* freeToCaller, ULARGE_INTEGER* total,
                         ULARGE_INTEGER* totalFree) ZEL_SYSTEM_CALL(GetDiskFreeSpaceExA);
BOOL GetDiskFreeSpaceExW(LPCWSTR directory, ULARGE_INTEGER* freeToCaller, ULARGE_INTEGER* total,
                         ULARGE_INTEGER* totalFree) ZEL_SYSTEM_CALL(GetDiskFreeSpaceExW);
BOOL GetVolumeInformationA(LPCSTR rootPath, LPSTR volumeName, DWORD volumeNameSize, LPDWORD serialNumber,
                           LPDWORD maxComponentLength, LPDWORD fileSystemFlags, LPSTR fileSystemName,
                           DWORD fileSystemNameSize) ZEL_SYSTEM_CALL(GetVolumeInformationA);
BOOL GetVolumeInformationW(LPCWSTR rootPath, LPWSTR volumeName, DWORD volumeNameSize, LPDWORD serialNumber,
                           LPDWORD maxComponentLength, LPDWORD fileSystemFlags, LPWSTR fileSystemName,
                           DWORD fileSystemNameSize) ZEL_SYSTEM_CALL(GetVolumeInformationW);
BOOL GetUserNameA(LPSTR buffer, LPDWORD size) ZEL_SYSTEM_CALL(GetUserNameA);
BOOL GetUserNameW(LPWSTR buffer, LPDWORD size) ZEL_SYSTEM_CALL(GetUserNameW);
UINT GetWindowsDirectoryA(LPSTR buffer, UINT size) ZEL_SYSTEM_CALL(GetWindowsDirectoryA);
UINT GetWindowsDirectoryW(LPWSTR buffer, UINT size) ZEL_SYSTEM_CALL(GetWindowsDirectoryW);
UINT GetSystemDirectoryA(LPSTR buffer, UINT size) ZEL_SYSTEM_CALL(GetSystemDirectoryA);
UINT GetSystemDirectoryW(LPWSTR buffer, UINT size) ZEL_SYSTEM_CALL(GetSystemDirectoryW);

// ---------------------------------------------------------------------------------------------
// Profile files (posix/profile/): plain 8-bit INI files in the ANSI code page. A file name
// without a directory lies in the Windows directory, which a write makes when it is missing; the
// GetProfile and WriteProfile calls use win.ini there. Sections and keys match without regard to
// case; a line without "=" is no key, and where a section appears twice its first holds the keys.
// A null section lists the section headers, a null key the keys of the section, each name followed
// by a zero and the list by a second one; a list that does not fit is cut to size - 2 with two
// zeros, a value to size - 1. A missing key gives the default (null is ""), without its trailing
// spaces, and the last error ERROR_FILE_NOT_FOUND. Writes keep comments and blank lines and
// replace the file through a temporary one; a null value deletes the key and a null key the
// section. The A calls count bytes.

UINT GetProfileIntA(LPCSTR section, LPCSTR key, INT defaultValue) ZEL_SYSTEM_CALL(GetProfileIntA);
UINT GetProfileIntW(LPCWSTR section, LPCWSTR key, INT defaultValue) ZEL_SYSTEM_CALL(GetProfileIntW);
DWORD GetProfileStringA(LPCSTR section, LPCSTR key, LPCSTR defaultValue, LPSTR buffer, DWORD size)
    ZEL_SYSTEM_CALL(GetProfileStringA);
DWORD GetProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultValue, LPWSTR buffer, DWORD size)
    ZEL_SYSTEM_CALL(GetProfileStringW);
BOOL WriteProfileStringA(LPCSTR section, LPCSTR key, LPCSTR value) ZEL_SYSTEM_CALL(WriteProfileStringA);
BOOL WriteProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value) ZEL_SYSTEM_CALL(WriteProfileStringW);
UINT GetPrivateProfileIntA(LPCSTR section, LPCSTR key, INT defaultValue, LPCSTR fileName)
    ZEL_SYSTEM_CALL(GetPrivateProfileIntA);
UINT GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT defaultValue, LPCWSTR fileName)
    ZEL_SYSTEM_CALL(GetPrivateProfileIntW);
DWORD GetPrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR defaultValue, LPSTR buffer, DWORD size,
                               LPCSTR fileName) ZEL_SYSTEM_CALL(GetPrivateProfileStringA);
DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultValue, LPWSTR buffer, DWORD size,
                               LPCWSTR fileName) ZEL_SYSTEM_CALL(GetPrivateProfileStringW);
BOOL WritePrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR value, LPCSTR fileName)
    ZEL_SYSTEM_CALL(WritePrivateProfileStringA);
BOOL WritePrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR fileName)
    ZEL_SYSTEM_CALL(WritePrivateProfileStringW);

// ---------------------------------------------------------------------------------------------
// The run-time's file calls (posix/runtime/runtime_files.cpp), with the Win32 run-time's flag values and
// records. In a namespace of their own, since fopen, freopen, remove and rename are also the C
// library's names.

#if defined(_WIN32)
#include "platform/windows/runtime/runtime_calls.h"
#else
namespace crt {

int _access(const char* path, int mode);
int _waccess(LPCWSTR path, int mode);
int _chdir(const char* path);
int _wchdir(LPCWSTR path);
int _chmod(const char* path, int mode);
int _wchmod(LPCWSTR path, int mode);
int _creat(const char* path, int mode);
int _wcreat(LPCWSTR path, int mode);
FILE* fopen(const char* path, const char* mode);
FILE* _wfopen(LPCWSTR path, LPCWSTR mode);
FILE* freopen(const char* path, const char* mode, FILE* stream);
FILE* _wfreopen(LPCWSTR path, LPCWSTR mode, FILE* stream);
FILE* _fsopen(const char* path, const char* mode, int shareFlag);
FILE* _wfsopen(LPCWSTR path, LPCWSTR mode, int shareFlag);
char* _fullpath(char* buffer, const char* path, size_t maxLength);
LPWSTR _wfullpath(LPWSTR buffer, LPCWSTR path, size_t maxLength);
char* _getcwd(char* buffer, int maxLength);
LPWSTR _wgetcwd(LPWSTR buffer, int maxLength);
int _mkdir(const char* path);
int _wmkdir(LPCWSTR path);
int _open(const char* path, int flags, ...);
int _wopen(LPCWSTR path, int flags, ...);
int _sopen(const char* path, int flags, int shareFlag, ...);
int _wsopen(LPCWSTR path, int flags, int shareFlag, ...);
int remove(const char* path);
int _wremove(LPCWSTR path);
int rename(const char* oldPath, const char* newPath);
int _wrename(LPCWSTR oldPath, LPCWSTR newPath);
int _rmdir(const char* path);
int _wrmdir(LPCWSTR path);
void _searchenv(const char* fileName, const char* variable, char* buffer);
void _wsearchenv(LPCWSTR fileName, LPCWSTR variable, LPWSTR buffer);
int _stat(const char* path, struct ::_stat* record);
int _wstat(LPCWSTR path, struct ::_stat* record);
int _unlink(const char* path);
int _wunlink(LPCWSTR path);
intptr_t _findfirst(const char* mask, struct ::_finddata_t* record);
// The search and descriptor calls are exported (zel/platform.h); these names reach them here too.
using ::_findnext;
using ::_findclose;
using ::_read;
using ::_write;
using ::_lseek;
using ::_close;
using ::_filelength;

// The run-time's arguments of the process, read from the system at first use.
int ArgumentCount();
const char* Argument(int index);  // 8-bit, in the ANSI code page; null out of range

}  // namespace crt
#endif

// ---------------------------------------------------------------------------------------------
// Shell (posix/shell/). Windows, classes and drag and drop have no counterpart: those calls
// give the Win32 failure result with ERROR_CALL_NOT_IMPLEMENTED.

int SHFileOperationA(LPSHFILEOPSTRUCTA operation) ZEL_SYSTEM_CALL(SHFileOperationA);
int SHFileOperationW(LPSHFILEOPSTRUCTW operation) ZEL_SYSTEM_CALL(SHFileOperationW);
BOOL SHGetSpecialFolderPathA(HWND owner, LPSTR path, int folder, BOOL create) ZEL_SYSTEM_CALL(SHGetSpecialFolderPathA);
BOOL SHGetSpecialFolderPathW(HWND owner, LPWSTR path, int folder, BOOL create) ZEL_SYSTEM_CALL(SHGetSpecialFolderPathW);
HRESULT SHGetKnownFolderPath(REFKNOWNFOLDERID folder, DWORD flags, HANDLE token, PWSTR* path)
    ZEL_SYSTEM_CALL(SHGetKnownFolderPath);
HRESULT SHGetKnownFolderIDList(REFKNOWNFOLDERID folder, DWORD flags, HANDLE token, PIDLIST_ABSOLUTE* list)
    ZEL_SYSTEM_CALL(SHGetKnownFolderIDList);
void SHGetSettings(LPSHELLFLAGSTATE state, DWORD mask) ZEL_SYSTEM_CALL(SHGetSettings);
HINSTANCE ShellExecuteA(HWND owner, LPCSTR operation, LPCSTR file, LPCSTR parameters, LPCSTR directory,
                        int show) ZEL_SYSTEM_CALL(ShellExecuteA);
HINSTANCE ShellExecuteW(HWND owner, LPCWSTR operation, LPCWSTR file, LPCWSTR parameters, LPCWSTR directory,
                        int show) ZEL_SYSTEM_CALL(ShellExecuteW);
BOOL SHGetPathFromIDListA(LPCITEMIDLIST list, LPSTR path) ZEL_SYSTEM_CALL(SHGetPathFromIDListA);
BOOL SHGetPathFromIDListW(LPCITEMIDLIST list, LPWSTR path) ZEL_SYSTEM_CALL(SHGetPathFromIDListW);
// The folder that holds the last item of a list (here the desktop, as every list is one item) and
// that item, inside the list.
HRESULT SHBindToParent(LPCITEMIDLIST list, REFIID riid, void** folder, LPCITEMIDLIST* last)
    ZEL_SYSTEM_CALL(SHBindToParent);
HRESULT SHGetDataFromIDListA(IShellFolder* folder, LPCITEMIDLIST list, int format, void* data, int size)
    ZEL_SYSTEM_CALL(SHGetDataFromIDListA);
HRESULT SHGetDataFromIDListW(IShellFolder* folder, LPCITEMIDLIST list, int format, void* data, int size)
    ZEL_SYSTEM_CALL(SHGetDataFromIDListW);
DWORD_PTR SHGetFileInfoA(LPCSTR path, DWORD attributes, SHFILEINFOA* info, UINT size, UINT flags)
    ZEL_SYSTEM_CALL(SHGetFileInfoA);
DWORD_PTR SHGetFileInfoW(LPCWSTR path, DWORD attributes, SHFILEINFOW* info, UINT size, UINT flags)
    ZEL_SYSTEM_CALL(SHGetFileInfoW);
// SHGetDesktopFolder, SHGetMalloc and CoTaskMemFree: zel/platform.h.
void* CoTaskMemAlloc(SIZE_T size) ZEL_SYSTEM_CALL(CoTaskMemAlloc);
HGLOBAL GlobalFree(HGLOBAL memory) ZEL_SYSTEM_CALL(GlobalFree);
HLOCAL LocalFree(HLOCAL memory) ZEL_SYSTEM_CALL(LocalFree);

HWND FindWindowA(LPCSTR className, LPCSTR windowName) ZEL_SYSTEM_CALL(FindWindowA);
HWND FindWindowW(LPCWSTR className, LPCWSTR windowName) ZEL_SYSTEM_CALL(FindWindowW);
int GetClassNameA(HWND window, LPSTR className, int size) ZEL_SYSTEM_CALL(GetClassNameA);
int GetClassNameW(HWND window, LPWSTR className, int size) ZEL_SYSTEM_CALL(GetClassNameW);
BOOL GetClassInfoA(HINSTANCE instance, LPCSTR className, LPWNDCLASSA windowClass) ZEL_SYSTEM_CALL(GetClassInfoA);
BOOL GetClassInfoExA(HINSTANCE instance, LPCSTR className, LPWNDCLASSEXA windowClass) ZEL_SYSTEM_CALL(GetClassInfoExA);
UINT DragQueryFileA(HDROP drop, UINT index, LPSTR file, UINT size) ZEL_SYSTEM_CALL(DragQueryFileA);
UINT DragQueryFileW(HDROP drop, UINT index, LPWSTR file, UINT size) ZEL_SYSTEM_CALL(DragQueryFileW);

// ---------------------------------------------------------------------------------------------
// Time, version, command line and dates (posix/process/time.cpp, posix/process/version.cpp,
// posix/process/command_line.cpp, posix/nls/date_format.cpp)

void GetSystemTime(LPSYSTEMTIME time) ZEL_SYSTEM_CALL(GetSystemTime);
void GetLocalTime(LPSYSTEMTIME time) ZEL_SYSTEM_CALL(GetLocalTime);
void GetSystemTimeAsFileTime(LPFILETIME time) ZEL_SYSTEM_CALL(GetSystemTimeAsFileTime);
BOOL SystemTimeToFileTime(const SYSTEMTIME* systemTime, LPFILETIME fileTime) ZEL_SYSTEM_CALL(SystemTimeToFileTime);
BOOL FileTimeToSystemTime(const FILETIME* fileTime, LPSYSTEMTIME systemTime) ZEL_SYSTEM_CALL(FileTimeToSystemTime);
BOOL FileTimeToLocalFileTime(const FILETIME* fileTime, LPFILETIME localFileTime)
    ZEL_SYSTEM_CALL(FileTimeToLocalFileTime);
BOOL FileTimeToDosDateTime(const FILETIME* fileTime, LPWORD dosDate, LPWORD dosTime)
    ZEL_SYSTEM_CALL(FileTimeToDosDateTime);
// Seconds since 1970 and the FILETIME of the same instant.
FILETIME ZelPlatformFileTimeFromUnix(int64_t seconds, long nanoseconds);
int64_t ZelPlatformUnixFromFileTime(const FILETIME& time);

// ZEL_OS_VERSION (platform.major.minor) or an NT-family system of no known version.
BOOL GetVersionExA(LPOSVERSIONINFOA info) ZEL_SYSTEM_CALL(GetVersionExA);
HANDLE GetCurrentProcess() ZEL_SYSTEM_CALL(GetCurrentProcess);
DWORD GetCurrentThreadId() ZEL_SYSTEM_CALL(GetCurrentThreadId);
BOOL IsWow64Process(HANDLE process, PBOOL wow64) ZEL_SYSTEM_CALL(IsWow64Process);

// The process's arguments quoted into one line, and split again by the Win32 rules. The array
// of CommandLineToArgvW is one block, released with GlobalFree or LocalFree.
LPWSTR GetCommandLineW() ZEL_SYSTEM_CALL(GetCommandLineW);
LPSTR GetCommandLineA() ZEL_SYSTEM_CALL(GetCommandLineA);
LPWSTR* CommandLineToArgvW(LPCWSTR commandLine, int* count) ZEL_SYSTEM_CALL(CommandLineToArgvW);

// The user's language decides month and day names and the long forms; pictures as Win32's.
int GetDateFormatW(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCWSTR format, LPWSTR buffer, int size)
    ZEL_SYSTEM_CALL(GetDateFormatW);
int GetDateFormatA(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCSTR format, LPSTR buffer, int size)
    ZEL_SYSTEM_CALL(GetDateFormatA);
int GetTimeFormatW(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCWSTR format, LPWSTR buffer, int size)
    ZEL_SYSTEM_CALL(GetTimeFormatW);
int GetTimeFormatA(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCSTR format, LPSTR buffer, int size)
    ZEL_SYSTEM_CALL(GetTimeFormatA);

// ---------------------------------------------------------------------------------------------
// System modules (posix/modules/system_modules.cpp): LoadLibrary and GetModuleHandle know "kernel32.dll"
// and "shell32.dll" (any case), whose GetProcAddress gives the platform calls above that the
// library binds at run time. ZEL_HIDE_CALLS, a list of names separated by commas, hides calls
// from GetProcAddress, read when it is asked.

HMODULE ZelPlatformSystemModule(const std::u16string& name);  // null when not a system module
FARPROC ZelPlatformSystemProc(HMODULE module, LPCSTR name);    // null when unknown or hidden
LPCWSTR ZelPlatformSystemModuleName(HMODULE module);          // "kernel32.dll" ..., or null

// ---------------------------------------------------------------------------------------------
// Component model (posix/shell/component_model.cpp). Objects live in their own process only, so there
// are no remote connections to cut. InterlockedIncrement and InterlockedDecrement are above.

HRESULT CoDisconnectObject(LPUNKNOWN unknown, DWORD reserved) ZEL_SYSTEM_CALL(CoDisconnectObject);

#endif  // ZEL_PLATFORM_WIN32_H
