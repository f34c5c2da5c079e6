// Finding a code table file in ${Common}\Code: by a known table number, or the highest number
// that the directory holds for the kind.
#include <zel/paths.h>

#include "codetables/code_tables.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

const char* const kKindNames[] = {"gen", "com", "pua", "cjk", "chs", "jpn", "cht", "kor", "u2k", "k2u",
                                  "han", "aux", "zel", "949", "1361", "932", "936", "950", "9566"};
constexpr int kKindNameCount = sizeof kKindNames / sizeof kKindNames[0];

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

const char* ZelTableKindName(int kind) {
    return kind >= 0 && kind < kKindNameCount ? kKindNames[kind] : "ext";
}

int FindCodeTableFile(int kind, int* number, WCHAR* path) {
    if (!number || !path) return 0;
    WCHAR directory[MAX_PATH];
    ZelPathToAbsolute(u"${Common}\\Code", directory);
    const char* name = ZelTableKindName(kind);

    if (*number == 0) {
        WCHAR mask[MAX_PATH];
        if (_snwprintf(mask, MAX_PATH, u"%s\\u???_%S.dat", directory, name) < 0) return 0;
        // The narrow listing in the system's ANSI code page: this path must not pass through the
        // conversions that the tables feed.
        char narrowMask[MAX_PATH * 3 + 4];
        if (WideCharToMultiByte(CP_ACP, 0, mask, -1, narrowMask, static_cast<int>(sizeof narrowMask), nullptr,
                                nullptr) <= 0)
            return 0;
        WIN32_FIND_DATAA found;
        HANDLE listing = FindFirstFileA(narrowMask, &found);
        if (listing == INVALID_HANDLE_VALUE) return 0;
        int highest = 0;
        do {
            const char* file = found.cFileName;
            if (IsDigit(file[1]) && IsDigit(file[2]) && IsDigit(file[3])) {
                int value = (file[1] - '0') * 100 + (file[2] - '0') * 10 + (file[3] - '0');
                if (value > highest) highest = value;
            }
        } while (FindNextFileA(listing, &found));
        FindClose(listing);
        if (highest == 0) return 0;
        *number = highest;
    }
    if (_snwprintf(path, MAX_PATH, u"%s\\u%03d_%S.dat", directory, *number, name) < 0) {
        path[0] = 0;
        return 0;
    }
    return 1;
}
