// The run-time's path calls: _fullpath, _getcwd and _searchenv, on the library's Windows form.
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/files/file_info.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

bool IsSeparator(WCHAR c) { return c == u'\\' || c == u'/'; }

std::u16string CurrentDirectory() {
    DWORD size = GetCurrentDirectoryW(0, nullptr);
    std::u16string directory(size, u'\0');
    DWORD length = size ? GetCurrentDirectoryW(size, directory.data()) : 0;
    directory.resize(length < size ? length : 0);
    return directory;
}

// The absolute form of a path: relative to the current directory, "." and ".." resolved, one
// backslash between names. A drive stays in front; ".." stops at the root.
std::u16string FullPath(const std::u16string& path) {
    std::u16string drive, rest = path;
    if (rest.size() >= 2 && rest[1] == u':') {
        drive = rest.substr(0, 2);
        rest.erase(0, 2);  // "x:name" has no current directory of its own here: it is "x:\name"
    } else if (rest.empty() || !IsSeparator(rest[0])) {
        rest = CurrentDirectory() + u"\\" + rest;
    }
    std::vector<std::u16string> names;
    size_t start = 0;
    while (start <= rest.size()) {
        size_t end = start;
        while (end < rest.size() && !IsSeparator(rest[end])) ++end;
        std::u16string name = rest.substr(start, end - start);
        if (name == u"..") {
            if (!names.empty()) names.pop_back();
        } else if (!name.empty() && name != u".") {
            names.push_back(name);
        }
        start = end + 1;
    }
    std::u16string full = drive;
    for (const auto& name : names) full += u"\\" + name;
    // The root, or a name given with a separator at its end, ends in a backslash.
    if (names.empty() || (!path.empty() && IsSeparator(path.back()))) full += u"\\";
    return full;
}

// Gives text in buffer of maxLength units, or in a new block of malloc when buffer is null;
// null with errno ERANGE when it doesn't fit.
template <typename Char>
Char* GiveRuntimeText(const std::basic_string<Char>& text, Char* buffer, size_t maxLength) {
    if (buffer && text.size() >= maxLength) {
        errno = ERANGE;
        return nullptr;
    }
    if (!buffer) {
        size_t units = text.size() + 1 > maxLength ? text.size() + 1 : maxLength;
        buffer = static_cast<Char*>(std::malloc(units * sizeof(Char)));
        if (!buffer) {
            errno = ENOMEM;
            return nullptr;
        }
    }
    std::memcpy(buffer, text.c_str(), (text.size() + 1) * sizeof(Char));
    return buffer;
}

bool Exists(const std::u16string& path) {
    struct stat status;
    return stat(ZelPlatformPathToSystem(path.c_str()).c_str(), &status) == 0;
}

}  // namespace

namespace crt {

// A null buffer gets one of malloc, at least _MAX_PATH units, as the run-time allocates.
LPWSTR _wfullpath(LPWSTR buffer, LPCWSTR path, size_t maxLength) {
    std::u16string full = FullPath(path ? std::u16string(path) : std::u16string());
    return GiveRuntimeText(full, buffer, buffer ? maxLength : MAX_PATH);
}

char* _fullpath(char* buffer, const char* path, size_t maxLength) {
    std::u16string full = FullPath(ZelPlatformAnsiToWide(path).text);
    return GiveRuntimeText(ZelPlatformWideToAnsi(full.c_str()), buffer, buffer ? maxLength : MAX_PATH);
}

LPWSTR _wgetcwd(LPWSTR buffer, int maxLength) {
    if (buffer && maxLength <= 0) {
        errno = EINVAL;
        return nullptr;
    }
    std::u16string directory = CurrentDirectory();
    if (directory.empty()) return nullptr;
    return GiveRuntimeText(directory, buffer, maxLength > 0 ? static_cast<size_t>(maxLength) : 0);
}

char* _getcwd(char* buffer, int maxLength) {
    if (buffer && maxLength <= 0) {
        errno = EINVAL;
        return nullptr;
    }
    std::u16string directory = CurrentDirectory();
    if (directory.empty()) return nullptr;
    return GiveRuntimeText(ZelPlatformWideToAnsi(directory.c_str()), buffer,
                           maxLength > 0 ? static_cast<size_t>(maxLength) : 0);
}

// The current directory first, then each directory of the variable: separated by ';', or by ':'
// when the value has no ';' and starts with '/' (a list of the system's own form). The full path
// of the first existing file goes to buffer, which holds _MAX_PATH; else it gets an empty string.
void _wsearchenv(LPCWSTR fileName, LPCWSTR variable, LPWSTR buffer) {
    if (!buffer) {
        errno = EINVAL;
        return;
    }
    buffer[0] = u'\0';
    if (!fileName || !*fileName) {
        errno = fileName ? ENOENT : EINVAL;
        return;
    }
    std::u16string name(fileName);
    std::vector<std::u16string> candidates{name};
    const WCHAR* value = variable ? _wgetenv(variable) : nullptr;
    std::u16string list = value ? std::u16string(value) : std::u16string();
    WCHAR separator = list.find(u';') == std::u16string::npos && !list.empty() && list[0] == u'/' ? u':' : u';';
    size_t start = 0;
    while (start < list.size()) {
        size_t end = list.find(separator, start);
        if (end == std::u16string::npos) end = list.size();
        std::u16string directory = list.substr(start, end - start);
        if (!directory.empty()) candidates.push_back(directory + (IsSeparator(directory.back()) ? u"" : u"\\") + name);
        start = end + 1;
    }
    for (const auto& candidate : candidates) {
        if (!Exists(candidate)) continue;
        std::u16string full = FullPath(candidate);
        if (full.size() >= MAX_PATH) {
            errno = ERANGE;
            return;
        }
        std::memcpy(buffer, full.c_str(), (full.size() + 1) * sizeof(WCHAR));
        return;
    }
    errno = ENOENT;
}

void _searchenv(const char* fileName, const char* variable, char* buffer) {
    if (!buffer) {
        errno = EINVAL;
        return;
    }
    WCHAR wide[MAX_PATH];
    _wsearchenv(ZelPlatformAnsiToWide(fileName).get(), ZelPlatformAnsiToWide(variable).get(), wide);
    std::string found = ZelPlatformWideToAnsi(wide);
    if (found.size() >= MAX_PATH) {
        errno = ERANGE;
        found.clear();
    }
    std::memcpy(buffer, found.c_str(), found.size() + 1);
}

}  // namespace crt
