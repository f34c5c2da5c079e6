// Names of temporary files below the registered Temp directory. The counters are plain process-wide
// values: in wide mode the thread id in the name keeps threads apart, in ANSI mode only the test
// of the file system does.
#include "paths/temp_names.h"

#include <zel/paths.h>
#include <zel/strings.h>

#include <cstring>

#include "paths/path_table.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

WORD sequenceCounter = 0;
DWORD imageCounter = 1000;

// The longest name that a destination of MAX_PATH holds.
constexpr size_t kNameMax = MAX_PATH - 1;

bool AnsiMode() {
    int version = ZelGetWinVersion();
    return version >= 1 && version <= 3;
}

// The Temp directory, with the subdirectory text behind it; false when it would not fit.
bool TempDirectory(const WCHAR* subdirectory, WCHAR* directory) {
    WCHAR source[2 * MAX_PATH] = u"${Temp}\\";
    size_t used = wcslen(source);
    if (subdirectory) {
        if (wcslen(subdirectory) > kNameMax) return false;
        wcscpy(source + used, subdirectory);
    }
    return ZelExpandPathMacros(source, directory);
}

// One name of ZelPathMakeTempEx; false when it would pass MAX_PATH - 1 characters.
bool FormatName(WCHAR* name, const WCHAR* directory, const WCHAR* prefix, UINT number, const WCHAR* extension) {
    int written = AnsiMode() ? _snwprintf(name, MAX_PATH, u"%s%s%04x.%s", directory, prefix, number, extension)
                             : _snwprintf(name, MAX_PATH, u"%s%s%08x%04x.%s", directory, prefix,
                                          GetCurrentThreadId(), number, extension);
    if (written < 0 || static_cast<size_t>(written) > kNameMax) {
        name[0] = 0;
        return false;
    }
    return true;
}

// Steps the counter once per search: seeded from the time of day on first use, and never 0 after
// 0xFFFF.
void AdvanceSequence() {
    if (sequenceCounter == 0) {
        FILETIME now = {};
        WORD dosDate = 0, dosTime = 0;
        GetSystemTimeAsFileTime(&now);
        FileTimeToDosDateTime(&now, &dosDate, &dosTime);
        sequenceCounter = dosTime;
    } else if (sequenceCounter == 0xFFFF) {
        sequenceCounter = 1;
    } else {
        ++sequenceCounter;
    }
}

}  // namespace

WORD ZelTempSequenceCounter() { return sequenceCounter; }

void ZelSetTempSequenceCounter(WORD value) { sequenceCounter = value; }

UINT ZelPathMakeTemp(const WCHAR* prefix, UINT number, WCHAR* destination) {
    if (!destination) return 0;
    destination[0] = 0;
    if (!prefix) return 0;
    WCHAR directory[MAX_PATH];
    if (!TempDirectory(nullptr, directory)) return 0;
    // The system's name: the directory, up to three characters of the prefix, at most four
    // hexadecimal digits and ".tmp".
    size_t prefixLength = wcslen(prefix) < 3 ? wcslen(prefix) : 3;
    if (wcslen(directory) + prefixLength + 4 + 4 > kNameMax) return 0;
    if (number == 0 && !ZelPathCreate(directory)) return 0;
    return ZelGetTempFileName(directory, prefix, number, destination);
}

UINT ZelPathMakeTempEx(const WCHAR* subdirectory, const WCHAR* prefix, UINT number, const WCHAR* extension,
                       WCHAR* destination) {
    if (!destination) return 0;
    destination[0] = 0;
    if (!prefix || !extension) return 0;
    WCHAR directory[MAX_PATH];
    if (!TempDirectory(subdirectory, directory)) return 0;

    // A number of the caller's is neither tested nor made into a file.
    if (number != 0) return FormatName(destination, directory, prefix, number, extension) ? number : 0;

    if (!ZelPathCreate(directory)) return 0;
    AdvanceSequence();
    // The value 0 is never a candidate; the search ends where it began (a seed of 0 begins at 1).
    const UINT first = sequenceCounter ? sequenceCounter : 1;
    UINT candidate = first;
    WCHAR name[MAX_PATH];
    do {
        if (!FormatName(name, directory, prefix, candidate, extension)) return 0;
        if (u__waccess(name, 0) == -1) {
            wcscpy(destination, name);
            return candidate;
        }
        candidate = candidate == 0xFFFF ? 1 : candidate + 1;
    } while (candidate != first);
    return 0;
}

BOOL ZelPathMakeImageTemp(const WCHAR* sourceFileName, WCHAR* destination) {
    if (!destination) return 0;
    destination[0] = 0;
    if (!sourceFileName) return 0;
    const WCHAR* sourceDot = wcsrchr(sourceFileName, u'.');
    for (;;) {
        UINT number = imageCounter++;
        // A number of 0 would have the system create a file, so the counter skips it on wrapping.
        if (number == 0) number = imageCounter++;
        if (!ZelPathMakeTemp(u"IMG", number, destination)) {
            destination[0] = 0;
            return 0;
        }
        if (WCHAR* dot = wcsrchr(destination, u'.')) *dot = 0;
        if (sourceDot) {
            if (wcslen(destination) + wcslen(sourceDot) > kNameMax) {
                destination[0] = 0;
                return 0;
            }
            wcscpy(destination + wcslen(destination), sourceDot);
        }
        if (!ZelFileExist(destination)) break;
    }
    return ZelPathCreate(destination);
}
