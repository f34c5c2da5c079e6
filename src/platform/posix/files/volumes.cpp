// Volumes and the system's places: drive types, free space, volume information, the user's name,
// the Windows and system directories.
#include <dlfcn.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/posix/files/file_info.h"
#include "platform/win32.h"

namespace {

// The system path of a root argument; null means the current directory's volume.
std::string RootPath(LPCWSTR root) { return root ? ZelPlatformPathToSystem(root) : std::string("."); }

std::string ResolvedPath(const std::string& path) {
    char resolved[PATH_MAX];
    return realpath(path.c_str(), resolved) ? std::string(resolved) : path;
}

// Undoes the octal escapes (\040 and the like) of a mountinfo field.
std::string Unescape(const std::string& field) {
    auto octal = [](char c) { return c >= '0' && c <= '7'; };
    std::string out;
    for (size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && octal(field[i + 1]) && octal(field[i + 2]) &&
            octal(field[i + 3])) {
            out += static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 + (field[i + 3] - '0'));
            i += 3;
        } else {
            out += field[i];
        }
    }
    return out;
}

struct Mount {
    std::string type;    // such as "ext4" or "fuse.sshfs"
    std::string source;  // such as "/dev/sda1" or "host:/export"
};

// The mount whose mount point is the longest prefix of the path; the later of equal ones wins,
// since it lies over the earlier.
Mount MountOf(const std::string& path) {
    std::string target = ResolvedPath(path);
    std::ifstream info("/proc/self/mountinfo");
    std::string line;
    Mount best;
    size_t bestLength = 0;
    bool any = false;
    while (std::getline(info, line)) {
        std::istringstream fields(line);
        std::string id, parent, device, root, point, field;
        if (!(fields >> id >> parent >> device >> root >> point)) continue;
        while (fields >> field && field != "-") {
        }
        Mount mount;
        if (!(fields >> mount.type >> mount.source)) continue;
        point = Unescape(point);
        bool covers = point == "/" || target == point ||
                      (target.compare(0, point.size(), point) == 0 && target.size() > point.size() &&
                       target[point.size()] == '/');
        if (covers && (!any || point.size() >= bestLength)) {
            best = mount;
            best.source = Unescape(best.source);
            bestLength = point.size();
            any = true;
        }
    }
    return best;
}

// File systems served over a network, among them those that FUSE carries.
bool IsNetworkType(const std::string& type) {
    static const char* const network[] = {
        "nfs",        "nfs4",        "cifs",          "smb3",           "smbfs",        "smb2",
        "ncpfs",      "afs",         "ceph",          "glusterfs",      "9p",           "fuse.sshfs",
        "fuse.s3fs",  "fuse.rclone", "fuse.gcsfuse",  "fuse.davfs",     "fuse.curlftpfs", "fuse.glusterfs",
    };
    return std::any_of(std::begin(network), std::end(network), [&](const char* name) { return type == name; });
}

// The block device of a file system says whether its medium is removable; a partition asks the
// disk it belongs to.
bool OnRemovableDevice(dev_t device) {
    std::string base = "/sys/dev/block/" + std::to_string(major(device)) + ":" + std::to_string(minor(device));
    std::string resolved = ResolvedPath(base);
    for (const std::string& file : {resolved + "/removable", resolved + "/../removable"}) {
        std::ifstream flag(file);
        char value = 0;
        if (flag >> value) return value == '1';
    }
    return false;
}

// Copies text with its terminator into an optional output of size units; false when it doesn't fit.
bool PutOptional(const std::u16string& text, LPWSTR out, DWORD size) {
    if (!out) return true;
    if (size <= text.size()) return false;
    std::copy(text.c_str(), text.c_str() + text.size() + 1, out);
    return true;
}

std::string HomeDirectory() {
    if (const char* home = getenv("HOME"); home && *home) return home;
    struct passwd record, *found = nullptr;
    std::vector<char> scratch(16384);
    if (getpwuid_r(geteuid(), &record, scratch.data(), scratch.size(), &found) == 0 && found && found->pw_dir)
        return found->pw_dir;
    return "/";
}

}  // namespace

UINT GetDriveTypeW(LPCWSTR rootPath) {
    std::string root = RootPath(rootPath);
    struct stat status;
    struct statfs system;
    if (root.empty() || stat(root.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) ||
        statfs(root.c_str(), &system) != 0)
        return DRIVE_NO_ROOT_DIR;
    switch (static_cast<unsigned long>(system.f_type)) {
    case 0x01021994:  // tmpfs
    case 0x858458f6:  // ramfs
        return DRIVE_RAMDISK;
    case 0x6969:      // nfs
    case 0xFF534D42:  // cifs
    case 0xFE534D42:  // smb2
    case 0x517B:      // smb
        return DRIVE_REMOTE;
    case 0x9660:      // iso9660
    case 0x15013346:  // udf
        return DRIVE_CDROM;
    default:  // among them FUSE, which is remote when what it carries is
        if (IsNetworkType(MountOf(root).type)) return DRIVE_REMOTE;
        break;
    }
    return major(status.st_dev) != 0 && OnRemovableDevice(status.st_dev) ? DRIVE_REMOVABLE : DRIVE_FIXED;
}

UINT GetDriveTypeA(LPCSTR rootPath) { return GetDriveTypeW(ZelPlatformAnsiToWide(rootPath).get()); }

// Sectors of 512 bytes and clusters of the file system's fragment size; the counts are cut at
// 0xFFFFFFFF as this old form can't say more.
BOOL GetDiskFreeSpaceW(LPCWSTR rootPath, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector, LPDWORD freeClusters,
                       LPDWORD totalClusters) {
    std::string root = RootPath(rootPath);
    struct statvfs system;
    if (root.empty() || statvfs(root.c_str(), &system) != 0) {
        ZelSetPathError(root, root.empty() ? ENOENT : errno);
        return FALSE;
    }
    unsigned long cluster = system.f_frsize ? system.f_frsize : system.f_bsize;
    DWORD sector = cluster < 512 ? static_cast<DWORD>(std::max(cluster, 1UL)) : 512;
    auto cut = [](fsblkcnt_t count) { return static_cast<DWORD>(std::min<fsblkcnt_t>(count, 0xFFFFFFFF)); };
    if (sectorsPerCluster) *sectorsPerCluster = static_cast<DWORD>(std::max(cluster / sector, 1UL));
    if (bytesPerSector) *bytesPerSector = sector;
    if (freeClusters) *freeClusters = cut(system.f_bavail);
    if (totalClusters) *totalClusters = cut(system.f_blocks);
    return TRUE;
}

BOOL GetDiskFreeSpaceA(LPCSTR rootPath, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector, LPDWORD freeClusters,
                       LPDWORD totalClusters) {
    return GetDiskFreeSpaceW(ZelPlatformAnsiToWide(rootPath).get(), sectorsPerCluster, bytesPerSector, freeClusters,
                             totalClusters);
}

BOOL GetDiskFreeSpaceExW(LPCWSTR directory, ULARGE_INTEGER* freeToCaller, ULARGE_INTEGER* total,
                         ULARGE_INTEGER* totalFree) {
    std::string root = RootPath(directory);
    struct statvfs system;
    if (root.empty() || statvfs(root.c_str(), &system) != 0) {
        ZelSetPathError(root, root.empty() ? ENOENT : errno);
        return FALSE;
    }
    ULONGLONG unit = system.f_frsize ? system.f_frsize : system.f_bsize;
    if (freeToCaller) freeToCaller->QuadPart = ULONGLONG{system.f_bavail} * unit;
    if (total) total->QuadPart = ULONGLONG{system.f_blocks} * unit;
    if (totalFree) totalFree->QuadPart = ULONGLONG{system.f_bfree} * unit;
    return TRUE;
}

BOOL GetDiskFreeSpaceExA(LPCSTR directory, ULARGE_INTEGER* freeToCaller, ULARGE_INTEGER* total,
                         ULARGE_INTEGER* totalFree) {
    return GetDiskFreeSpaceExW(ZelPlatformAnsiToWide(directory).get(), freeToCaller, total, totalFree);
}

// File systems here tell case and keep it (FILE_CASE_SENSITIVE_SEARCH | FILE_CASE_PRESERVED_NAMES)
// and have no volume names.
BOOL GetVolumeInformationW(LPCWSTR rootPath, LPWSTR volumeName, DWORD volumeNameSize, LPDWORD serialNumber,
                           LPDWORD maxComponentLength, LPDWORD fileSystemFlags, LPWSTR fileSystemName,
                           DWORD fileSystemNameSize) {
    std::string root = RootPath(rootPath);
    struct stat status;
    struct statvfs system;
    if (root.empty() || stat(root.c_str(), &status) != 0 || statvfs(root.c_str(), &system) != 0) {
        ZelSetPathError(root, root.empty() ? ENOENT : errno);
        return FALSE;
    }
    std::u16string typeName = fileSystemName ? ZelPlatformUtf8ToWide(MountOf(root).type) : std::u16string();
    if (!PutOptional(u"", volumeName, volumeNameSize) || !PutOptional(typeName, fileSystemName, fileSystemNameSize)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    if (serialNumber) {
        auto fsid = static_cast<DWORD>(system.f_fsid);
        *serialNumber = fsid ? fsid : static_cast<DWORD>(status.st_dev);
    }
    if (maxComponentLength) *maxComponentLength = static_cast<DWORD>(system.f_namemax);
    if (fileSystemFlags) *fileSystemFlags = 0x3;
    return TRUE;
}

BOOL GetVolumeInformationA(LPCSTR rootPath, LPSTR volumeName, DWORD volumeNameSize, LPDWORD serialNumber,
                           LPDWORD maxComponentLength, LPDWORD fileSystemFlags, LPSTR fileSystemName,
                           DWORD fileSystemNameSize) {
    WCHAR wideVolume[MAX_PATH + 1], wideType[MAX_PATH + 1];
    if (!GetVolumeInformationW(ZelPlatformAnsiToWide(rootPath).get(), volumeName ? wideVolume : nullptr, MAX_PATH + 1,
                               serialNumber, maxComponentLength, fileSystemFlags, fileSystemName ? wideType : nullptr,
                               MAX_PATH + 1))
        return FALSE;
    auto put = [](LPCWSTR wide, LPSTR out, DWORD size) {
        if (!out) return true;
        std::string text = ZelPlatformWideToAnsi(wide);
        if (size <= text.size()) return false;
        std::memcpy(out, text.c_str(), text.size() + 1);
        return true;
    };
    if (!put(wideVolume, volumeName, volumeNameSize) || !put(wideType, fileSystemName, fileSystemNameSize)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    return TRUE;
}

// ---------------------------------------------------------------------------------------------
// The user and the system's directories

BOOL GetUserNameW(LPWSTR buffer, LPDWORD size) {
    if (!size) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    std::string name;
    struct passwd record, *found = nullptr;
    std::vector<char> scratch(16384);
    if (getpwuid_r(geteuid(), &record, scratch.data(), scratch.size(), &found) == 0 && found && found->pw_name)
        name = found->pw_name;
    for (const char* variable : {"USER", "LOGNAME"}) {
        const char* value = getenv(variable);
        if (name.empty() && value) name = value;
    }
    if (name.empty()) {
        SetLastError(ERROR_NOT_FOUND);
        return FALSE;
    }
    std::u16string wide = ZelPlatformUtf8ToWide(name);
    DWORD given = *size;
    *size = static_cast<DWORD>(wide.size() + 1);
    if (!buffer || given < *size) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    std::copy(wide.c_str(), wide.c_str() + wide.size() + 1, buffer);
    return TRUE;
}

BOOL GetUserNameA(LPSTR buffer, LPDWORD size) {
    if (!size) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    DWORD wideSize = 0;
    GetUserNameW(nullptr, &wideSize);
    if (wideSize == 0) return FALSE;
    std::u16string wide(wideSize, u'\0');
    if (!GetUserNameW(wide.data(), &wideSize)) return FALSE;
    std::string name = ZelPlatformWideToAnsi(wide.c_str());
    DWORD given = *size;
    *size = static_cast<DWORD>(name.size() + 1);
    if (!buffer || given < *size) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    std::memcpy(buffer, name.c_str(), name.size() + 1);
    return TRUE;
}

// $XDG_CONFIG_HOME/Morvalis/Windows, by default below ~/.config; it isn't made here.
UINT GetWindowsDirectoryW(LPWSTR buffer, UINT size) {
    const char* config = getenv("XDG_CONFIG_HOME");
    std::string base = config && config[0] == '/' ? config : HomeDirectory() + "/.config";
    while (base.size() > 1 && base.back() == '/') base.pop_back();
    return ZelGiveText(ZelPlatformPathFromSystem((base + "/Morvalis/Windows").c_str()), buffer, size);
}

UINT GetWindowsDirectoryA(LPSTR buffer, UINT size) {
    return ZelGiveAnsiFromWide(buffer, size,
                               [](LPWSTR wide, DWORD wideSize) { return GetWindowsDirectoryW(wide, wideSize); });
}

// The directory of the C library that the process runs.
UINT GetSystemDirectoryW(LPWSTR buffer, UINT size) {
    std::string directory = "/lib";
    Dl_info info;
    void* function = dlsym(RTLD_DEFAULT, "gnu_get_libc_version");
    if (!function) function = dlsym(RTLD_DEFAULT, "fopen");
    if (function && dladdr(function, &info) && info.dli_fname && std::strchr(info.dli_fname, '/')) {
        directory = info.dli_fname;
        directory.erase(directory.rfind('/'));
        if (directory.empty()) directory = "/";
    }
    return ZelGiveText(ZelPlatformPathFromSystem(directory.c_str()), buffer, size);
}

UINT GetSystemDirectoryA(LPSTR buffer, UINT size) {
    return ZelGiveAnsiFromWide(buffer, size,
                               [](LPWSTR wide, DWORD wideSize) { return GetSystemDirectoryW(wide, wideSize); });
}
