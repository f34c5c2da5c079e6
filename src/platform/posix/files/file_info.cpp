// A file's status in Win32 terms, path errors and the string results of the file calls.
#include "platform/posix/files/file_info.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

std::string ZelFileBaseName(const std::string& systemPath) {
    std::string path = systemPath;
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

DWORD ZelFileAttributesOf(const struct stat& status, const std::string& name) {
    DWORD attributes = S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_ARCHIVE;
    if (!(status.st_mode & S_IWUSR)) attributes |= FILE_ATTRIBUTE_READONLY;
    if (name.size() > 1 && name[0] == '.' && name != "..") attributes |= FILE_ATTRIBUTE_HIDDEN;
    return attributes;
}

ZelFileInfo ZelFileInfoOf(const struct stat& status, const std::string& name) {
    ZelFileInfo info;
    info.attributes = ZelFileAttributesOf(status, name);
    // The system keeps no creation time here; the earlier of the change and write times stands in.
    const struct timespec& created = status.st_ctim.tv_sec < status.st_mtim.tv_sec ? status.st_ctim : status.st_mtim;
    info.creation = ZelPlatformFileTimeFromUnix(created.tv_sec, created.tv_nsec);
    info.access = ZelPlatformFileTimeFromUnix(status.st_atim.tv_sec, status.st_atim.tv_nsec);
    info.write = ZelPlatformFileTimeFromUnix(status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
    info.size = S_ISDIR(status.st_mode) ? 0 : static_cast<uint64_t>(status.st_size);
    return info;
}

DWORD ZelSetPathError(const std::string& systemPath, int error) {
    DWORD code = ZelPlatformErrorFromErrno(error);
    if (error == ENOENT) {
        std::string parent = systemPath;
        while (parent.size() > 1 && parent.back() == '/') parent.pop_back();
        size_t slash = parent.rfind('/');
        parent = slash == std::string::npos ? "." : slash == 0 ? "/" : parent.substr(0, slash);
        struct stat status;
        if (systemPath.empty() || stat(parent.c_str(), &status) != 0 || !S_ISDIR(status.st_mode))
            code = ERROR_PATH_NOT_FOUND;
    }
    SetLastError(code);
    return code;
}

namespace {

template <typename Char>
DWORD Give(const std::basic_string<Char>& text, Char* buffer, DWORD size) {
    DWORD length = static_cast<DWORD>(text.size());
    if (!buffer || size <= length) return length + 1;
    std::memcpy(buffer, text.c_str(), (text.size() + 1) * sizeof(Char));
    return length;
}

}  // namespace

DWORD ZelGiveText(const std::u16string& text, LPWSTR buffer, DWORD size) { return Give(text, buffer, size); }
DWORD ZelGiveText(const std::string& text, LPSTR buffer, DWORD size) { return Give(text, buffer, size); }

void ZelFindDataToAnsi(const WIN32_FIND_DATAW& wide, WIN32_FIND_DATAA& narrow) {
    std::memset(&narrow, 0, sizeof narrow);
    ZelCopyFileRecordHead(wide, narrow);
    std::string name = ZelPlatformWideToAnsi(wide.cFileName);
    std::memcpy(narrow.cFileName, name.data(), std::min(name.size(), size_t{MAX_PATH - 1}));
}
