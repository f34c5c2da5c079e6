#include "limits.h"

#include <zel/paths.h>

#include "report.h"
#include "text.h"

bool Fits(const std::string& what, const std::u16string& text, size_t most, const std::string& reason) {
    if (text.size() <= most) return true;
    Fail(what + " is " + std::to_string(text.size()) + " characters long; " + reason + " at most " +
         std::to_string(most));
    return false;
}

bool PathFits(const std::string& what, const std::string& path, size_t reserve) {
    const std::string reason = reserve ? "a file that zel writes takes the library's 259 less " +
                                             std::to_string(reserve) + " for the new copy beside it,"
                                       : "the library's paths hold";
    std::u16string wide = FromUtf8(path);
    // Names on disk are UTF-8 to the library: any other bytes would name another file.
    if (ToUtf8(wide.c_str()) != path) {
        Fail(what + " '" + path + "' is not UTF-8, and the library names files in UTF-8 only");
        return false;
    }
    if (!Fits(what + " '" + path + "'", wide, kPathUnits - reserve, reason)) return false;
    if (wide.find(u"${") == std::u16string::npos) return true;
    // An expansion that fills the buffer may have been cut: it counts as too long.
    WCHAR expanded[MAX_PATH] = {};
    ZelPathToAbsolute(wide.c_str(), expanded);
    return Fits(what + " '" + path + "' as its macros expand", expanded, kPathUnits - reserve - 1, reason);
}
