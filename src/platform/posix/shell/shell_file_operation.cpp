// SHFileOperation: copy, move, rename and delete on lists of names. There is no user to ask and
// no recycle bin: every confirmation is taken as given, FOF_ALLOWUNDO deletes, and nothing is
// ever aborted. The first failure ends the operation with its Win32 error code.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "platform/posix/files/file_info.h"
#include "platform/win32.h"

namespace {

struct Item {
    std::string path;   // the system's form
    std::string title;  // the last component
    bool isDirectory = false;
};

// A list of names, each with its terminator and one more terminator at the end; null is empty.
std::vector<std::u16string> SplitList(LPCWSTR list) {
    std::vector<std::u16string> names;
    if (!list) return names;
    while (*list) {
        std::u16string name(list);
        list += name.size() + 1;
        names.push_back(std::move(name));
    }
    return names;
}

std::string TrimSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

std::string TitleOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string Join(const std::string& directory, const std::string& name) {
    return directory.empty() || directory.back() == '/' ? directory + name : directory + "/" + name;
}

DWORD LastError() { return ZelPlatformErrorFromErrno(errno); }

bool IsDirectory(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool Exists(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

enum class Visit { File, DirectoryBefore, DirectoryAfter };

// The one walk over a tree, without following links: directories are seen before and after
// their contents. A visitor's error ends the walk.
DWORD WalkTree(const std::string& path, const std::string& relative,
               const std::function<DWORD(const std::string&, const std::string&, const struct stat&, Visit)>& visit) {
    struct stat status;
    if (lstat(path.c_str(), &status) != 0) return LastError();
    if (!S_ISDIR(status.st_mode)) return visit(path, relative, status, Visit::File);
    if (DWORD error = visit(path, relative, status, Visit::DirectoryBefore)) return error;
    DIR* directory = opendir(path.c_str());
    if (!directory) return LastError();
    std::vector<std::string> names;
    while (dirent* entry = readdir(directory)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
    closedir(directory);
    for (const std::string& name : names)
        if (DWORD error = WalkTree(Join(path, name), Join(relative, name), visit)) return error;
    return visit(path, relative, status, Visit::DirectoryAfter);
}

DWORD CopyTree(const std::string& from, const std::string& to) {
    return WalkTree(from, "", [&](const std::string& path, const std::string& relative, const struct stat& status,
                                  Visit visit) -> DWORD {
        const std::string target = relative.empty() ? to : Join(to, relative);
        switch (visit) {
            case Visit::DirectoryBefore:
                return mkdir(target.c_str(), 0777) == 0 || (errno == EEXIST && IsDirectory(target)) ? 0 : LastError();
            case Visit::DirectoryAfter:
                return 0;
            case Visit::File:
                if (S_ISLNK(status.st_mode)) {
                    std::string link(4096, '\0');
                    const ssize_t length = readlink(path.c_str(), link.data(), link.size());
                    if (length < 0) return LastError();
                    link.resize(static_cast<size_t>(length));
                    unlink(target.c_str());
                    return symlink(link.c_str(), target.c_str()) == 0 ? 0 : LastError();
                }
                return ZelCopyRegularFile(path, target, false) ? 0 : GetLastError();
        }
        return 0;
    });
}

DWORD DeleteTree(const std::string& path) {
    return WalkTree(path, "", [](const std::string& at, const std::string&, const struct stat&, Visit visit) -> DWORD {
        if (visit == Visit::DirectoryBefore) return 0;
        const int result = visit == Visit::File ? unlink(at.c_str()) : rmdir(at.c_str());
        return result == 0 ? 0 : LastError();
    });
}

DWORD MakeDirectories(const std::string& path) {
    for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string part = path.substr(0, slash);
        if (mkdir(part.c_str(), 0777) != 0 && errno != EEXIST) return LastError();
        if (slash == std::string::npos) return IsDirectory(part) ? 0 : ERROR_ALREADY_EXISTS;
    }
}

// A source name with its wildcards resolved; wildcard says whether the name had any.
DWORD ExpandSource(const std::u16string& source, bool filesOnly, std::vector<Item>& items, bool& wildcard) {
    const size_t separator = source.find_last_of(u"\\/:");
    const std::u16string mask = separator == std::u16string::npos ? source : source.substr(separator + 1);
    wildcard = mask.find_first_of(u"*?") != std::u16string::npos;
    if (!wildcard) {
        Item item;
        item.path = TrimSlashes(ZelPlatformPathToSystem(source.c_str()));
        struct stat status;
        if (lstat(item.path.c_str(), &status) != 0) return errno == ENOENT ? ERROR_FILE_NOT_FOUND : LastError();
        item.title = TitleOf(item.path);
        item.isDirectory = S_ISDIR(status.st_mode);
        items.push_back(item);
        return 0;
    }
    const std::u16string folder = separator == std::u16string::npos ? u"." : source.substr(0, separator + 1);
    const std::string directory = ZelPlatformPathToSystem(folder.c_str());
    DIR* listing = opendir(directory.empty() ? "." : directory.c_str());
    if (!listing) return errno == ENOENT ? ERROR_PATH_NOT_FOUND : LastError();
    std::vector<Item> found;
    while (dirent* entry = readdir(listing)) {
        const std::string name = entry->d_name;
        if (name == "." || name == ".." || !ZelPlatformMaskMatches(mask, ZelPlatformUtf8ToWide(name))) continue;
        Item item;
        item.path = Join(directory, name);
        item.title = name;
        item.isDirectory = IsDirectory(item.path);
        if (!(filesOnly && item.isDirectory)) found.push_back(item);
    }
    closedir(listing);
    items.insert(items.end(), found.begin(), found.end());
    return 0;
}

bool SameFile(const std::string& a, const std::string& b) {
    struct stat first, second;
    return lstat(a.c_str(), &first) == 0 && lstat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

bool InsideOf(const std::string& inner, const std::string& outer) {
    char resolvedOuter[PATH_MAX], resolvedParent[PATH_MAX];
    const std::string parent = inner.substr(0, inner.rfind('/') == std::string::npos ? 0 : inner.rfind('/'));
    if (!realpath(outer.c_str(), resolvedOuter) || !realpath(parent.empty() ? "." : parent.c_str(), resolvedParent))
        return false;
    const std::string a = std::string(resolvedParent) + "/", b = std::string(resolvedOuter) + "/";
    return a.compare(0, b.size(), b) == 0;
}

DWORD Transfer(const Item& item, const std::string& target, bool move) {
    if (Exists(target) && SameFile(item.path, target)) return ERROR_ALREADY_EXISTS;
    if (item.isDirectory && InsideOf(target, item.path)) return ERROR_INVALID_PARAMETER;
    if (move) {
        if (rename(item.path.c_str(), target.c_str()) == 0) return 0;
        if (errno != EXDEV) return LastError();
    }
    if (Exists(target) && IsDirectory(target) != item.isDirectory) return ERROR_ALREADY_EXISTS;
    if (DWORD error = CopyTree(item.path, target)) return error;
    return move ? DeleteTree(item.path) : 0;
}

DWORD CopyOrMove(const std::vector<std::u16string>& sources, const std::vector<std::u16string>& targets, FILEOP_FLAGS flags,
                 bool move) {
    const bool filesOnly = (flags & FOF_FILESONLY) != 0;
    const bool paired = (flags & FOF_MULTIDESTFILES) && targets.size() == sources.size() && !targets.empty();
    if (paired) {
        for (size_t i = 0; i < sources.size(); ++i) {
            std::vector<Item> items;
            bool wildcard = false;
            if (DWORD error = ExpandSource(sources[i], filesOnly, items, wildcard)) return error;
            const std::string destination = TrimSlashes(ZelPlatformPathToSystem(targets[i].c_str()));
            for (const Item& item : items) {
                const bool into = wildcard || (IsDirectory(destination) && !item.isDirectory);
                if (into && MakeDirectories(destination) != 0) return ERROR_PATH_NOT_FOUND;
                if (DWORD error = Transfer(item, into ? Join(destination, item.title) : destination, move)) return error;
            }
        }
        return 0;
    }
    std::vector<Item> items;
    bool anyWildcard = false;
    for (const std::u16string& source : sources) {
        bool wildcard = false;
        if (DWORD error = ExpandSource(source, filesOnly, items, wildcard)) return error;
        anyWildcard = anyWildcard || wildcard;
    }
    const std::string destination = targets.empty() ? "." : TrimSlashes(ZelPlatformPathToSystem(targets[0].c_str()));
    // One plain source to a name that isn't a directory takes that name; everything else goes into
    // the directory, which is made when missing.
    if (items.size() == 1 && !anyWildcard && sources.size() == 1 && !IsDirectory(destination)) {
        const size_t slash = destination.rfind('/');
        if (slash != std::string::npos && slash > 0) {
            if (DWORD error = MakeDirectories(destination.substr(0, slash))) return error;
        }
        return Transfer(items[0], destination, move);
    }
    if (items.empty()) return 0;
    if (DWORD error = MakeDirectories(destination)) return error;
    for (const Item& item : items)
        if (DWORD error = Transfer(item, Join(destination, item.title), move)) return error;
    return 0;
}

DWORD Rename(const std::vector<std::u16string>& sources, const std::vector<std::u16string>& targets) {
    if (sources.size() != 1 || targets.size() != 1) return ERROR_INVALID_PARAMETER;
    const std::string from = TrimSlashes(ZelPlatformPathToSystem(sources[0].c_str()));
    std::string to = TrimSlashes(ZelPlatformPathToSystem(targets[0].c_str()));
    if (!Exists(from)) return ERROR_FILE_NOT_FOUND;
    // A bare new name stays in the source's directory.
    if (to.find('/') == std::string::npos) {
        const size_t slash = from.rfind('/');
        if (slash != std::string::npos) to = from.substr(0, slash + 1) + to;
    }
    if (Exists(to) && !SameFile(from, to)) return ERROR_ALREADY_EXISTS;
    return rename(from.c_str(), to.c_str()) == 0 ? 0 : LastError();
}

DWORD Delete(const std::vector<std::u16string>& sources, FILEOP_FLAGS flags) {
    for (const std::u16string& source : sources) {
        std::vector<Item> items;
        bool wildcard = false;
        if (DWORD error = ExpandSource(source, (flags & FOF_FILESONLY) != 0, items, wildcard)) return error;
        for (const Item& item : items)
            if (DWORD error = DeleteTree(item.path)) return error;
    }
    return 0;
}

}  // namespace

int SHFileOperationW(LPSHFILEOPSTRUCTW operation) {
    if (!operation) return ERROR_INVALID_PARAMETER;
    operation->fAnyOperationsAborted = FALSE;
    operation->hNameMappings = nullptr;
    const std::vector<std::u16string> sources = SplitList(operation->pFrom);
    const std::vector<std::u16string> targets = SplitList(operation->pTo);
    switch (operation->wFunc) {
        case FO_COPY: return static_cast<int>(CopyOrMove(sources, targets, operation->fFlags, false));
        case FO_MOVE: return static_cast<int>(CopyOrMove(sources, targets, operation->fFlags, true));
        case FO_RENAME: return static_cast<int>(Rename(sources, targets));
        case FO_DELETE: return static_cast<int>(Delete(sources, operation->fFlags));
        default: return ERROR_INVALID_PARAMETER;
    }
}

namespace {

// An 8-bit list of names into a 16-bit one, terminators kept; null stays null.
std::u16string WidenList(LPCSTR list, bool& isNull) {
    isNull = list == nullptr;
    std::u16string wide;
    if (!list) return wide;
    while (*list) {
        const ZelAnsiArg name = ZelPlatformAnsiToWide(list);
        wide += name.text;
        wide += u'\0';
        while (*list) ++list;
        ++list;
    }
    wide += u'\0';
    return wide;
}

}  // namespace

int SHFileOperationA(LPSHFILEOPSTRUCTA operation) {
    if (!operation) return ERROR_INVALID_PARAMETER;
    bool fromNull = false, toNull = false;
    const std::u16string from = WidenList(operation->pFrom, fromNull);
    const std::u16string to = WidenList(operation->pTo, toNull);
    const ZelAnsiArg title = ZelPlatformAnsiToWide(operation->lpszProgressTitle);
    SHFILEOPSTRUCTW wide{};
    wide.hwnd = operation->hwnd;
    wide.wFunc = operation->wFunc;
    wide.pFrom = fromNull ? nullptr : from.c_str();
    wide.pTo = toNull ? nullptr : to.c_str();
    wide.fFlags = operation->fFlags;
    wide.lpszProgressTitle = title.get();
    const int result = SHFileOperationW(&wide);
    operation->fAnyOperationsAborted = wide.fAnyOperationsAborted;
    operation->hNameMappings = wide.hNameMappings;
    return result;
}
