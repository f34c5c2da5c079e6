// Locale information as 16-bit text, by the wide-over-ANSI rule of the adapters.
#include <zel/codetables.h>
#include <zel/frame.h>

#include <cstring>

#include "paths/os/ansi_text.h"
#include "platform/win32.h"

BOOL ZelGetLocaleInfo(LCID locale, LCTYPE type, WCHAR* buffer, int size) {
    if (!ZelAnsiMode()) return GetLocaleInfoW(locale, type, buffer, size) > 0 ? TRUE : FALSE;
    // The 8-bit answer has 260 bytes, whatever the caller's size says.
    char text[MAX_PATH] = {};
    const int bytes = GetLocaleInfoA(locale, type, text, size < MAX_PATH ? size : MAX_PATH);
    if (bytes > 0 && buffer && size > 0) {
        text[MAX_PATH - 1] = 0;
        buffer[0] = 0;  // an empty answer converts to nothing
        // The text's own length, not -1: counted with its terminator, an answer that fills the
        // caller's size (a three-letter abbreviation in four) would not fit the conversion's room.
        ZelAnsiToUnicode(0, CP_ACP, text, static_cast<int>(strlen(text)), buffer, size);
    }
    return bytes > 0 ? TRUE : FALSE;
}
