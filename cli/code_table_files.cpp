#include "code_table_files.h"

#include <zel/paths.h>
#include <zel/platform.h>

#include "text.h"

std::string CodeTableDirectory() {
    WCHAR directory[MAX_PATH];
    ZelPathToAbsolute(u"${Common}\\Code", directory);
    return ToUtf8(directory);
}

std::vector<CodeTableFile> CodeTableFiles() {
    WCHAR mask[MAX_PATH];
    ZelPathToAbsolute(u"${Common}\\Code\\u???_*.dat", mask);
    WIN32_FIND_DATAW found;
    std::vector<CodeTableFile> files;
    HANDLE search = ZelFindFirstFileW(mask, &found);
    if (search == INVALID_HANDLE_VALUE) return files;
    do {
        const std::string name = ToUtf8(found.cFileName);
        if (name.size() >= 10) files.push_back({name, name.substr(1, 3), name.substr(5, name.size() - 9)});
    } while (ZelFindNextFileW(search, &found));
    FindClose(search);
    return files;
}
