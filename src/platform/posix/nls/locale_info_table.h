// The system's facts about each locale it knows, for GetLocaleInfo.
#ifndef ZEL_PLATFORM_POSIX_LOCALE_INFO_TABLE_H
#define ZEL_PLATFORM_POSIX_LOCALE_INFO_TABLE_H

#include <zel/wintypes.h>

struct ZelLocaleFacts {
    LANGID language;
    const char16_t* abbreviation;  // three letters, or null where the system gives none
    const char16_t* iso639;
    const char16_t* iso3166;
    const char16_t* englishLanguage;
    const char16_t* englishCountry;
    UINT ansiCodePage;  // 0 for a language that has only Unicode text
    UINT oemCodePage;   // 1 likewise
};

// The facts of a language id, or null for a language the system does not know.
const ZelLocaleFacts* ZelPlatformLocaleFacts(LANGID language);

// The code page of a locale's A forms: its own ANSI code page, or the system's with
// LOCALE_USE_CP_ACP among the flags, for a locale of Unicode text only, or one the system lacks.
UINT ZelPlatformLocaleCodePage(LCID locale, DWORD flags);

#endif  // ZEL_PLATFORM_POSIX_LOCALE_INFO_TABLE_H
