// CZelIniManager's parser: sections and their entries from the buffer of a load, in one pass.
//
// Lines end at CR; an LF alone doesn't end one. A line whose first unit is ";" is a comment where
// a line is skipped: behind a section line and between entries. An entry of one or two units takes
// the next line, its line end included, into its text.
#include <zel/frame.h>
#include <zel/settings.h>

#include <cstring>
#include <new>

#include "settings/ini_internal.h"
#include "strings/wstr.h"

namespace {

constexpr WCHAR kCR = u'\r';
constexpr WCHAR kLF = u'\n';
constexpr WCHAR kSpace = u' ';

const WCHAR* SkipSpaces(const WCHAR* text) {
    while (*text == kSpace) ++text;
    return text;
}

}  // namespace

BOOL CZelIniManager::__IsEndPoint(const WCHAR* position) {
    return (position - readBuffer) * static_cast<ptrdiff_t>(sizeof(WCHAR)) >= fileSize;
}

BOOL CZelIniManager::_IsValidSectionName(const WCHAR* text) {
    const size_t length = wcslen(text);
    return length > 0 && text[0] == u'[' && text[length - 1] == u']';
}

BOOL CZelIniManager::_IsSecBeginLine(const WCHAR* text) { return *SkipSpaces(text) == u'['; }

WCHAR* CZelIniManager::_ObtainSecName(WCHAR* position, WCHAR* name) {
    WCHAR* open = wcschr(position, u'[');
    if (!open) return nullptr;
    WCHAR* close = wcschr(open, u']');
    if (!close) return nullptr;
    const size_t length = static_cast<size_t>(close - open) + 1;
    std::memcpy(name, open, length * sizeof(WCHAR));
    name[length] = 0;
    return close + 1;
}

WCHAR* CZelIniManager::_SkipCommentLine(WCHAR* position) {
    if (!wcschr(position, u';')) return nullptr;
    return wcschr(position, kCR);
}

WCHAR* CZelIniManager::_SkipLine(WCHAR* position) {
    while (!__IsEndPoint(position)) {
        if (*position == kCR || *position == kLF) {
            ++position;
        } else if (*position == u';') {
            position = _SkipCommentLine(position);
            if (!position) return nullptr;
        } else {
            break;
        }
    }
    return position;
}

WCHAR* CZelIniManager::_ObtainValue(WCHAR* position, WCHAR** buffer, int* capacity, BOOL* end) {
    WCHAR* const start = position;
    int count = 0;
    *end = FALSE;
    for (;;) {
        while (!__IsEndPoint(position) && *position != kCR) {
            ++position;
            ++count;
        }
        if (__IsEndPoint(position)) {
            *end = TRUE;
            if (count == 0) return nullptr;
            break;
        }
        if (count == 0) return nullptr;
        // At a CR. A line of one or two units goes on into the next one, line end and all.
        const bool shortLine = count <= 2;
        ++position;
        if (shortLine) ++count;
        if (!__IsEndPoint(position) && *position == kLF) {
            ++position;
            if (shortLine) ++count;
        }
        if (!shortLine) break;
    }

    if (count >= *capacity) {
        int grown = *capacity;
        while (grown <= count) grown += kZelIniEntryBufferStep;
        auto* larger = new (std::nothrow) WCHAR[grown];
        delete[] *buffer;
        *buffer = larger;  // null tells the caller that memory ran out
        if (!larger) return nullptr;
        *capacity = grown;
    }
    std::memcpy(*buffer, start, static_cast<size_t>(count) * sizeof(WCHAR));
    (*buffer)[count] = 0;
    return position;
}

void CZelIniManager::__SpiltStringIdAndValue(WCHAR* text, WCHAR** id, WCHAR** value) {
    *id = nullptr;
    WCHAR* equals = wcschr(text, u'=');
    if (!equals) {
        *value = text;
        return;
    }
    *value = const_cast<WCHAR*>(SkipSpaces(equals + 1));
    WCHAR* last = equals;
    while (last > text && last[-1] == kSpace) --last;
    *last = 0;
    if (last > text) *id = text;
}

int CZelIniManager::_LoadCfgInfo() {
    int capacity = kZelIniEntryBufferStep;
    WCHAR* buffer = new (std::nothrow) WCHAR[capacity];
    std::vector<tagZELINIVALUE*>* values = nullptr;  // the section being read, until it is listed
    int result = 1;
    try {
        if (!buffer) throw std::bad_alloc();
        buffer[0] = 0;
        tagZELINIVALUE work;
        WCHAR name[kZelIniSectionNameSize];
        WCHAR* position = readCursor;
        while (position) {
            WCHAR* open = wcschr(position, u'[');
            WCHAR* close = open ? wcschr(open, u']') : nullptr;
            if (!close) break;
            if (close - open + 1 >= kZelIniSectionNameSize) {
                result = 0;  // a name this long is refused, not cut
                break;
            }
            position = _SkipLine(_ObtainSecName(position, name));

            values = new std::vector<tagZELINIVALUE*>();
            while (position && !_IsSecBeginLine(position)) {
                BOOL end = FALSE;
                WCHAR* next = _ObtainValue(position, &buffer, &capacity, &end);
                if (!buffer) throw std::bad_alloc();
                if (next) {
                    WCHAR* id = nullptr;
                    WCHAR* value = nullptr;
                    __SpiltStringIdAndValue(buffer, &id, &value);
                    // A line without an id gets an empty one rather than its neighbour's.
                    work.id = id ? id : u"";
                    work.value = value;
                    if (!_AddItemToValueList(values, &work)) throw std::bad_alloc();
                    position = next;
                }
                if (end) break;
                position = _SkipLine(position);
            }

            tagZELINISECTION section{name, values};
            if (!_AddItemToSecList(&section)) throw std::bad_alloc();
            values = nullptr;
        }
    } catch (const std::bad_alloc&) {
        if (values) {
            for (tagZELINIVALUE* value : *values) delete value;
            delete values;
        }
        ZelSetError(kZelIniOutOfMemory);
        result = 0;
    }
    delete[] buffer;
    return result;
}
