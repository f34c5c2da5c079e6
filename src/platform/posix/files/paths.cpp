// Paths toward the system: the library's Windows form becomes the system's (the way back:
// common/files).
#include <cstdlib>
#include <string>

#include "platform/win32.h"

namespace {

bool IsDriveLetter(WCHAR c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); }

}  // namespace

std::string ZelPlatformPathToSystem(LPCWSTR path) {
    if (!path) return {};
    std::u16string rest(path);
    std::string prefix;
    if (rest.size() >= 2 && IsDriveLetter(rest[0]) && rest[1] == u':') {
        // x: is the directory that ZEL_DRIVE_X names, or the root.
        char name[] = "ZEL_DRIVE_X";
        name[10] = static_cast<char>(rest[0] >= u'a' ? rest[0] - u'a' + 'A' : rest[0]);
        const char* dir = getenv(name);
        prefix = dir ? dir : "";
        while (!prefix.empty() && prefix.back() == '/') prefix.pop_back();
        rest.erase(0, 2);
        if (rest.empty() || (rest[0] != u'\\' && rest[0] != u'/')) prefix += '/';
    }
    for (auto& c : rest)
        if (c == u'\\') c = u'/';
    return prefix + ZelPlatformWideToUtf8(rest);
}
