// ZelAnsiToUnicode, ZelUnicodeToAnsi and ZelAnsiToAnsi over the two cores, and their overloads,
// which go to the system alone. The cores take the table path for a ready table code page and
// hand everything else to the system.
#include <zel/codetables.h>

#include <vector>

#include "codetables/code_tables.h"
#include "codetables/codepage_front.h"
#include "codetables/codepage_table_path.h"
#include "platform/win32.h"

namespace {

// The system's count with a length of -1 includes the terminator, and the system may have filled
// the whole buffer: the terminator stays inside it either way.
void Terminate(WCHAR* buffer, int count, int size) { buffer[count < size ? count : size - 1] = 0; }
void Terminate(char* buffer, int count, int size) { buffer[count < size ? count : size - 1] = 0; }

// The intermediate wide text of ZelAnsiToAnsi: (size x 3) / 2 units, on the stack up to a bound
// that keeps the frame small, on the heap beyond it.
constexpr int kStackUnits = 4096;

template <typename Convert>
int ThroughWide(int size, Convert&& convert) {
    long long units = static_cast<long long>(size) * 3 / 2;
    if (units > INT32_MAX) units = INT32_MAX;
    if (units <= kStackUnits) {
        WCHAR wide[kStackUnits];
        return convert(wide, static_cast<int>(units));
    }
    std::vector<WCHAR> wide(static_cast<size_t>(units));
    return convert(wide.data(), static_cast<int>(units));
}

// A table code page that is ready gives its tables; every other code page, and one whose table
// is missing or broken, goes to the system with the code page as the caller gave it.
const ZelCodePageTables* ReadyTables(UINT codePage) {
    if (EnsureCodePageTbl(codePage) != kZelTableReady) return nullptr;
    return ZelCodePageTablesOf(codePage);
}

}  // namespace

int CodePageToUnicode(UINT codePage, DWORD flags, const char* text, int length, WCHAR* buffer, int size) {
    if (!buffer || size < 1) return 0;
    const UINT resolved = ZelResolveCodePage(codePage);
    if (const ZelCodePageTables* tables = ReadyTables(resolved))
        return ZelTableToUnicode(resolved, *tables, text, length, buffer, size);
    int count = MultiByteToWideChar(codePage, flags, text, length, buffer, size - 1);
    Terminate(buffer, count, size);
    return count;
}

int UnicodeToCodePage(UINT codePage, DWORD flags, const WCHAR* text, int length, char* buffer, int size,
                      const char* defaultChar, BOOL* usedDefault) {
    if (!buffer || size < 1) return 0;
    const UINT resolved = ZelResolveCodePage(codePage);
    // The table path knows no default character: an unmapped code point is what its table holds.
    if (const ZelCodePageTables* tables = ReadyTables(resolved)) {
        if (usedDefault) *usedDefault = FALSE;
        return ZelTableFromUnicode(resolved, *tables, text, length, buffer, size);
    }
    int count = WideCharToMultiByte(codePage, flags, text, length, buffer, length == -1 ? size : size - 1,
                                    defaultChar, usedDefault);
    Terminate(buffer, count, size);
    return count;
}

int ZelAnsiToUnicode(DWORD, DWORD codePage, const char* text, int length, WCHAR* buffer, int size, int) {
    if (!buffer || size < 1) return 0;
    if (size < 2) {
        buffer[0] = 0;
        return 0;
    }
    int count = CodePageToUnicode(codePage, MB_PRECOMPOSED, text, length, buffer, size);
    Terminate(buffer, count, size);
    return count;
}

int ZelUnicodeToAnsi(DWORD, DWORD codePage, const WCHAR* text, int length, char* buffer, int size,
                     const char* defaultChar) {
    if (!buffer || size < 1) return 0;
    if (size < 2) {
        buffer[0] = 0;
        return 0;
    }
    int count = UnicodeToCodePage(codePage, defaultChar ? WC_DEFAULTCHAR : 0, text, length, buffer, size,
                                  defaultChar, nullptr);
    Terminate(buffer, count, size);
    return count;
}

int ZelAnsiToAnsi(DWORD, DWORD sourceCodePage, const char* text, int length, DWORD targetCodePage, char* buffer,
                  int size, const char* defaultChar) {
    return ThroughWide(size, [&](WCHAR* wide, int units) {
        if (units > 1)
            CodePageToUnicode(sourceCodePage, MB_PRECOMPOSED, text, length, wide, units);
        else if (units == 1)
            wide[0] = 0;
        static const WCHAR empty[1] = {0};
        return ZelUnicodeToAnsi(0, targetCodePage, units > 0 ? wide : empty, -1, buffer, size, defaultChar);
    });
}

// ---------------------------------------------------------------------------------------------
// The overloads: one system call each.

int ZelAnsiToUnicode(DWORD, DWORD codePage, const char* text, int length, WCHAR* buffer, int size) {
    if (!buffer || size < 2) return 0;
    int count = MultiByteToWideChar(codePage, MB_PRECOMPOSED, text, length, buffer, size - 1);
    if (count > 0) Terminate(buffer, count, size);
    return count;
}

int ZelUnicodeToAnsi(DWORD, DWORD codePage, const WCHAR* text, int length, char* buffer, int size) {
    if (!buffer || size < 2) return 0;
    int count = WideCharToMultiByte(codePage, 0, text, length, buffer, size - 1, nullptr, nullptr);
    if (count > 0) Terminate(buffer, count, size);
    return count;
}

int ZelAnsiToAnsi(DWORD, DWORD sourceCodePage, const char* text, int length, DWORD targetCodePage, char* buffer,
                  int size) {
    return ThroughWide(size, [&](WCHAR* wide, int units) {
        if (units < 2) return ZelUnicodeToAnsi(0, targetCodePage, u"", -1, buffer, size);
        if (ZelAnsiToUnicode(0, sourceCodePage, text, length, wide, units) == 0) wide[0] = 0;
        return ZelUnicodeToAnsi(0, targetCodePage, wide, -1, buffer, size);
    });
}
