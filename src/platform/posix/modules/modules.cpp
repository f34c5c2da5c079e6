// Modules on the dynamic loader. A module handle is the loader's handle, which is the module's
// link map; a file that is not an ELF object (a resource file) or that is asked for as a data file
// loads as a data module (common/modules/data_modules.cpp), whose handle has the low bit set.
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "platform/common/modules/data_modules.h"
#include "platform/win32.h"

namespace {

bool FileExists(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

bool IsElfFile(const std::string& path) {
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    char magic[4] = {};
    bool elf = read(fd, magic, 4) == 4 && memcmp(magic, "\x7f" "ELF", 4) == 0;
    close(fd);
    return elf;
}

std::string ExecutablePath() {
    std::string path(4096, '\0');
    ssize_t n = readlink("/proc/self/exe", path.data(), path.size() - 1);
    if (n <= 0) return {};
    path.resize(static_cast<size_t>(n));
    return path;
}

std::string DirectoryOf(const std::string& path) {
    auto slash = path.rfind('/');
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash);
}

std::string BaseName(const std::string& path) {
    auto slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// The files a name may mean, in the order Win32 searches them: a name with a directory stands for
// itself; a bare name is looked for beside the executable and beside this library before the
// loader's own search. A name without an extension also tries the library extension.
std::vector<std::string> Candidates(const std::string& name) {
    std::vector<std::string> names{name};
    if (BaseName(name).find('.') == std::string::npos) names.push_back(name + ".so");
    if (name.find('/') != std::string::npos) return names;
    std::vector<std::string> result;
    Dl_info info;
    std::string ownDir;
    if (dladdr(reinterpret_cast<void*>(&Candidates), &info) && info.dli_fname) ownDir = DirectoryOf(info.dli_fname);
    for (const std::string& dir : {DirectoryOf(ExecutablePath()), ownDir}) {
        if (dir.empty()) continue;
        for (const auto& n : names)
            if (FileExists(dir + "/" + n)) result.push_back(dir + "/" + n);
    }
    result.insert(result.end(), names.begin(), names.end());
    return result;
}

HMODULE Load(LPCWSTR fileName, DWORD flags) {
    if (!fileName || !*fileName) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (HMODULE system = ZelPlatformSystemModule(fileName)) return system;
    const bool asData =
        (flags & (LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_DATAFILE_EXCLUSIVE | LOAD_LIBRARY_AS_IMAGE_RESOURCE)) != 0;
    bool found = false;
    for (const std::string& candidate : Candidates(ZelPlatformPathToSystem(fileName))) {
        const bool exists = FileExists(candidate);
        found = found || exists;
        if (exists && (asData || !IsElfFile(candidate))) return ZelPlatformLoadDataModule(candidate);
        if (asData) continue;
        if (void* handle = dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL)) return reinterpret_cast<HMODULE>(handle);
    }
    SetLastError(found ? ERROR_BAD_EXE_FORMAT : ERROR_MOD_NOT_FOUND);
    return nullptr;
}

struct link_map* FirstLinkMap() {
    struct link_map* map = nullptr;
    void* self = dlopen(nullptr, RTLD_LAZY | RTLD_NOLOAD);
    if (!self || dlinfo(self, RTLD_DI_LINKMAP, &map) != 0) return nullptr;
    while (map && map->l_prev) map = map->l_prev;
    return map;
}

struct link_map* FindLinkMap(HMODULE module) {
    for (struct link_map* map = FirstLinkMap(); map; map = map->l_next)
        if (reinterpret_cast<HMODULE>(map) == module) return map;
    return nullptr;
}

// The path of a loaded module in the system's form, absolute.
std::string ModulePath(struct link_map* map) {
    std::string name = map->l_name ? map->l_name : "";
    if (name.empty()) return ExecutablePath();
    if (name[0] != '/') {
        char cwd[4096];
        if (getcwd(cwd, sizeof cwd)) name = std::string(cwd) + "/" + name;
    }
    return name;
}

bool SameTitle(const std::string& loaded, const std::string& wanted) {
    auto lower = [](std::string s) {
        for (char& c : s)
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        return s;
    };
    std::string a = lower(loaded), b = lower(wanted);
    if (a == b) return true;
    // libname.so also names libname.so.1 and libname.so.1.2.3
    return a.size() > b.size() && a.compare(0, b.size(), b) == 0 && a[b.size()] == '.' &&
           a.find_first_not_of("0123456789.", b.size()) == std::string::npos;
}

// Win32's rule for a module name in a short buffer: the name is cut to size - 1 units with a
// terminator, the result is size and the last error says the buffer was short.
template <typename Char>
DWORD CopyModuleName(const std::basic_string<Char>& name, Char* out, DWORD size) {
    if (!out || size == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    if (name.size() >= size) {
        name.copy(out, size - 1);
        out[size - 1] = 0;
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return size;
    }
    name.copy(out, name.size());
    out[name.size()] = 0;
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(name.size());
}

}  // namespace

HMODULE LoadLibraryW(LPCWSTR fileName) { return Load(fileName, 0); }

HMODULE LoadLibraryExW(LPCWSTR fileName, HANDLE reserved, DWORD flags) {
    if (reserved) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return Load(fileName, flags);
}

HMODULE LoadLibraryA(LPCSTR fileName) { return LoadLibraryW(ZelPlatformAnsiToWide(fileName).get()); }

HMODULE LoadLibraryExA(LPCSTR fileName, HANDLE reserved, DWORD flags) {
    return LoadLibraryExW(ZelPlatformAnsiToWide(fileName).get(), reserved, flags);
}

BOOL FreeLibrary(HMODULE module) {
    if (!module) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (ZelPlatformSystemModuleName(module)) return TRUE;
    if (ZelPlatformHasDataMark(module)) {
        if (ZelPlatformFreeDataModule(module)) return TRUE;
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (!FindLinkMap(module) || dlclose(reinterpret_cast<void*>(module)) != 0) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return TRUE;
}

FARPROC GetProcAddress(HMODULE module, LPCSTR procName) {
    if (ZelPlatformSystemModuleName(module)) return ZelPlatformSystemProc(module, procName);
    // Names only: an ordinal (a value below 0x10000 in place of the pointer) has no meaning here.
    if (!procName || reinterpret_cast<uintptr_t>(procName) < 0x10000 || ZelPlatformHasDataMark(module)) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    void* handle = module ? reinterpret_cast<void*>(module) : dlopen(nullptr, RTLD_LAZY | RTLD_NOLOAD);
    if (module && !FindLinkMap(module)) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    void* symbol = dlsym(handle, procName);
    if (!symbol) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    return reinterpret_cast<FARPROC>(symbol);
}

DWORD GetModuleFileNameW(HMODULE module, LPWSTR fileName, DWORD size) {
    std::string path;
    if (LPCWSTR system = ZelPlatformSystemModuleName(module)) {
        // The system directory's file of that name, as a Win32 caller expects.
        WCHAR directory[MAX_PATH] = {};
        UINT length = GetSystemDirectoryW(directory, MAX_PATH);
        if (length == 0 || length >= MAX_PATH) return 0;
        return CopyModuleName(std::u16string(directory) + u"\\" + system, fileName, size);
    }
    if (!module) {
        path = ExecutablePath();
    } else if (struct link_map* map = ZelPlatformHasDataMark(module) ? nullptr : FindLinkMap(module)) {
        path = ModulePath(map);
    } else {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return 0;
    }
    return CopyModuleName(ZelPlatformPathFromSystem(path.c_str()), fileName, size);
}

DWORD GetModuleFileNameA(HMODULE module, LPSTR fileName, DWORD size) {
    WCHAR wide[4096];
    DWORD length = GetModuleFileNameW(module, wide, 4096);
    if (length == 0 && GetLastError() != ERROR_INSUFFICIENT_BUFFER) return 0;
    return CopyModuleName(ZelPlatformWideToAnsi(wide), fileName, size);
}

HMODULE GetModuleHandleW(LPCWSTR moduleName) {
    if (!moduleName) return reinterpret_cast<HMODULE>(FirstLinkMap());
    if (HMODULE system = ZelPlatformSystemModule(moduleName)) return system;
    std::string wanted = ZelPlatformPathToSystem(moduleName);
    const bool byPath = wanted.find('/') != std::string::npos;
    if (BaseName(wanted).find('.') == std::string::npos) wanted += ".so";
    for (struct link_map* map = FirstLinkMap(); map; map = map->l_next) {
        std::string path = ModulePath(map);
        if (byPath ? SameTitle(path, wanted) : SameTitle(BaseName(path), wanted))
            return reinterpret_cast<HMODULE>(map);
    }
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

HMODULE GetModuleHandleA(LPCSTR moduleName) { return GetModuleHandleW(ZelPlatformAnsiToWide(moduleName).get()); }
