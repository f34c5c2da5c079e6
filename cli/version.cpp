// zel --version: the versions of zel, of the library that this process loaded, and of the data
// that the library carries and finds: character properties, code tables, resource file.
#include <zel/codetables.h>
#include <zel/frame.h>
#include <zel/paths.h>

#include <dlfcn.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <string>

#include "commands.h"
#include "input.h"
#include "text.h"

namespace {

// The character property and bidi tables are compiled in, generated from this version's data.
constexpr char kPropertyVersion[] = "3.2.0";

// The loaded library's version, from the name of its file: libZelBL70KT.so.X.Y.Z.
std::string LibraryVersion() {
    Dl_info info{};
    if (!dladdr(reinterpret_cast<void*>(&ZelGetError), &info) || !info.dli_fname) return "unknown";
    char resolved[PATH_MAX];
    if (!realpath(info.dli_fname, resolved)) return "unknown";
    const std::string name = resolved;
    const std::string marker = ".so.";
    const size_t at = name.rfind(marker);
    return at == std::string::npos ? "unknown" : name.substr(at + marker.size()) + " (" + name + ")";
}

// The "Unicode version : " line of a code table file's text header.
std::string TableUnicodeVersion(const std::string& path) {
    FILE* file = fopen(path.c_str(), "rb");
    if (!file) return "?";
    char head[512] = {};
    const size_t got = fread(head, 1, sizeof head - 1, file);
    fclose(file);
    const std::string text(head, got);
    const std::string key = "Unicode version : ";
    const size_t at = text.find(key);
    if (at == std::string::npos) return "?";
    const size_t end = text.find_first_of("\r\n", at);
    return text.substr(at + key.size(), end == std::string::npos ? std::string::npos : end - at - key.size());
}

std::string SystemPath(const WCHAR* windowsPath) {
    std::string path = ToUtf8(windowsPath);
    for (char& c : path)
        if (c == '\\') c = '/';
    return path;
}

// The code table files found, by number: their kinds, and the Unicode version their headers name.
void CodeTables() {
    WCHAR directory[MAX_PATH];
    ZelPathToAbsolute(u"${Common}\\Code", directory);
    WCHAR mask[MAX_PATH];
    ZelPathToAbsolute(u"${Common}\\Code\\u???_*.dat", mask);
    WIN32_FIND_DATAW found;
    std::map<std::string, std::set<std::string>> kinds;
    std::map<std::string, std::string> unicode;
    // The search handle stays open until the process ends: the interface has no call to close it.
    HANDLE search = ZelFindFirstFileW(mask, &found);
    for (bool more = search != INVALID_HANDLE_VALUE; more; more = ZelFindNextFileW(search, &found)) {
        const std::string name = ToUtf8(found.cFileName);
        if (name.size() < 10) continue;
        const std::string number = name.substr(1, 3);
        kinds[number].insert(name.substr(5, name.size() - 9));
        if (!unicode.count(number)) unicode[number] = TableUnicodeVersion(SystemPath(directory) + "/" + name);
    }
    if (kinds.empty()) printf("code tables: none in %s\n", ToUtf8(directory).c_str());
    for (const auto& [number, names] : kinds) {
        std::string list;
        for (const std::string& kind : names) list += " " + kind;
        printf("code tables %s (Unicode %s):%s\n", number.c_str(), unicode[number].c_str(), list.c_str());
    }
}

// The resource file of the library's own record, and the format version in its header.
void Resources() {
    int position = ZelGetFirstModule();
    ZelModuleDef* own = position ? ZelGetNextModule(&position) : nullptr;
    WCHAR name[MAX_PATH] = {};
    if (!own || !ZelGetResourcePath(own->moduleHandle, name)) {
        printf("resources: none found\n");
        return;
    }
    const std::string path = SystemPath(name);
    auto bytes = ReadInput(path);
    const unsigned format = bytes && bytes->size() >= 10
                                ? static_cast<unsigned char>((*bytes)[8]) | static_cast<unsigned char>((*bytes)[9]) << 8
                                : 0;
    printf("resources %s (format %u)\n", path.substr(path.rfind('/') + 1).c_str(), format);
}

}  // namespace

int ShowVersion() {
    printf("zel %s\n", ZEL_VERSION);
    printf("library ZelBL70KT %s\n", LibraryVersion().c_str());
    printf("character properties Unicode %s\n", kPropertyVersion);
    CodeTables();
    Resources();
    return 0;
}
