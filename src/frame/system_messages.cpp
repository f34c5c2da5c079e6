// Texts of system codes from the system's message table, as one line each: the width mask turns
// the table's line breaks into blanks. The insert, when given, is the message's first argument.
#include <cstring>
#include <vector>

#include <zel/codetables.h>

#include "frame/error_block.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

constexpr DWORD kFlagsWithInsert = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                   FORMAT_MESSAGE_ARGUMENT_ARRAY | FORMAT_MESSAGE_MAX_WIDTH_MASK;  // 0x31FF
constexpr DWORD kFlagsWithoutInsert = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                      FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;  // 0x13FF
constexpr DWORD kDefaultLanguage = 0x400;
constexpr size_t kTextChars = ZEL_ERROR_TEXT_SIZE - 1;

}  // namespace

BOOL ZelFormatSystemError(const WCHAR* insert, DWORD code, ZelErrorDetail* detail) {
    if (!detail) return FALSE;
    LPSTR message = nullptr;
    if (insert) {
        // Four bytes per character and four more hold the insert in any code page.
        std::vector<char> ansi(wcslen(insert) * 4 + 4);
        ZelUnicodeToAnsi(0, CP_ACP, insert, -1, ansi.data(), static_cast<int>(ansi.size()), nullptr);
        DWORD_PTR arguments[2] = {reinterpret_cast<DWORD_PTR>(ansi.data()), 0};
        FormatMessageA(kFlagsWithInsert, nullptr, code, kDefaultLanguage, reinterpret_cast<LPSTR>(&message), 0,
                       reinterpret_cast<va_list*>(arguments));
    } else {
        FormatMessageA(kFlagsWithoutInsert, nullptr, code, kDefaultLanguage, reinterpret_cast<LPSTR>(&message), 0,
                       nullptr);
    }
    if (!message) return FALSE;
    // No byte of any code page gives more than one 16-bit unit; one unit more than the text and
    // its terminator keeps the conversion clear of its own end-of-buffer rules.
    std::vector<WCHAR> wide(std::strlen(message) + 2);
    ZelAnsiToUnicode(0, CP_ACP, message, -1, wide.data(), static_cast<int>(wide.size()), 0);
    wcsncpy(detail->text, wide.data(), kTextChars);
    detail->text[kTextChars] = 0;
    LocalFree(message);
    return TRUE;
}
