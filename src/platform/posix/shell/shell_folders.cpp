// The user's and the system's folders under their Win32 ids. The user's directories follow the
// XDG base directory rules (XDG_CONFIG_HOME, XDG_DATA_HOME, XDG_CACHE_HOME, XDG_DATA_DIRS, each
// with its documented default) and the usual names under the home directory.
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/posix/shell/shell_item_list.h"
#include "platform/win32.h"

namespace {

constexpr int kFolderFlagMask = 0xFF00;  // CSIDL_FLAG_MASK

enum class Folder {
    Unknown, Desktop, Documents, Pictures, Music, Videos, Downloads, Templates, ConfigHome, DataHome,
    CacheHome, Profile, Fonts, Windows, System, CommonData, ProgramFiles, CommonDocuments,
};

Folder FolderOfId(int id) {
    switch (id) {
        case CSIDL_DESKTOP:
        case CSIDL_DESKTOPDIRECTORY: return Folder::Desktop;
        case CSIDL_PERSONAL: return Folder::Documents;
        case CSIDL_MYPICTURES: return Folder::Pictures;
        case CSIDL_MYMUSIC: return Folder::Music;
        case CSIDL_MYVIDEO: return Folder::Videos;
        case CSIDL_TEMPLATES: return Folder::Templates;
        case CSIDL_APPDATA: return Folder::ConfigHome;
        case CSIDL_LOCAL_APPDATA: return Folder::DataHome;
        case CSIDL_INTERNET_CACHE: return Folder::CacheHome;
        case CSIDL_PROFILE: return Folder::Profile;
        case CSIDL_FONTS: return Folder::Fonts;
        case CSIDL_WINDOWS: return Folder::Windows;
        case CSIDL_SYSTEM: return Folder::System;
        case CSIDL_COMMON_APPDATA: return Folder::CommonData;
        case CSIDL_PROGRAM_FILES: return Folder::ProgramFiles;
        case CSIDL_COMMON_DOCUMENTS: return Folder::CommonDocuments;
        default: return Folder::Unknown;
    }
}

Folder FolderOfGuid(REFKNOWNFOLDERID id) {
    static const struct {
        const KNOWNFOLDERID* id;
        Folder folder;
    } kKnown[] = {
        {&FOLDERID_RoamingAppData, Folder::ConfigHome}, {&FOLDERID_LocalAppData, Folder::DataHome},
        {&FOLDERID_Documents, Folder::Documents},       {&FOLDERID_Desktop, Folder::Desktop},
        {&FOLDERID_ProgramData, Folder::CommonData},    {&FOLDERID_Profile, Folder::Profile},
        {&FOLDERID_Pictures, Folder::Pictures},         {&FOLDERID_Music, Folder::Music},
        {&FOLDERID_Videos, Folder::Videos},             {&FOLDERID_Downloads, Folder::Downloads},
        {&FOLDERID_Fonts, Folder::Fonts},               {&FOLDERID_Templates, Folder::Templates},
        {&FOLDERID_Windows, Folder::Windows},           {&FOLDERID_System, Folder::System},
    };
    for (const auto& known : kKnown)
        if (*known.id == id) return known.folder;
    return Folder::Unknown;
}

std::string HomeDirectory() {
    if (const char* home = getenv("HOME"); home && *home) return home;
    if (const passwd* entry = getpwuid(getuid()); entry && entry->pw_dir) return entry->pw_dir;
    return "/";
}

// An XDG variable counts only when it holds an absolute path.
std::string XdgDirectory(const char* variable, const char* underHome) {
    const char* value = getenv(variable);
    if (value && value[0] == '/') return value;
    return HomeDirectory() + "/" + underHome;
}

std::string FirstDataDirectory() {
    const char* list = getenv("XDG_DATA_DIRS");
    if (list && list[0] == '/') {
        const char* colon = strchr(list, ':');
        return colon ? std::string(list, colon) : std::string(list);
    }
    return "/usr/local/share";
}

// The folder in the library's Windows form; empty when unknown or unavailable.
std::u16string FolderPath(Folder folder) {
    std::string path;
    switch (folder) {
        case Folder::Desktop: path = HomeDirectory() + "/Desktop"; break;
        case Folder::Documents: path = HomeDirectory() + "/Documents"; break;
        case Folder::Pictures: path = HomeDirectory() + "/Pictures"; break;
        case Folder::Music: path = HomeDirectory() + "/Music"; break;
        case Folder::Videos: path = HomeDirectory() + "/Videos"; break;
        case Folder::Downloads: path = HomeDirectory() + "/Downloads"; break;
        case Folder::Templates: path = HomeDirectory() + "/Templates"; break;
        case Folder::ConfigHome: path = XdgDirectory("XDG_CONFIG_HOME", ".config"); break;
        case Folder::DataHome: path = XdgDirectory("XDG_DATA_HOME", ".local/share"); break;
        case Folder::CacheHome: path = XdgDirectory("XDG_CACHE_HOME", ".cache"); break;
        case Folder::Profile: path = HomeDirectory(); break;
        case Folder::Fonts: path = XdgDirectory("XDG_DATA_HOME", ".local/share") + "/fonts"; break;
        case Folder::CommonData: path = FirstDataDirectory(); break;
        case Folder::ProgramFiles: path = "/usr/local"; break;
        case Folder::CommonDocuments: path = "/usr/share/doc"; break;
        case Folder::Windows:
        case Folder::System: {
            WCHAR buffer[MAX_PATH] = {};
            const UINT length = folder == Folder::Windows ? GetWindowsDirectoryW(buffer, MAX_PATH)
                                                          : GetSystemDirectoryW(buffer, MAX_PATH);
            return length > 0 && length < MAX_PATH ? std::u16string(buffer, length) : std::u16string();
        }
        case Folder::Unknown: return {};
    }
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return ZelPlatformPathFromSystem(path.c_str());
}

// Makes the directory and its missing parents; the Win32 error code, 0 on success.
DWORD CreateFolder(const std::u16string& folder) {
    const std::string path = ZelPlatformPathToSystem(folder.c_str());
    for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string part = path.substr(0, slash);
        struct stat status;
        if (mkdir(part.c_str(), 0777) != 0 && errno != EEXIST) return ZelPlatformErrorFromErrno(errno);
        if (slash == std::string::npos) {
            if (stat(part.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return ERROR_ALREADY_EXISTS;
            return 0;
        }
    }
}

constexpr HRESULT HresultFromWin32(DWORD code) {
    return code == 0 ? S_OK : static_cast<HRESULT>((code & 0xFFFF) | 0x80070000u);
}

HRESULT KnownFolder(REFKNOWNFOLDERID id, DWORD flags, std::u16string& path) {
    path = FolderPath(FolderOfGuid(id));
    if (path.empty()) return E_INVALIDARG;
    if (flags & KF_FLAG_CREATE) return HresultFromWin32(CreateFolder(path));
    return S_OK;
}

}  // namespace

BOOL SHGetSpecialFolderPathW(HWND, LPWSTR path, int folder, BOOL create) {
    if (!path) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const std::u16string found = FolderPath(FolderOfId(folder & ~kFolderFlagMask));
    if (found.empty() || found.size() >= MAX_PATH) {
        SetLastError(found.empty() ? ERROR_INVALID_PARAMETER : ERROR_FILENAME_EXCED_RANGE);
        return FALSE;
    }
    if (create || (folder & CSIDL_FLAG_CREATE)) {
        if (const DWORD error = CreateFolder(found)) {
            SetLastError(error);
            return FALSE;
        }
    }
    memcpy(path, found.c_str(), (found.size() + 1) * sizeof(WCHAR));
    return TRUE;
}

BOOL SHGetSpecialFolderPathA(HWND owner, LPSTR path, int folder, BOOL create) {
    WCHAR wide[MAX_PATH];
    if (!path) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (!SHGetSpecialFolderPathW(owner, wide, folder, create)) return FALSE;
    const std::string ansi = ZelPlatformWideToAnsi(wide);
    if (ansi.size() >= MAX_PATH) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return FALSE;
    }
    memcpy(path, ansi.c_str(), ansi.size() + 1);
    return TRUE;
}

HRESULT SHGetKnownFolderPath(REFKNOWNFOLDERID folder, DWORD flags, HANDLE, PWSTR* path) {
    if (!path) return E_INVALIDARG;
    *path = nullptr;
    std::u16string found;
    if (const HRESULT result = KnownFolder(folder, flags, found); FAILED(result)) return result;
    auto* copy = static_cast<PWSTR>(CoTaskMemAlloc((found.size() + 1) * sizeof(WCHAR)));
    if (!copy) return E_OUTOFMEMORY;
    memcpy(copy, found.c_str(), (found.size() + 1) * sizeof(WCHAR));
    *path = copy;
    return S_OK;
}

HRESULT SHGetKnownFolderIDList(REFKNOWNFOLDERID folder, DWORD flags, HANDLE, PIDLIST_ABSOLUTE* list) {
    if (!list) return E_INVALIDARG;
    *list = nullptr;
    std::u16string found;
    if (const HRESULT result = KnownFolder(folder, flags, found); FAILED(result)) return result;
    *list = ZelShellMakeItemList(found);
    return *list ? S_OK : E_OUTOFMEMORY;
}

void SHGetSettings(LPSHELLFLAGSTATE state, DWORD mask) {
    if (!state) return;
    // Extensions are always shown; every other setting is off.
    if (mask & SSF_SHOWALLOBJECTS) state->fShowAllObjects = 0;
    if (mask & SSF_SHOWEXTENSIONS) state->fShowExtensions = 1;
    if (mask & 0x00008000) state->fNoConfirmRecycle = 0;
    if (mask & SSF_SHOWSYSFILES) state->fShowSysFiles = 0;
    if (mask & 0x00000008) state->fShowCompColor = 0;
    if (mask & 0x00000080) state->fDoubleClickInWebView = 0;
    if (mask & 0x00000200) state->fDesktopHTML = 0;
    if (mask & 0x00000400) state->fWin95Classic = 0;
    if (mask & 0x00000800) state->fDontPrettyPath = 0;
    if (mask & 0x00000100) state->fShowAttribCol = 0;
    if (mask & 0x00001000) state->fMapNetDrvBtn = 0;
    if (mask & 0x00002000) state->fShowInfoTip = 0;
    if (mask & 0x00004000) state->fHideIcons = 0;
    if (mask & 0x00800000) state->fAutoCheckSelect = 0;
    if (mask & 0x01000000) state->fIconsOnly = 0;
}
