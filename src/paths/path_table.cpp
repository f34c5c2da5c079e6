// The table of named paths: one array of rows grown with realloc, ended by an all-zero row. It is
// a plain pointer so that process detach can free it after the static destructors have run.
// Beside it, the operations that register or load a module by its directory.
#include "paths/path_table.h"

#include <zel/strings.h>

#include <cstdlib>
#include <cstring>
#include <iterator>

#include "frame/attach_steps.h"
#include "strings/wstr.h"

namespace {

ZelPathEntry* table = nullptr;

size_t CountRows() {
    size_t count = 0;
    if (table)
        while (table[count].name[0]) ++count;
    return count;
}

ZelPathEntry* FindRow(const WCHAR* name) {
    if (!table || !name) return nullptr;
    for (ZelPathEntry* row = table; row->name[0]; ++row)
        if (_ustricmp(row->name, name) == 0) return row;
    return nullptr;
}

}  // namespace

const ZelPathEntry* ZelPathTableRows() { return table; }

const ZelPathEntry* ZelFindPathRow(const WCHAR* name, size_t length) {
    if (!table || !name || length == 0 || length > kZelPathNameMax) return nullptr;
    for (const ZelPathEntry* row = table; row->name[0]; ++row)
        if (wcslen(row->name) == length && _ustrnicmp(row->name, name, static_cast<unsigned>(length)) == 0)
            return row;
    return nullptr;
}

BOOL ZelRegisterPath(const WCHAR* name, const WCHAR* value) {
    // An empty name would end the table at its row, and a longer text than a row holds is refused
    // rather than cut, so that no caller gets a different value than it registered.
    if (!name || !*name || !value) return 0;
    if (wcslen(name) > kZelPathNameMax || wcslen(value) > kZelPathValueMax) return 0;
    if (FindRow(name)) return 0;

    size_t count = CountRows();
    void* grown = std::realloc(table, (count + 2) * sizeof(ZelPathEntry));
    if (!grown) return 0;
    table = static_cast<ZelPathEntry*>(grown);
    std::memset(&table[count], 0, 2 * sizeof(ZelPathEntry));
    ustrlcpy(table[count].name, name, static_cast<int>(std::size(table[count].name)));
    ustrlcpy(table[count].path, value, static_cast<int>(std::size(table[count].path)));
    return 1;
}

BOOL ZelUnregisterPath(const WCHAR* name) {
    ZelPathEntry* row = FindRow(name);
    if (!row) return 0;
    // The rows behind it and the end row move down; the array keeps its size.
    size_t behind = CountRows() - static_cast<size_t>(row - table);
    std::memmove(row, row + 1, behind * sizeof(ZelPathEntry));
    return 1;
}

BOOL ZelIsRegisterPath(const WCHAR* name) { return FindRow(name) ? 1 : 0; }

void ZelFreePathTable() {
    std::free(table);
    table = nullptr;
}

// A module's directory, with its trailing backslash.
BOOL ZelRegisterModulePath(const WCHAR* name, HMODULE module) {
    if (!name) return 0;
    WCHAR fileName[MAX_PATH] = {};
    ZelGetModuleFileName(module, fileName, MAX_PATH);
    fileName[MAX_PATH - 1] = 0;
    if (!fileName[0]) return 0;

    CZelPathName path;
    path.SetPath(fileName);
    path.SetParts(nullptr, nullptr, u"", u"");
    return ZelRegisterPath(name, path.full);
}

// The module's own directory is current for the length of the load, so that the libraries beside
// it are found; every thread sees that change.
HMODULE ZelLoadLibraryModulePath(const WCHAR* fileName) {
    if (!fileName) return nullptr;
    WCHAR drive[_MAX_DRIVE], dir[_MAX_DIR];
    _wsplitpath(fileName, drive, dir, nullptr, nullptr);
    WCHAR moduleDirectory[MAX_PATH];
    _wmakepath(moduleDirectory, drive, dir, nullptr, nullptr);

    WCHAR saved[MAX_PATH] = {};
    BOOL haveSaved = ZelGetCurrentDirectory(MAX_PATH, saved);
    saved[MAX_PATH - 1] = 0;
    ZelSetCurrentDirectory(moduleDirectory);
    HMODULE module = ZelLoadLibraryEx(fileName, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    // Without a saved directory there is nothing to go back to, and an empty one would fail.
    if (haveSaved && saved[0]) ZelSetCurrentDirectory(saved);
    return module;
}
