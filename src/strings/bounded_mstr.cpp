// Bounded helpers on strings of the process's multi-byte code page. A lead byte and the byte
// behind it are one character, which is copied, kept or cut whole, never split.
//
// A lead byte directly before the terminator is not well formed; it counts as a character of one
// byte, so it is copied and kept like any other byte and no walk steps over the terminator.
#include <zel/strings.h>

#include <cstddef>
#include <cstring>

#include "platform/mbcs.h"
#include "strings/bounded_units.h"

namespace {

BYTE* Bytes(char* s) { return reinterpret_cast<BYTE*>(s); }
const BYTE* Bytes(const char* s) { return reinterpret_cast<const BYTE*>(s); }

int CopyCharacters(char* dest, const char* src, int size) {
    if (!dest || !src) return 0;
    const ZelMbcsPage& page = ZelPlatformMbcsPage();
    BYTE* out = Bytes(dest);
    const BYTE* in = Bytes(src);
    int left = size;
    for (;;) {
        auto width = static_cast<int>(page.CharLength(in));
        if (left <= width) break;
        if (!(*out++ = *in++)) return 1;
        if (width == 2) *out++ = *in++;
        left -= width;
    }
    // With two bytes left and a double-byte character next, the terminator takes the first and
    // the last byte of the buffer stays as it was.
    if (left != 0) *out = 0;
    return 0;
}

}  // namespace

int mstrlcpy(char* dest, const char* src, int size) { return CopyCharacters(dest, src, size); }

int mstrlcat(char* dest, const char* src, int size) { return zelbounded::Append(dest, src, size, CopyCharacters); }

// Unlike the other families, a string of exactly size - 1 bytes gives 0: the walk stops before
// its terminator and writes a zero over it.
int mstrcut(char* s, int size) {
    if (!s) return 0;
    const ZelMbcsPage& page = ZelPlatformMbcsPage();
    BYTE* p = Bytes(s);
    int left = size;
    for (;;) {
        auto width = static_cast<int>(page.CharLength(p));
        if (left <= width) break;
        if (!*p) return 1;
        p += width;
        left -= width;
    }
    if (left != 0) *p = 0;
    return 0;
}

int mstrtriml(char* s) {
    if (!s) return 0;
    const ZelMbcsPage& page = ZelPlatformMbcsPage();
    BYTE* start = Bytes(s);
    BYTE* p = start;
    while (*p && page.IsSpace(page.CharAt(p))) p += page.CharLength(p);
    if (p == start) return 0;
    BYTE* end = p;
    while (*end) ++end;
    std::memmove(start, p, static_cast<size_t>(end - p + 1));
    return 1;
}

// A multi-byte string cannot be walked backwards, so the walk goes forwards and counts the bytes
// of the white space since the last other character.
int mstrtrimr(char* s) {
    if (!s) return 0;
    const ZelMbcsPage& page = ZelPlatformMbcsPage();
    BYTE* p = Bytes(s);
    size_t trailing = 0;
    while (*p) {
        size_t width = page.CharLength(p);
        trailing = page.IsSpace(page.CharAt(p)) ? trailing + width : 0;
        p += width;
    }
    if (!trailing) return 0;
    p[-static_cast<ptrdiff_t>(trailing)] = 0;
    return 1;
}
