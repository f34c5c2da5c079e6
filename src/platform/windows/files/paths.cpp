// Paths: the library's Windows form is the system's, so only slashes become backslashes on the
// way in, and names go out as UTF-8 where the system side takes bytes.
#include "platform/win32.h"

std::u16string ZelPlatformPathFromSystem(LPCWSTR path) {
    std::u16string out(path ? path : u"");
    for (auto& c : out)
        if (c == u'/') c = u'\\';
    return out;
}

std::u16string ZelPlatformPathFromSystem(const char* path) {
    return ZelPlatformPathFromSystem(ZelPlatformUtf8ToWide(path ? path : "").c_str());
}

std::string ZelPlatformPathToSystem(LPCWSTR path) { return path ? ZelPlatformWideToUtf8(path) : std::string(); }
