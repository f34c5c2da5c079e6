// CZelPathName: a path with its drive, directory, name and extension, kept in step with each other.
#include <zel/paths.h>
#include <zel/strings.h>

#include <algorithm>
#include <iterator>

#include "strings/wstr.h"

CZelPathName::CZelPathName() { Clear(); }

CZelPathName::CZelPathName(const WCHAR* path) {
    Clear();
    SetPath(path);
}

CZelPathName::~CZelPathName() = default;

void CZelPathName::SetPath(const WCHAR* path) {
    if (!path) return;
    ustrlcpy(full, path, static_cast<int>(std::size(full)));
    _wsplitpath(full, drive, dir, fname, ext);
    _wmakepath(full, drive, dir, fname, ext);
}

void CZelPathName::SetParts(const WCHAR* newDrive, const WCHAR* newDir, const WCHAR* newName, const WCHAR* newExt) {
    if (newDrive) ustrlcpy(drive, newDrive, static_cast<int>(std::size(drive)));
    if (newDir) ustrlcpy(dir, newDir, static_cast<int>(std::size(dir)));
    if (newName) ustrlcpy(fname, newName, static_cast<int>(std::size(fname)));
    if (newExt) ustrlcpy(ext, newExt, static_cast<int>(std::size(ext)));
    _wmakepath(full, drive, dir, fname, ext);
    // Split again so that the parts read as the whole path does (a drive c becomes c:, a directory
    // gains its separator).
    if (full[0])
        _wsplitpath(full, drive, dir, fname, ext);
    else
        Clear();
}

void CZelPathName::GetDirectory(WCHAR* buffer, int size) const {
    if (!buffer || size <= 0) return;
    size_t length = std::min(wcslen(drive) + wcslen(dir), wcslen(full));
    length = std::min(length, static_cast<size_t>(size - 1));
    std::copy(full, full + length, buffer);
    buffer[length] = 0;
}

void CZelPathName::Clear() {
    drive[0] = dir[0] = fname[0] = ext[0] = full[0] = 0;
}
