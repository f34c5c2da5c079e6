// The wide profile calls over 8-bit INI files.
#include <string>

#include "platform/posix/profile/profile_answer.h"
#include "platform/posix/profile/profile_file.h"
#include "platform/posix/registry/registry_files.h"
#include "platform/win32.h"

namespace zelprofile {

namespace {

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t'; }

// Quotes around a whole value are not part of it.
std::u16string WithoutQuotes(const std::u16string& value) {
    if (value.size() >= 2 && (value.front() == u'"' || value.front() == u'\'') && value.back() == value.front())
        return value.substr(1, value.size() - 2);
    return value;
}

// The default loses its trailing spaces; tabs stay.
std::u16string DefaultOf(LPCWSTR defaultValue) {
    std::u16string text = defaultValue ? defaultValue : u"";
    while (!text.empty() && text.back() == u' ') text.pop_back();
    return text;
}

bool IsAllBlank(LPCWSTR text) {
    for (; *text; ++text)
        if (!IsBlank(*text)) return false;
    return true;
}

bool HasLineBreak(LPCWSTR text) {
    if (!text) return false;
    for (; *text; ++text)
        if (*text == u'\r' || *text == u'\n') return true;
    return false;
}

int DigitValue(char16_t c) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (c >= u'a' && c <= u'z') return c - u'a' + 10;
    if (c >= u'A' && c <= u'Z') return c - u'A' + 10;
    return 99;
}

}  // namespace

ProfileAnswer QueryProfile(LPCWSTR section, LPCWSTR key, LPCWSTR defaultValue, LPCWSTR fileName) {
    ProfileAnswer answer;
    answer.list = !section || !key;
    bool inWindowsDirectory = false;
    const std::string path = SystemPathOf(fileName, inWindowsDirectory);
    std::string bytes;
    bool found = false;
    DWORD status = path.empty() ? ERROR_PATH_NOT_FOUND : ReadProfile(path, bytes, found);
    if (status == ERROR_SUCCESS && !found) status = ERROR_FILE_NOT_FOUND;
    if (!section) {
        answer.items = ProfileFile(bytes).SectionNames();
    } else if (!key) {
        answer.items = ProfileFile(bytes).KeyNames(section).value_or(std::vector<std::u16string>{});
    } else {
        std::u16string text;
        const int found = ProfileFile::QuickValue(bytes, section, key, text);
        const std::optional<std::u16string> value =
            found < 0 ? ProfileFile(bytes).Value(section, key) : found ? std::optional(text) : std::nullopt;
        answer.items.push_back(value ? WithoutQuotes(*value) : DefaultOf(defaultValue));
        // The default stands in for a key that is not there, and the last error says so.
        if (!value && status == ERROR_SUCCESS) status = ERROR_FILE_NOT_FOUND;
    }
    SetLastError(status);
    return answer;
}

UINT ParseProfileInt(const std::u16string& text) {
    size_t at = 0;
    while (at < text.size() && IsBlank(text[at])) ++at;
    bool negative = false;
    if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) negative = text[at++] == u'-';
    int base = 10;
    if (at + 1 < text.size() && text[at] == u'0') {
        const char16_t mark = text[at + 1];
        base = mark == u'x' || mark == u'X' ? 16 : mark == u'o' || mark == u'O' ? 8 : mark == u'b' || mark == u'B' ? 2 : 10;
        if (base != 10) at += 2;
    }
    uint32_t number = 0;
    for (; at < text.size() && DigitValue(text[at]) < base; ++at)
        number = number * static_cast<uint32_t>(base) + static_cast<uint32_t>(DigitValue(text[at]));
    return negative ? 0u - number : number;
}

}  // namespace zelprofile

using zelprofile::ProfileAnswer;

// The text that the string call gives is read as a number; with a null section or key that is the
// list of names, read up to its first terminator.
UINT GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT defaultValue, LPCWSTR fileName) {
    const ProfileAnswer answer = zelprofile::QueryProfile(section, key, u"", fileName);
    if (answer.items.empty() || answer.items.front().empty()) return static_cast<UINT>(defaultValue);
    return zelprofile::ParseProfileInt(answer.items.front());
}

UINT GetProfileIntW(LPCWSTR section, LPCWSTR key, INT defaultValue) {
    return GetPrivateProfileIntW(section, key, defaultValue, u"win.ini");
}

DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultValue, LPWSTR buffer, DWORD size,
                               LPCWSTR fileName) {
    const ProfileAnswer answer = zelprofile::QueryProfile(section, key, defaultValue, fileName);
    // A surrogate pair is not cut in two.
    auto fit = [](const std::u16string& text, size_t limit) {
        if (limit > 0 && limit < text.size() && text[limit - 1] >= 0xD800 && text[limit - 1] <= 0xDBFF) --limit;
        return limit < text.size() ? limit : text.size();
    };
    return zelprofile::DeliverProfileAnswer(answer.items, answer.list, buffer, size, fit);
}

DWORD GetProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultValue, LPWSTR buffer, DWORD size) {
    return GetPrivateProfileStringW(section, key, defaultValue, buffer, size, u"win.ini");
}

BOOL WritePrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR fileName) {
    if (!section) {
        // All null asks to flush a cache, and nothing is cached here.
        if (!key && !value) return TRUE;
        SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    // A line break would make lines of its own in the file, and a key without a name no entry.
    if (zelprofile::HasLineBreak(section) || zelprofile::HasLineBreak(key) || zelprofile::HasLineBreak(value) ||
        (key && zelprofile::IsAllBlank(key))) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    bool inWindowsDirectory = false;
    const std::string path = zelprofile::SystemPathOf(fileName, inWindowsDirectory);
    if (path.empty()) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return FALSE;
    }
    if (inWindowsDirectory) {
        const size_t slash = path.rfind('/');
        const DWORD made = static_cast<DWORD>(zelreg::MakeDirectories(path.substr(0, slash), 0777));
        if (made != ERROR_SUCCESS) {
            SetLastError(made);
            return FALSE;
        }
    }
    const zelprofile::DirectoryLock lock(path);
    if (lock.status() != ERROR_SUCCESS) {
        SetLastError(lock.status());
        return FALSE;
    }
    std::string bytes;
    bool found = false;
    DWORD status = zelprofile::ReadProfile(path, bytes, found);
    if (status != ERROR_SUCCESS) {
        SetLastError(status);
        return FALSE;
    }
    zelprofile::ProfileFile file(bytes);
    const bool changed = !key ? file.DeleteSection(section)
                         : !value ? file.DeleteKey(section, key)
                                  : file.Set(section, key, value);
    if (changed) status = zelprofile::ReplaceProfile(path, file.Bytes());
    if (status != ERROR_SUCCESS) {
        SetLastError(status);
        return FALSE;
    }
    SetLastError(ERROR_SUCCESS);
    return TRUE;
}

BOOL WriteProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value) {
    return WritePrivateProfileStringW(section, key, value, u"win.ini");
}
