// The character classes that the text codecs test, on 16-bit units and on bytes. They follow the
// C locale whatever the process locale is, so that a codec reads the same text the same way
// everywhere.
#ifndef ZEL_STRINGS_WCHAR_CLASSES_H
#define ZEL_STRINGS_WCHAR_CLASSES_H

#include <zel/wintypes.h>

namespace zelchars {

// 0 to 9, a to f, A to F.
constexpr bool IsHexDigit(WCHAR c) {
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

// The value of a unit for which IsHexDigit holds.
constexpr unsigned HexDigitValue(WCHAR c) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (c >= u'a' && c <= u'f') return c - u'a' + 10u;
    return c - u'A' + 10u;
}

// Blank, tab, line feed, vertical tab, form feed, carriage return.
constexpr bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// A digit of a letter-and-digit number: 0 to 9 for the digits, 10 onwards for the letters of
// either case (so z is 35), and 0 for any other byte.
constexpr unsigned AlnumDigitValue(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'z') return static_cast<unsigned>(c - 'a') + 10u;
    if (c >= 'A' && c <= 'Z') return static_cast<unsigned>(c - 'A') + 10u;
    return 0;
}

}  // namespace zelchars

#endif  // ZEL_STRINGS_WCHAR_CLASSES_H
