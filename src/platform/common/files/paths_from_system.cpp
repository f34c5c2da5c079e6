// Paths from the system into the library's Windows form: slashes become backslashes, bytes are
// UTF-8. A Windows path comes through as it is.
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
