// Dates and times as text by Win32 pictures: d dd ddd dddd, M MM MMM MMMM, y yy yyyy, g gg for
// dates; h hh H HH m mm s ss t tt for times; text in single quotes, '' for a quote itself, and
// any other character as it stands. The language of the locale gives the names and the default
// pictures.
#include <cstring>
#include <string>

#include "platform/posix/nls/date_names.h"
#include "platform/posix/nls/locale_info_table.h"
#include "platform/posix/text_result.h"
#include "platform/win32.h"

namespace {

enum class PictureKind { Date, Time };

const ZelDateLanguage& LanguageOf(LCID locale) {
    if (locale == 0 || locale == LOCALE_USER_DEFAULT) locale = GetUserDefaultLCID();
    if (locale == LOCALE_SYSTEM_DEFAULT) locale = GetSystemDefaultLCID();
    return ZelDateLanguageOf(LANGIDFROMLCID(locale));
}

void AppendNumber(std::u16string& out, unsigned value, size_t minimumDigits) {
    char16_t digits[12];
    size_t count = 0;
    do {
        digits[count++] = static_cast<char16_t>(u'0' + value % 10);
        value /= 10;
    } while (value);
    for (size_t i = count; i < minimumDigits; ++i) out += u'0';
    while (count) out += digits[--count];
}

bool IsPictureLetter(PictureKind kind, char16_t c) {
    const char16_t* letters = kind == PictureKind::Date ? u"dMyg" : u"hHmst";
    for (; *letters; ++letters)
        if (*letters == c) return true;
    return false;
}

void AppendDateField(std::u16string& out, char16_t letter, size_t count, const SYSTEMTIME& date,
                     const ZelDateLanguage& language) {
    switch (letter) {
        case u'd':
            if (count <= 2) AppendNumber(out, date.wDay, count);
            else out += count == 3 ? language.shortDays[date.wDayOfWeek] : language.days[date.wDayOfWeek];
            break;
        case u'M':
            if (count <= 2) AppendNumber(out, date.wMonth, count);
            else out += count == 3 ? language.shortMonths[date.wMonth - 1] : language.months[date.wMonth - 1];
            break;
        case u'y':
            if (count <= 2) AppendNumber(out, date.wYear % 100u, count);
            else AppendNumber(out, date.wYear, 1);
            break;
        default:  // g: the era
            out += language.era;
            break;
    }
}

// Time fields; false when the flags leave the field out.
bool AppendTimeField(std::u16string& out, char16_t letter, size_t count, const SYSTEMTIME& time,
                     const ZelDateLanguage& language, DWORD flags) {
    const size_t digits = count >= 2 ? 2 : 1;
    if (letter == u'h' && (flags & TIME_FORCE24HOURFORMAT)) letter = u'H';
    switch (letter) {
        case u'h':
            AppendNumber(out, time.wHour % 12 ? time.wHour % 12u : 12u, digits);
            return true;
        case u'H':
            AppendNumber(out, time.wHour, digits);
            return true;
        case u'm':
            if (flags & TIME_NOMINUTESORSECONDS) return false;
            AppendNumber(out, time.wMinute, digits);
            return true;
        case u's':
            if (flags & (TIME_NOMINUTESORSECONDS | TIME_NOSECONDS)) return false;
            AppendNumber(out, time.wSecond, digits);
            return true;
        default: {  // t: the marker, or its first character
            if (flags & TIME_NOTIMEMARKER) return false;
            const char16_t* marker = time.wHour < 12 ? language.am : language.pm;
            if (count == 1) out += marker[0];
            else out += marker;
            return true;
        }
    }
}

// A field that the flags leave out takes the text before it back to the previous field with it,
// or, when no field came before, the text after it up to the next one.
std::u16string Render(const char16_t* picture, PictureKind kind, const SYSTEMTIME& when,
                      const ZelDateLanguage& language, DWORD timeFlags) {
    std::u16string out;
    size_t afterLastField = 0;
    bool anyField = false, skipText = false;
    auto literal = [&](char16_t c) {
        if (!skipText) out += c;
    };
    for (const char16_t* p = picture; *p;) {
        if (*p == u'\'' && p[1] == u'\'') {  // '' outside quotes
            literal(u'\'');
            p += 2;
            continue;
        }
        if (*p == u'\'') {
            for (++p; *p; ++p) {
                if (*p == u'\'') {
                    if (p[1] != u'\'') {
                        ++p;
                        break;
                    }
                    ++p;  // '' inside quotes
                }
                literal(*p);
            }
            continue;
        }
        if (!IsPictureLetter(kind, *p)) {
            literal(*p++);
            continue;
        }
        const char16_t letter = *p;
        size_t count = 0;
        for (; *p == letter; ++p) ++count;
        if (kind == PictureKind::Date) {
            AppendDateField(out, letter, count, when, language);
        } else if (!AppendTimeField(out, letter, count, when, language, timeFlags)) {
            if (anyField) out.resize(afterLastField);
            else skipText = true;
            continue;
        }
        skipText = false;
        anyField = true;
        afterLastField = out.size();
    }
    return out;
}


bool FormatDate(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCWSTR format, std::u16string& out) {
    const DWORD forms = flags & (DATE_SHORTDATE | DATE_LONGDATE);
    if (forms == (DATE_SHORTDATE | DATE_LONGDATE) || (format && forms)) {
        SetLastError(ERROR_INVALID_FLAGS);
        return false;
    }
    SYSTEMTIME when{};
    if (date) when = *date;
    else GetLocalTime(&when);
    // The calendar check, and the day of the week from the date rather than from the caller.
    SYSTEMTIME day{};
    day.wYear = when.wYear;
    day.wMonth = when.wMonth;
    day.wDay = when.wDay;
    FILETIME instant{};
    if (!SystemTimeToFileTime(&day, &instant) || !FileTimeToSystemTime(&instant, &day)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    when.wDayOfWeek = day.wDayOfWeek;
    const ZelDateLanguage& language = LanguageOf(locale);
    const char16_t* picture = format ? format : forms == DATE_LONGDATE ? language.longDate : language.shortDate;
    out = Render(picture, PictureKind::Date, when, language, 0);
    return true;
}

bool FormatTime(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCWSTR format, std::u16string& out) {
    SYSTEMTIME when{};
    if (time) when = *time;
    else GetLocalTime(&when);
    if (when.wHour > 23 || when.wMinute > 59 || when.wSecond > 59 || when.wMilliseconds > 999) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    const ZelDateLanguage& language = LanguageOf(locale);
    out = Render(format ? format : language.time, PictureKind::Time, when, language, flags);
    return true;
}

}  // namespace

int GetDateFormatW(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCWSTR format, LPWSTR buffer, int size) {
    std::u16string text;
    if (!ZelValidOutputSize(buffer, size) || !FormatDate(locale, flags, date, format, text)) return 0;
    return ZelDeliverText(text, buffer, size);
}

int GetTimeFormatW(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCWSTR format, LPWSTR buffer, int size) {
    std::u16string text;
    if (!ZelValidOutputSize(buffer, size) || !FormatTime(locale, flags, time, format, text)) return 0;
    return ZelDeliverText(text, buffer, size);
}

// The A forms convert through the locale's own code page (the system's with LOCALE_USE_CP_ACP).
int GetDateFormatA(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCSTR format, LPSTR buffer, int size) {
    const UINT codePage = ZelPlatformLocaleCodePage(locale, flags);
    std::u16string text;
    if (!ZelValidOutputSize(buffer, size) ||
        !FormatDate(locale, flags, date, ZelPlatformAnsiToWide(format, codePage).get(), text))
        return 0;
    return ZelDeliverText(ZelPlatformWideToAnsi(text.c_str(), codePage), buffer, size);
}

int GetTimeFormatA(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCSTR format, LPSTR buffer, int size) {
    const UINT codePage = ZelPlatformLocaleCodePage(locale, flags);
    std::u16string text;
    if (!ZelValidOutputSize(buffer, size) ||
        !FormatTime(locale, flags, time, ZelPlatformAnsiToWide(format, codePage).get(), text))
        return 0;
    return ZelDeliverText(ZelPlatformWideToAnsi(text.c_str(), codePage), buffer, size);
}
