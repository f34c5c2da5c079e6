// String operations on paths: the trailing separator, the file title, a shortened form for
// display, a walk through a list of masks, and tests of single names.
#include <zel/paths.h>
#include <zel/strings.h>

#include <cstring>

#include "strings/wstr.h"

namespace {

bool IsSeparator(WCHAR c) { return c == u'\\' || c == u'/'; }

// What follows the last backslash, slash or colon, or the whole path.
const WCHAR* FindTitle(const WCHAR* path) {
    const WCHAR* title = path;
    for (const WCHAR* p = path; *p; ++p)
        if (IsSeparator(*p) || *p == u':') title = p + 1;
    return title;
}

// The next backslash after position, or the terminator.
size_t NextBackslash(const WCHAR* path, size_t position) {
    while (path[position] && path[position] != u'\\') ++position;
    return position;
}

// The cursor of ZelGetNextMask, shared by the whole process.
const WCHAR* maskCursor = nullptr;

}  // namespace

void ZelAppendBackSlash(WCHAR* path) {
    if (!path || !path[0]) return;
    size_t length = wcslen(path);
    if (path[length - 1] == u'\\') return;
    // Only the backslash counts: a path ending in a slash still gets one. A full buffer stays.
    if (length >= MAX_PATH - 1) return;
    path[length] = u'\\';
    path[length + 1] = 0;
}

void ZelRemoveBackSlash(WCHAR* path) {
    if (!path || !path[0]) return;
    size_t length = wcslen(path);
    // \ and c:\ are roots and keep their separator.
    if (length == 1 || !IsSeparator(path[length - 1]) || path[length - 2] == u':') return;
    path[length - 1] = 0;
}

int ZelGetFileTitle(const WCHAR* path, WCHAR* buffer, int size) {
    const WCHAR* title = path ? FindTitle(path) : u"";
    if (!buffer) return static_cast<int>(wcslen(title)) + 1;
    ustrlcpy(buffer, title, size);
    return 0;
}

void ZelAbbreviateName(WCHAR* path, int maximum, BOOL keepTitle) {
    if (!path) return;
    const size_t length = wcslen(path);
    if (maximum >= 0 && length <= static_cast<size_t>(maximum)) return;

    const WCHAR* title = FindTitle(path);
    const size_t titleLength = wcslen(title);
    const size_t directoryLength = length - titleLength;
    auto fits = [maximum](size_t width) { return maximum >= 0 && width <= static_cast<size_t>(maximum); };
    auto becomeTitle = [&] { std::memmove(path, title, (titleLength + 1) * sizeof(WCHAR)); };

    if (!fits(titleLength)) {
        if (keepTitle)
            becomeTitle();
        else
            path[0] = 0;
        return;
    }

    // The part always kept: the drive or the server name, and one more component when the
    // directory has more than a root. Every walk stops at the terminator too.
    size_t kept = length < 2 ? length : 2;
    if (path[0] == u'\\' && path[1] == u'\\' && path[2] != u'\\') kept = NextBackslash(path, kept);
    if (directoryLength > 3 && path[kept]) kept = NextBackslash(path, kept + 1);
    if (!fits(kept + titleLength + 5)) {
        becomeTitle();
        return;
    }

    // The tail walks from backslash to backslash but never past the separator before the title,
    // which a path with slashes or a colon there would otherwise lose.
    const size_t titleStart = static_cast<size_t>(title - path);
    const size_t lastTailStart = titleStart > 0 && IsSeparator(path[titleStart - 1]) ? titleStart - 1 : titleStart;
    size_t tail = kept;
    while (!fits(kept + (length - tail) + 4)) {
        size_t next = NextBackslash(path, tail + 1);
        tail = next < lastTailStart ? next : lastTailStart;
    }

    // The result is shorter than the path, so it is built in place: the tail first, as it may
    // move either way.
    static const WCHAR ellipsis[] = u"\\...";
    std::memmove(path + kept + 4, path + tail, (length - tail + 1) * sizeof(WCHAR));
    std::memcpy(path + kept, ellipsis, 4 * sizeof(WCHAR));
}

BOOL ZelGetNextMask(const WCHAR* list, WCHAR* destination) {
    if (list) maskCursor = list;
    if (!destination) return 0;
    destination[0] = 0;
    if (!maskCursor) return 0;

    size_t length = 0;
    const WCHAR* p = maskCursor;
    for (; *p && *p != u';'; ++p)
        if (length < MAX_PATH - 1) destination[length++] = *p;
    destination[length] = 0;
    maskCursor = *p ? p + 1 : p;
    // An empty field reads like the end of the list.
    return length ? 1 : 0;
}

BOOL ZelPathIsValidDirName(const WCHAR* name) {
    if (!name || !name[0]) return 0;
    for (const WCHAR* p = name; *p; ++p)
        if (wcschr(u"/:<>?*|\\\"", *p)) return 0;
    return 1;
}

BOOL ZelPathIsReservedFileName(const WCHAR* name) {
    static const WCHAR* const reserved[] = {
        u"CON",  u"PRN",  u"AUX",  u"CLOCK$", u"NUL",  u"COM1", u"COM2", u"COM3",
        u"COM4", u"COM5", u"COM6", u"COM7",   u"COM8", u"COM9", u"LPT1", u"LPT2",
        u"LPT3", u"LPT4", u"LPT5", u"LPT6",   u"LPT7", u"LPT8", u"LPT9",
    };
    if (!name || !name[0]) return 0;
    for (const WCHAR* candidate : reserved)
        if (_ustricmp(name, candidate) == 0) return 1;
    return 0;
}
