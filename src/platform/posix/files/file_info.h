// Shared pieces of the file calls: a file's status in Win32 terms, the last error of a failed call
// on a path, and the Win32 rule for giving text back in a caller's buffer.
#ifndef ZEL_PLATFORM_POSIX_FILE_INFO_H
#define ZEL_PLATFORM_POSIX_FILE_INFO_H

#include <sys/stat.h>

#include <cstdint>
#include <string>

#include "platform/win32.h"

// A file's attributes, times and size as the Win32 records carry them.
struct ZelFileInfo {
    DWORD attributes = 0;
    FILETIME creation{};
    FILETIME access{};
    FILETIME write{};
    uint64_t size = 0;
};

// Copies the attributes, times and size words that the Win32 file records share (find data,
// attribute data) from one record to another.
template <typename From, typename To>
void ZelCopyFileRecordHead(const From& from, To& to) {
    to.dwFileAttributes = from.dwFileAttributes;
    to.ftCreationTime = from.ftCreationTime;
    to.ftLastAccessTime = from.ftLastAccessTime;
    to.ftLastWriteTime = from.ftLastWriteTime;
    to.nFileSizeHigh = from.nFileSizeHigh;
    to.nFileSizeLow = from.nFileSizeLow;
}

// Copies a file's bytes, permissions and times to a new or replaced target (refused when it
// exists and failIfExists is set); on failure the last error is set and no partial target stays.
BOOL ZelCopyRegularFile(const std::string& from, const std::string& to, bool failIfExists);

// The 8-bit form of a find record: the name in the ANSI code page, cut to MAX_PATH - 1 bytes.
void ZelFindDataToAnsi(const WIN32_FIND_DATAW& wide, WIN32_FIND_DATAA& narrow);

// The last component of a system path ("" for "/").
std::string ZelFileBaseName(const std::string& systemPath);

// Attributes from a status: directory, or archive for anything else as Windows gives new files;
// read-only when the owner can't write; hidden for names that start with a dot.
DWORD ZelFileAttributesOf(const struct stat& status, const std::string& name);
ZelFileInfo ZelFileInfoOf(const struct stat& status, const std::string& name);

// Sets the last error for a call on systemPath that failed with errno value error. A missing
// name whose directory is missing too is ERROR_PATH_NOT_FOUND, as Windows tells the two apart.
DWORD ZelSetPathError(const std::string& systemPath, int error);

// The Win32 rule of the calls that give a string: when buffer holds text and its terminator,
// copy it and give its length; otherwise give the size needed with the terminator and leave the
// buffer alone.
DWORD ZelGiveText(const std::u16string& text, LPWSTR buffer, DWORD size);
DWORD ZelGiveText(const std::string& text, LPSTR buffer, DWORD size);

// The A form of such a call: runs the W form into a buffer of the size it asks for, converts the
// text to the ANSI code page and gives it by the rule above (sizes in bytes).
template <typename WideCall>
DWORD ZelGiveAnsiFromWide(LPSTR buffer, DWORD size, WideCall wideCall) {
    std::u16string text;
    DWORD needed = wideCall(nullptr, 0);
    for (int attempt = 0; needed > 0 && attempt < 4; ++attempt) {
        text.assign(needed, u'\0');
        DWORD length = wideCall(text.data(), needed);
        if (length == 0) return 0;
        if (length < needed) {
            text.resize(length);
            return ZelGiveText(ZelPlatformWideToAnsi(text.c_str()), buffer, size);
        }
        needed = length;  // it grew between the two calls
    }
    return 0;
}

#endif  // ZEL_PLATFORM_POSIX_FILE_INFO_H
