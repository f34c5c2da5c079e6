// The two textual forms of 16-bit strings: "U+" followed by four hexadecimal digits a unit, and
// escapes /uXXXX inside a string.
#include <zel/strings.h>

#include <cstdint>
#include <cstring>

#include "strings/wchar_classes.h"
#include "strings/wstr.h"

int ZelUniStrToHexStr(const WCHAR* text, char* output, int size) {
    if (!output || size < 1) return 0;
    if (!text) {
        output[0] = '\0';
        return 0;
    }
    const int64_t n = static_cast<int64_t>(wcslen(text));
    if (4 * n + 3 > size) {
        output[0] = '\0';
        return 0;
    }
    static constexpr char kDigits[] = "0123456789abcdef";
    char* w = output;
    *w++ = 'U';
    *w++ = '+';
    for (const WCHAR* p = text; *p; ++p) {
        *w++ = kDigits[(*p >> 12) & 0xF];
        *w++ = kDigits[(*p >> 8) & 0xF];
        *w++ = kDigits[(*p >> 4) & 0xF];
        *w++ = kDigits[*p & 0xF];
    }
    *w = '\0';
    return static_cast<int>(w - output);
}

int ZelHexStrToUniStr(const char* text, WCHAR* output) {
    if (!text || !output) return 0;
    const size_t length = std::strlen(text);
    if (length < 6 || std::strncmp(text, "U+", 2) != 0) return 0;

    // The prefix counts toward the length, so a last group of 2 or 3 digits still makes a unit.
    const size_t units = length / 4;
    const char* p = text + 2;
    for (size_t i = 0; i < units; ++i) {
        uint32_t value = 0;
        for (int k = 0; k < 4 && *p; ++k, ++p) value = (value << 4) + zelchars::AlnumDigitValue(*p);
        output[i] = static_cast<WCHAR>(value);
    }
    output[units] = 0;
    return static_cast<int>(units);
}

int ZelHexChrToUniStr(const WCHAR* text, WCHAR* output) {
    if (!text || !output) return 0;
    size_t n = wcslen(text);
    if (!wcsstr(text, u"/u")) {
        if (output != text) std::memmove(output, text, (n + 1) * sizeof(WCHAR));
        return static_cast<int>(n);
    }

    // The output never outruns the input, so the same array may serve for both.
    const WCHAR* r = text;
    WCHAR* w = output;
    while (*r) {
        if (r[0] == u'/' && (r[1] == u'u' || r[1] == u'U') && zelchars::IsHexDigit(r[2]) &&
            zelchars::IsHexDigit(r[3]) && zelchars::IsHexDigit(r[4]) && zelchars::IsHexDigit(r[5])) {
            *w++ = static_cast<WCHAR>((zelchars::HexDigitValue(r[2]) << 12) | (zelchars::HexDigitValue(r[3]) << 8) |
                                      (zelchars::HexDigitValue(r[4]) << 4) | zelchars::HexDigitValue(r[5]));
            r += 6;
            n -= 5;
        } else {
            *w++ = *r++;
        }
    }
    *w = 0;
    return static_cast<int>(n);
}
