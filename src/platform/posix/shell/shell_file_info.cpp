// What the shell shows of a file: its display name, its type name and its item attributes. There
// are no icons here: the icon handle stays null and the index 0.
#include <cstring>
#include <string>

#include "platform/posix/shell/shell_item_list.h"
#include "platform/win32.h"

namespace {

// Item attributes (SFGAO_*) that SHGFI_ATTRIBUTES reports.
constexpr DWORD kItemReadOnly = 0x00040000;
constexpr DWORD kItemHidden = 0x00080000;
constexpr DWORD kItemFolder = 0x20000000;
constexpr DWORD kItemFileSystem = 0x40000000;

std::u16string TitleOf(const std::u16string& path) {
    std::u16string trimmed = path;
    while (trimmed.size() > 1 && (trimmed.back() == u'\\' || trimmed.back() == u'/')) trimmed.pop_back();
    const size_t slash = trimmed.find_last_of(u"\\/");
    std::u16string title = slash == std::u16string::npos ? trimmed : trimmed.substr(slash + 1);
    return title.empty() ? path : title;
}

std::u16string TypeNameOf(const std::u16string& title, DWORD fileAttributes) {
    if (fileAttributes & FILE_ATTRIBUTE_DIRECTORY) return u"File folder";
    const size_t dot = title.rfind(u'.');
    if (dot == std::u16string::npos || dot + 1 == title.size()) return u"File";
    std::u16string extension = title.substr(dot + 1);
    for (char16_t& c : extension)
        if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
    return extension + u" File";
}

template <size_t N>
void CopyCut(WCHAR (&field)[N], const std::u16string& text) {
    const size_t length = text.size() < N ? text.size() : N - 1;
    memcpy(field, text.data(), length * sizeof(WCHAR));
    field[length] = 0;
}

template <size_t N>
void CopyCut(CHAR (&field)[N], const std::string& text) {
    const size_t length = text.size() < N ? text.size() : N - 1;
    memcpy(field, text.data(), length);
    field[length] = 0;
}

}  // namespace

DWORD_PTR SHGetFileInfoW(LPCWSTR path, DWORD attributes, SHFILEINFOW* info, UINT size, UINT flags) {
    if (!path || !info || size < sizeof(SHFILEINFOW)) return 0;
    std::u16string name;
    if (flags & SHGFI_PIDL) {
        if (!ZelShellItemPath(reinterpret_cast<LPCITEMIDLIST>(path), name)) return 0;
    } else {
        name = path;
    }
    DWORD fileAttributes = attributes;
    if (!(flags & SHGFI_USEFILEATTRIBUTES)) {
        fileAttributes = GetFileAttributesW(name.c_str());
        if (fileAttributes == INVALID_FILE_ATTRIBUTES) return 0;
    }
    const std::u16string title = TitleOf(name);
    info->hIcon = nullptr;
    info->iIcon = 0;
    if (flags & SHGFI_ATTRIBUTES) {
        DWORD item = kItemFileSystem;
        if (fileAttributes & FILE_ATTRIBUTE_DIRECTORY) item |= kItemFolder;
        if (fileAttributes & FILE_ATTRIBUTE_READONLY) item |= kItemReadOnly;
        if (fileAttributes & FILE_ATTRIBUTE_HIDDEN) item |= kItemHidden;
        info->dwAttributes = item;
    }
    if (flags & SHGFI_DISPLAYNAME) CopyCut(info->szDisplayName, title);
    if (flags & SHGFI_TYPENAME) CopyCut(info->szTypeName, TypeNameOf(title, fileAttributes));
    return 1;
}

DWORD_PTR SHGetFileInfoA(LPCSTR path, DWORD attributes, SHFILEINFOA* info, UINT size, UINT flags) {
    if (!path || !info || size < sizeof(SHFILEINFOA)) return 0;
    // With SHGFI_PIDL the "path" is an item list and passes as it is.
    const ZelAnsiArg wide = flags & SHGFI_PIDL ? ZelAnsiArg{} : ZelPlatformAnsiToWide(path);
    const LPCWSTR widePath = flags & SHGFI_PIDL ? reinterpret_cast<LPCWSTR>(path) : wide.get();
    SHFILEINFOW wideInfo{};
    wideInfo.dwAttributes = info->dwAttributes;
    const DWORD_PTR result = SHGetFileInfoW(widePath, attributes, &wideInfo, sizeof wideInfo, flags);
    if (!result) return 0;
    info->hIcon = wideInfo.hIcon;
    info->iIcon = wideInfo.iIcon;
    info->dwAttributes = wideInfo.dwAttributes;
    if (flags & SHGFI_DISPLAYNAME) CopyCut(info->szDisplayName, ZelPlatformWideToAnsi(wideInfo.szDisplayName));
    if (flags & SHGFI_TYPENAME) CopyCut(info->szTypeName, ZelPlatformWideToAnsi(wideInfo.szTypeName));
    return result;
}
