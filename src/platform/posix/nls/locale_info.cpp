// GetLocaleInfo over the table of the system's locales. The default locales stand for the user's
// and the system's language, a neutral language for its main locale; a language the table lacks,
// or lacks a sublanguage of, is unknown.
#include <cstdio>
#include <cstring>
#include <string>

#include "platform/posix/nls/locale_info_table.h"
#include "platform/posix/text_result.h"
#include "platform/win32.h"

namespace {

// Flags that may ride on the type and change nothing of the text: the table has no user
// overrides, and the code page only matters to the A form.
constexpr LCTYPE kIgnoredTypeFlags = LOCALE_NOUSEROVERRIDE | LOCALE_USE_CP_ACP;


// A neutral language (no sublanguage) answers for the locale of its main country.
LANGID NeutralDefault(LANGID language) {
    switch (PRIMARYLANGID(language)) {
        case LANG_CHINESE: return MAKELANGID(LANG_CHINESE, 0x02);  // simplified, PRC
        case 0x0A: return MAKELANGID(0x0A, 0x03);                  // Spanish, modern sort
        default: return MAKELANGID(PRIMARYLANGID(language), SUBLANG_DEFAULT);
    }
}

const ZelLocaleFacts* FactsOf(LCID locale) {
    LANGID language = LANGIDFROMLCID(locale);
    if (locale == LOCALE_USER_DEFAULT || locale == 0) language = GetUserDefaultLangID();
    else if (locale == LOCALE_SYSTEM_DEFAULT) language = GetSystemDefaultLangID();
    else if (locale > 0xFFFF) language = 0;  // sort orders other than the default are not kept
    else if (SUBLANGID(language) == 0) language = NeutralDefault(language);
    return language ? ZelPlatformLocaleFacts(language) : nullptr;
}

std::u16string Ascii(const std::string& text) { return std::u16string(text.begin(), text.end()); }

std::u16string HexId(LANGID language) {
    char text[8];
    std::snprintf(text, sizeof text, "%04x", static_cast<unsigned>(language));
    return Ascii(text);
}

// The text of one type for a locale; false with the last error set when there is none.
bool LocaleText(LCID locale, LCTYPE type, std::u16string& out) {
    const ZelLocaleFacts* facts = FactsOf(locale);
    if (!facts) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    const char16_t* text = nullptr;
    switch (type & ~kIgnoredTypeFlags) {
        case LOCALE_ILANGUAGE: out = HexId(facts->language); return true;
        case LOCALE_SABBREVLANGNAME: text = facts->abbreviation; break;
        case LOCALE_SENGLANGUAGE: text = facts->englishLanguage; break;
        case LOCALE_SENGCOUNTRY: text = facts->englishCountry; break;
        case LOCALE_SISO639LANGNAME: text = facts->iso639; break;
        case LOCALE_SISO3166CTRYNAME: text = facts->iso3166; break;
        case LOCALE_IDEFAULTANSICODEPAGE: out = Ascii(std::to_string(facts->ansiCodePage)); return true;
        case LOCALE_IDEFAULTCODEPAGE: out = Ascii(std::to_string(facts->oemCodePage)); return true;
        default: SetLastError(ERROR_INVALID_FLAGS); return false;
    }
    if (!text) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    out = text;
    return true;
}

}  // namespace

UINT ZelPlatformLocaleCodePage(LCID locale, DWORD flags) {
    const ZelLocaleFacts* facts = (flags & LOCALE_USE_CP_ACP) ? nullptr : FactsOf(locale);
    return facts && facts->ansiCodePage ? facts->ansiCodePage : UINT{CP_ACP};
}

int GetLocaleInfoW(LCID locale, LCTYPE type, LPWSTR buffer, int size) {
    std::u16string text;
    if (!ZelValidOutputSize(buffer, size) || !LocaleText(locale, type, text)) return 0;
    return ZelDeliverText(text, buffer, size);
}

int GetLocaleInfoA(LCID locale, LCTYPE type, LPSTR buffer, int size) {
    if (!ZelValidOutputSize(buffer, size)) return 0;
    const int units = GetLocaleInfoW(locale, type, nullptr, 0);
    if (units <= 0) return 0;
    std::u16string wide(static_cast<size_t>(units), u'\0');
    GetLocaleInfoW(locale, type, wide.data(), units);
    return ZelDeliverText(ZelPlatformWideToAnsi(wide.c_str(), ZelPlatformLocaleCodePage(locale, type)), buffer, size);
}
