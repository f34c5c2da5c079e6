// zel --version: the versions of zel, of the library that this process loaded, and of the data
// that the library carries and finds: character properties, code tables, resource file.
#include <zel/codetables.h>
#include <zel/frame.h>
#include <zel/paths.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "code_table_files.h"
#include "commands.h"
#include "input.h"
#include "system.h"
#include "text.h"

namespace {

// The character property and bidi tables are compiled in, generated from this version's data.
constexpr char kPropertyVersion[] = "3.2.0";

// The loaded library's version, from the name of its file where it carries one
// (libZelBL70KT.so.X.Y.Z), else this build's.
std::string LibraryVersion() {
    const std::string file = LibraryFileOf(reinterpret_cast<const void*>(&ZelGetError));
    if (file.empty()) return "unknown";
    const std::string version = VersionInLibraryName(file);
    return (version.empty() ? std::string(ZEL_VERSION) : version) + " (" + file + ")";
}

// The "Unicode version : " line of a code table file's text header.
std::string TableUnicodeVersion(const std::string& path) {
    FILE* file = OpenStreamByName(path, "rb");
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

std::string SystemPath(std::string path) {
    for (char& c : path)
        if (c == '\\') c = '/';
    return path;
}

// The code table files found, by number: their kinds, and the Unicode version their headers name.
void CodeTables() {
    const std::string directory = CodeTableDirectory();
    std::map<std::string, std::string> kinds, unicode;
    for (const CodeTableFile& file : CodeTableFiles()) {
        kinds[file.number] += " " + file.kind;
        if (!unicode.count(file.number)) unicode[file.number] = TableUnicodeVersion(SystemPath(directory) + "/" + file.name);
    }
    if (kinds.empty()) printf("code tables: none in %s\n", directory.c_str());
    for (const auto& [number, list] : kinds)
        printf("code tables %s (Unicode %s):%s\n", number.c_str(), unicode[number].c_str(), list.c_str());
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
    const std::string path = SystemPath(ToUtf8(name));
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
