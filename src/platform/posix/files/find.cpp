// File searches by mask: FindFirstFile, FindNextFile, FindClose and the one mask matcher.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/posix/files/file_info.h"
#include "platform/win32.h"
#include "platform/process_object.h"

namespace {

WCHAR Upper(WCHAR c) { return c >= u'a' && c <= u'z' ? static_cast<WCHAR>(c - u'a' + u'A') : c; }

// * matches any run of characters, ? any one character; a to z match without regard to case.
bool Wildcard(const std::u16string& mask, const std::u16string& name) {
    size_t m = 0, n = 0, starMask = std::u16string::npos, starName = 0;
    while (n < name.size()) {
        if (m < mask.size() && mask[m] == u'*') {
            starMask = m++;
            starName = n;
        } else if (m < mask.size() && (mask[m] == u'?' || Upper(mask[m]) == Upper(name[n]))) {
            ++m;
            ++n;
        } else if (starMask != std::u16string::npos) {
            m = starMask + 1;  // let the last star take one more character
            n = ++starName;
        } else {
            return false;
        }
    }
    while (m < mask.size() && mask[m] == u'*') ++m;
    return m == mask.size();
}

struct Search {
    std::string directory;           // system path, with a slash at its end
    std::vector<std::string> names;  // matching names in the order given back
    size_t next = 0;
};

std::mutex tableLock;
constinit ZelProcessObject<std::map<uintptr_t, Search>> searches;
std::map<uintptr_t, Search>& Searches() { return *searches; }
uintptr_t lastHandle = 8;  // search handles step by 16 from 24: apart from file handles

// Fills the record of the next name that still exists; false at the end.
bool NextFound(Search& search, WIN32_FIND_DATAW& data) {
    while (search.next < search.names.size()) {
        const std::string& name = search.names[search.next++];
        struct stat status;
        std::u16string wide = ZelPlatformUtf8ToWide(name);
        // A name that the record can't hold, or one gone since the listing, is passed over.
        if (wide.size() >= MAX_PATH || stat((search.directory + name).c_str(), &status) != 0) continue;
        ZelFileInfo info = ZelFileInfoOf(status, name);
        std::memset(&data, 0, sizeof data);
        data.dwFileAttributes = info.attributes;
        data.ftCreationTime = info.creation;
        data.ftLastAccessTime = info.access;
        data.ftLastWriteTime = info.write;
        data.nFileSizeHigh = static_cast<DWORD>(info.size >> 32);
        data.nFileSizeLow = static_cast<DWORD>(info.size);
        std::copy(wide.begin(), wide.end(), data.cFileName);
        return true;
    }
    return false;
}

// Windows lists "." and ".." first, then the names in an order that ignores case.
bool ListedBefore(const std::string& a, const std::string& b) {
    auto rank = [](const std::string& name) { return name == "." ? 0 : name == ".." ? 1 : 2; };
    if (rank(a) != rank(b)) return rank(a) < rank(b);
    auto upper = [](unsigned char c) { return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c; };
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [&](char x, char y) { return upper(x) < upper(y); });
}

}  // namespace

bool ZelPlatformMaskMatches(const std::u16string& mask, const std::u16string& name) {
    if (Wildcard(mask, name)) return true;
    // "x.*" also finds "x" without an extension (so "*.*" finds every name), and "x." finds "x".
    bool noDot = name.find(u'.') == std::u16string::npos;
    if (mask.size() >= 2 && mask.compare(mask.size() - 2, 2, u".*") == 0 && noDot)
        return Wildcard(mask.substr(0, mask.size() - 2), name);
    if (!mask.empty() && mask.back() == u'.' && noDot) return Wildcard(mask.substr(0, mask.size() - 1), name);
    return false;
}

HANDLE FindFirstFileW(LPCWSTR fileName, LPWIN32_FIND_DATAW findData) {
    if (!fileName || !findData) {
        SetLastError(!fileName ? ERROR_PATH_NOT_FOUND : ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    // The directory part, up to the last separator or the drive, and the mask after it.
    std::u16string path(fileName);
    size_t split = path.find_last_of(u"\\/");
    if (split == std::u16string::npos && path.size() >= 2 && path[1] == u':') split = 1;
    std::u16string directoryPart = split == std::u16string::npos ? u"" : path.substr(0, split + 1);
    std::u16string mask = split == std::u16string::npos ? path : path.substr(split + 1);

    Search search;
    search.directory = directoryPart.empty() ? "./" : ZelPlatformPathToSystem(directoryPart.c_str());
    if (search.directory.empty() || search.directory.back() != '/') search.directory += '/';
    DIR* listing = opendir(search.directory.c_str());
    if (!listing) {
        SetLastError(errno == EACCES ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    // A root has no "." and "..", as on Windows.
    struct stat here, parent;
    bool atRoot = stat(search.directory.c_str(), &here) == 0 && stat((search.directory + "..").c_str(), &parent) == 0 &&
                  here.st_dev == parent.st_dev && here.st_ino == parent.st_ino;
    while (const dirent* entry = readdir(listing)) {
        std::string name = entry->d_name;
        if (atRoot && (name == "." || name == "..")) continue;
        if (!mask.empty() && ZelPlatformMaskMatches(mask, ZelPlatformUtf8ToWide(name))) search.names.push_back(name);
    }
    closedir(listing);
    std::sort(search.names.begin(), search.names.end(), ListedBefore);
    if (!NextFound(search, *findData)) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    std::lock_guard<std::mutex> guard(tableLock);
    lastHandle += 16;
    Searches()[lastHandle] = std::move(search);
    return reinterpret_cast<HANDLE>(lastHandle);
}

HANDLE FindFirstFileA(LPCSTR fileName, LPWIN32_FIND_DATAA findData) {
    if (!findData) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    WIN32_FIND_DATAW wide;
    HANDLE handle = FindFirstFileW(ZelPlatformAnsiToWide(fileName).get(), &wide);
    if (handle != INVALID_HANDLE_VALUE) ZelFindDataToAnsi(wide, *findData);
    return handle;
}

BOOL FindNextFileW(HANDLE find, LPWIN32_FIND_DATAW findData) {
    std::lock_guard<std::mutex> guard(tableLock);
    auto found = Searches().find(reinterpret_cast<uintptr_t>(find));
    if (found == Searches().end()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (!findData) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (NextFound(found->second, *findData)) return TRUE;
    SetLastError(ERROR_NO_MORE_FILES);
    return FALSE;
}

BOOL FindNextFileA(HANDLE find, LPWIN32_FIND_DATAA findData) {
    if (!findData) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    WIN32_FIND_DATAW wide;
    if (!FindNextFileW(find, &wide)) return FALSE;
    ZelFindDataToAnsi(wide, *findData);
    return TRUE;
}

BOOL FindClose(HANDLE find) {
    std::lock_guard<std::mutex> guard(tableLock);
    if (Searches().erase(reinterpret_cast<uintptr_t>(find)) == 1) return TRUE;
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}
