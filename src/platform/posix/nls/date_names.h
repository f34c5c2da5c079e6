// Day and month names, time markers and the default pictures of the languages that the date and
// time formats know; any other language takes English (United States).
#ifndef ZEL_PLATFORM_POSIX_DATE_NAMES_H
#define ZEL_PLATFORM_POSIX_DATE_NAMES_H

#include <zel/wintypes.h>

struct ZelDateLanguage {
    const char16_t* days[7];  // Sunday first
    const char16_t* shortDays[7];
    const char16_t* months[12];
    const char16_t* shortMonths[12];
    const char16_t* am;
    const char16_t* pm;
    const char16_t* era;
    const char16_t* longDate;
    const char16_t* shortDate;
    const char16_t* time;
};

const ZelDateLanguage& ZelDateLanguageOf(LANGID language);

#endif  // ZEL_PLATFORM_POSIX_DATE_NAMES_H
