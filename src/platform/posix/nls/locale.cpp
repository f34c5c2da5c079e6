// The user's and the system's language ids, from the POSIX locale environment.
//
// The locale names are read from the environment itself, not through setlocale, so that the
// answer does not depend on which locales the system has installed. ZEL_LCID and ZEL_SYSTEM_LCID
// override them, in hex ("0x412") or decimal ("1042").
#include <strings.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string_view>

#include "platform/win32.h"

namespace {

constexpr LCID kDefaultLcid = 0x0409;  // English, United States

struct LocaleName {
    const char* language;
    const char* territory;
    LCID lcid;
};

// The first row of each language is the one a bare language name takes.
constexpr LocaleName kLocales[] = {
    {"af", "ZA", 0x0436},
    {"am", "ET", 0x045E},
    {"ar", "SA", 0x0401}, {"ar", "IQ", 0x0801}, {"ar", "EG", 0x0C01}, {"ar", "LY", 0x1001},
    {"ar", "DZ", 0x1401}, {"ar", "MA", 0x1801}, {"ar", "TN", 0x1C01}, {"ar", "OM", 0x2001},
    {"ar", "YE", 0x2401}, {"ar", "SY", 0x2801}, {"ar", "JO", 0x2C01}, {"ar", "LB", 0x3001},
    {"ar", "KW", 0x3401}, {"ar", "AE", 0x3801}, {"ar", "BH", 0x3C01}, {"ar", "QA", 0x4001},
    {"az", "AZ", 0x042C},
    {"be", "BY", 0x0423},
    {"bg", "BG", 0x0402},
    {"bn", "IN", 0x0445}, {"bn", "BD", 0x0845},
    {"bs", "BA", 0x141A},
    {"ca", "ES", 0x0403},
    {"cs", "CZ", 0x0405},
    {"cy", "GB", 0x0452},
    {"da", "DK", 0x0406},
    {"de", "DE", 0x0407}, {"de", "CH", 0x0807}, {"de", "AT", 0x0C07}, {"de", "LU", 0x1007},
    {"de", "LI", 0x1407},
    {"el", "GR", 0x0408},
    {"en", "US", 0x0409}, {"en", "GB", 0x0809}, {"en", "AU", 0x0C09}, {"en", "CA", 0x1009},
    {"en", "NZ", 0x1409}, {"en", "IE", 0x1809}, {"en", "ZA", 0x1C09}, {"en", "JM", 0x2009},
    {"en", "BZ", 0x2809}, {"en", "TT", 0x2C09}, {"en", "ZW", 0x3009}, {"en", "PH", 0x3409},
    {"en", "IN", 0x4009}, {"en", "MY", 0x4409}, {"en", "SG", 0x4809},
    {"es", "ES", 0x0C0A}, {"es", "MX", 0x080A}, {"es", "GT", 0x100A}, {"es", "CR", 0x140A},
    {"es", "PA", 0x180A}, {"es", "DO", 0x1C0A}, {"es", "VE", 0x200A}, {"es", "CO", 0x240A},
    {"es", "PE", 0x280A}, {"es", "AR", 0x2C0A}, {"es", "EC", 0x300A}, {"es", "CL", 0x340A},
    {"es", "UY", 0x380A}, {"es", "PY", 0x3C0A}, {"es", "BO", 0x400A}, {"es", "SV", 0x440A},
    {"es", "HN", 0x480A}, {"es", "NI", 0x4C0A}, {"es", "PR", 0x500A}, {"es", "US", 0x540A},
    {"et", "EE", 0x0425},
    {"eu", "ES", 0x042D},
    {"fa", "IR", 0x0429},
    {"fi", "FI", 0x040B},
    {"fil", "PH", 0x0464},
    {"fo", "FO", 0x0438},
    {"fr", "FR", 0x040C}, {"fr", "BE", 0x080C}, {"fr", "CA", 0x0C0C}, {"fr", "CH", 0x100C},
    {"fr", "LU", 0x140C}, {"fr", "MC", 0x180C},
    {"ga", "IE", 0x083C},
    {"gl", "ES", 0x0456},
    {"gu", "IN", 0x0447},
    {"he", "IL", 0x040D},
    {"hi", "IN", 0x0439},
    {"hr", "HR", 0x041A}, {"hr", "BA", 0x101A},
    {"hu", "HU", 0x040E},
    {"hy", "AM", 0x042B},
    {"id", "ID", 0x0421},
    {"is", "IS", 0x040F},
    {"it", "IT", 0x0410}, {"it", "CH", 0x0810},
    {"ja", "JP", 0x0411},
    {"ka", "GE", 0x0437},
    {"kk", "KZ", 0x043F},
    {"km", "KH", 0x0453},
    {"kn", "IN", 0x044B},
    {"ko", "KR", 0x0412},
    {"ky", "KG", 0x0440},
    {"lo", "LA", 0x0454},
    {"lt", "LT", 0x0427},
    {"lv", "LV", 0x0426},
    {"mk", "MK", 0x042F},
    {"ml", "IN", 0x044C},
    {"mn", "MN", 0x0450},
    {"mr", "IN", 0x044E},
    {"ms", "MY", 0x043E}, {"ms", "BN", 0x083E},
    {"mt", "MT", 0x043A},
    {"nb", "NO", 0x0414},
    {"ne", "NP", 0x0461},
    {"nl", "NL", 0x0413}, {"nl", "BE", 0x0813},
    {"nn", "NO", 0x0814},
    {"no", "NO", 0x0414},
    {"pa", "IN", 0x0446},
    {"pl", "PL", 0x0415},
    {"pt", "BR", 0x0416}, {"pt", "PT", 0x0816},
    {"ro", "RO", 0x0418}, {"ro", "MD", 0x0818},
    {"ru", "RU", 0x0419}, {"ru", "MD", 0x0819},
    {"si", "LK", 0x045B},
    {"sk", "SK", 0x041B},
    {"sl", "SI", 0x0424},
    {"sq", "AL", 0x041C},
    {"sr", "RS", 0x281A}, {"sr", "ME", 0x301A}, {"sr", "BA", 0x1C1A},
    {"sv", "SE", 0x041D}, {"sv", "FI", 0x081D},
    {"sw", "KE", 0x0441},
    {"ta", "IN", 0x0449},
    {"te", "IN", 0x044A},
    {"tg", "TJ", 0x0428},
    {"th", "TH", 0x041E},
    {"tk", "TM", 0x0442},
    {"tr", "TR", 0x041F},
    {"tt", "RU", 0x0444},
    {"uk", "UA", 0x0422},
    {"ur", "PK", 0x0420}, {"ur", "IN", 0x0820},
    {"uz", "UZ", 0x0443},
    {"vi", "VN", 0x042A},
    {"zh", "CN", 0x0804}, {"zh", "TW", 0x0404}, {"zh", "HK", 0x0C04}, {"zh", "SG", 0x1004},
    {"zh", "MO", 0x1404},
};

// language[_TERRITORY][.codeset][@modifier]; a hyphen may stand for the underscore.
LCID LcidFromLocaleName(const char* name) {
    std::string_view text(name);
    text = text.substr(0, text.find_first_of(".@"));
    size_t split = text.find_first_of("_-");
    std::string_view language = text.substr(0, split);
    std::string_view territory = split == std::string_view::npos ? std::string_view() : text.substr(split + 1);
    if (language.empty()) return kDefaultLcid;

    auto same = [](std::string_view a, const char* b) {
        return a.size() == std::strlen(b) && strncasecmp(a.data(), b, a.size()) == 0;
    };
    LCID primary = 0;
    for (const LocaleName& entry : kLocales) {
        if (!same(language, entry.language)) continue;
        if (!primary) primary = entry.lcid;
        if (same(territory, entry.territory)) return entry.lcid;
    }
    return primary ? primary : kDefaultLcid;  // "C", "POSIX" and unknown languages
}

// The first of the variables that is set and not empty.
const char* FirstSet(std::initializer_list<const char*> names) {
    for (const char* name : names) {
        const char* value = std::getenv(name);
        if (value && *value) return value;
    }
    return nullptr;
}

// An override in hex with 0x, or decimal; zero when absent or malformed.
LCID LcidOverride(const char* name) {
    const char* value = std::getenv(name);
    if (!value || !(*value >= '0' && *value <= '9')) return 0;
    bool hex = value[0] == '0' && (value[1] == 'x' || value[1] == 'X');
    char* end = nullptr;
    unsigned long number = std::strtoul(hex ? value + 2 : value, &end, hex ? 16 : 10);
    if (*end || number == 0 || number > 0xFFFFFFFFul) return 0;
    return static_cast<LCID>(number);
}

LCID LocaleLcid(const char* overrideName, std::initializer_list<const char*> variables) {
    if (LCID overridden = LcidOverride(overrideName)) return overridden;
    const char* name = FirstSet(variables);
    if (!name) return kDefaultLcid;
    // The code page calls ask on every conversion; the last answer per thread spares the table.
    thread_local char lastName[64] = "";
    thread_local LCID lastLcid = kDefaultLcid;
    if (std::strcmp(name, lastName) == 0) return lastLcid;
    LCID lcid = LcidFromLocaleName(name);
    if (std::strlen(name) < sizeof lastName) {
        std::strcpy(lastName, name);
        lastLcid = lcid;
    }
    return lcid;
}

}  // namespace

LCID GetUserDefaultLCID() { return LocaleLcid("ZEL_LCID", {"LC_ALL", "LC_MESSAGES", "LANG"}); }

LANGID GetUserDefaultLangID() { return LANGIDFROMLCID(GetUserDefaultLCID()); }

LCID GetSystemDefaultLCID() { return LocaleLcid("ZEL_SYSTEM_LCID", {"LC_ALL", "LANG"}); }

LANGID GetSystemDefaultLangID() { return LANGIDFROMLCID(GetSystemDefaultLCID()); }
