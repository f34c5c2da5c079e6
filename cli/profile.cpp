// zel profile: sections, keys and values of the system's 8-bit INI files, through the profile calls.
#include <zel/settings.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <vector>

#include "commands.h"
#include "input.h"
#include "limits.h"
#include "report.h"
#include "text.h"

const char kProfileUsage[] =
    "Usage: zel profile ACTION FILE [ARGUMENTS]\n\n"
    "get FILE SECTION KEY [DEFAULT]   the value of KEY, or DEFAULT when it is missing\n"
    "set FILE SECTION KEY VALUE       write a value; a missing file is made\n"
    "sections FILE                    the sections of FILE, one a line\n"
    "keys FILE SECTION                the keys of SECTION, one a line\n"
    "delete FILE SECTION [KEY]        the key KEY, or SECTION with all its keys\n\n"
    "FILE is an INI file in the ANSI code page (ZEL_ACP). \"win.ini\" or \"\" is the profile of\n"
    "the Windows directory ($XDG_CONFIG_HOME/Morvalis/Windows), and so is any other name\n"
    "without a directory: write ./NAME for a file in the current directory. FILE holds 259\n"
    "characters at most.\n";

namespace {

// The profile file that an argument names: null for win.ini.
struct ProfileName {
    bool isWinIni = false;
    std::u16string path;
    const WCHAR* get() const { return isWinIni ? nullptr : path.c_str(); }
};

ProfileName NameOf(const std::string& file) {
    ProfileName name;
    std::string lower = file;
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    name.isWinIni = lower.empty() || lower == "win.ini";
    name.path = FromUtf8(file);
    return name;
}

// The whole answer of a string read, in a buffer grown until the answer no longer fills it.
std::u16string Read(const ProfileName& file, const WCHAR* section, const WCHAR* key, const WCHAR* defaultValue) {
    const DWORD cut = section && key ? 1 : 2;
    for (DWORD size = 1024;; size *= 2) {
        std::vector<WCHAR> buffer(size, 0);
        const DWORD count = file.isWinIni
                                ? ZelGetProfileString(section, key, defaultValue, buffer.data(), size)
                                : ZelGetPrivateProfileString(section, key, defaultValue, buffer.data(), size, file.get());
        if (count < size - cut || size >= (1u << 24)) return std::u16string(buffer.data(), count < size ? count : size);
    }
}

BOOL Write(const ProfileName& file, const WCHAR* section, const WCHAR* key, const WCHAR* value) {
    return file.isWinIni ? ZelWriteProfileString(section, key, value)
                         : ZelWritePrivateProfileString(section, key, value, file.get());
}

// Prints the names of a list, each on a line.
int PrintList(const std::u16string& list) {
    for (size_t start = 0; start < list.size();) {
        const size_t end = list.find(u'\0', start);
        const std::u16string name = list.substr(start, end == std::u16string::npos ? end : end - start);
        if (!name.empty()) printf("%s\n", ToUtf8(name.c_str()).c_str());
        if (end == std::u16string::npos) break;
        start = end + 1;
    }
    return 0;
}

int Get(const ProfileName& file, const std::string& section, const std::string& key, const std::string* fallback) {
    const std::u16string wideSection = FromUtf8(section), wideKey = FromUtf8(key);
    std::u16string value;
    if (fallback) {
        value = Read(file, wideSection.c_str(), wideKey.c_str(), FromUtf8(*fallback).c_str());
    } else {
        // A missing key gives the default back: two different defaults tell it from a value.
        value = Read(file, wideSection.c_str(), wideKey.c_str(), u"\x01");
        if (value == u"\x01" && Read(file, wideSection.c_str(), wideKey.c_str(), u"\x02") == u"\x02")
            return Fail("no key '" + key + "' in [" + section + "]");
    }
    printf("%s\n", ToUtf8(value.c_str()).c_str());
    return 0;
}

}  // namespace

int RunProfile(const Args& args) {
    const size_t count = args.size();
    const std::string action = args.empty() ? "" : args[0];
    const bool known = (action == "sections" && count == 2) || (action == "keys" && count == 3) ||
                       (action == "get" && (count == 4 || count == 5)) || (action == "set" && count == 5) ||
                       (action == "delete" && (count == 3 || count == 4));
    if (!known) return ActionMisuse(args, {"get", "set", "sections", "keys", "delete"});
    if (!PathFits("file", args[1]) || !NotADirectory(args[1])) return 1;
    const ProfileName file = NameOf(args[1]);
    const std::string shown = file.isWinIni ? std::string("win.ini") : args[1];
    if (action == "sections") return PrintList(Read(file, nullptr, nullptr, nullptr));
    if (action == "keys") return PrintList(Read(file, FromUtf8(args[2]).c_str(), nullptr, nullptr));
    if (action == "get") return Get(file, args[2], args[3], count == 5 ? &args[4] : nullptr);
    if (action == "set") {
        errno = 0;
        if (!Write(file, FromUtf8(args[2]).c_str(), FromUtf8(args[3]).c_str(), FromUtf8(args[4]).c_str()))
            return Fail("could not write " + shown + ": " + LastErrorText());
        return 0;
    }
    const std::u16string key = count == 4 ? FromUtf8(args[3]) : u"";
    errno = 0;
    if (!Write(file, FromUtf8(args[2]).c_str(), count == 4 ? key.c_str() : nullptr, nullptr))
        return Fail("could not change " + shown + ": " + LastErrorText());
    return 0;
}
