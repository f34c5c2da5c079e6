// Item lists, the desktop folder that parses names into them, and the task allocator that owns
// them. The allocator is the C heap, so CoTaskMemFree, SHGetMalloc's Free, GlobalFree and
// LocalFree all release what any of these calls allocated.
#include <malloc.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/posix/shell/shell_item_list.h"
#include "platform/posix/files/file_info.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

constexpr HRESULT kFileNotFound = static_cast<HRESULT>(0x80070002L);
constexpr ULONG kAttributeFolder = 0x20000000;      // SFGAO_FOLDER
constexpr ULONG kAttributeFileSystem = 0x40000000;  // SFGAO_FILESYSTEM
constexpr IID kIUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kIShellFolder = {0x000214E6, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kIMalloc = {0x00000002, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// Both objects live as long as the process: reference counts have nothing to release.
class DesktopFolder final : public IShellFolder {
public:
    HRESULT QueryInterface(REFIID riid, void** object) override {
        if (!object) return E_POINTER;
        *object = riid == kIUnknown || riid == kIShellFolder ? this : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }

    HRESULT ParseDisplayName(HWND, IBindCtx*, LPWSTR name, ULONG* eaten, LPITEMIDLIST* list,
                             ULONG* attributes) override {
        if (!list) return E_INVALIDARG;
        *list = nullptr;
        if (!name) return E_INVALIDARG;
        std::u16string full;
        struct stat status;
        if (!ZelShellFullPath(name, full) || stat(ZelPlatformPathToSystem(full.c_str()).c_str(), &status) != 0)
            return kFileNotFound;
        *list = ZelShellMakeItemList(full);
        if (!*list) return E_OUTOFMEMORY;
        if (eaten) *eaten = static_cast<ULONG>(wcslen(name));
        if (attributes) *attributes &= kAttributeFileSystem | (S_ISDIR(status.st_mode) ? kAttributeFolder : 0);
        return S_OK;
    }

    HRESULT EnumObjects(HWND, DWORD, IEnumIDList** objects) override { return NotImplemented(objects); }
    HRESULT BindToObject(LPCITEMIDLIST, IBindCtx*, REFIID, void** object) override { return NotImplemented(object); }
    HRESULT BindToStorage(LPCITEMIDLIST, IBindCtx*, REFIID, void** object) override { return NotImplemented(object); }
    HRESULT CompareIDs(LPARAM, LPCITEMIDLIST, LPCITEMIDLIST) override { return E_NOTIMPL; }
    HRESULT CreateViewObject(HWND, REFIID, void** object) override { return NotImplemented(object); }
    HRESULT GetAttributesOf(UINT, LPCITEMIDLIST*, ULONG*) override { return E_NOTIMPL; }
    HRESULT GetUIObjectOf(HWND, UINT, LPCITEMIDLIST*, REFIID, UINT*, void** object) override {
        return NotImplemented(object);
    }
    HRESULT GetDisplayNameOf(LPCITEMIDLIST, DWORD, void*) override { return E_NOTIMPL; }
    HRESULT SetNameOf(HWND, LPCITEMIDLIST, LPCWSTR, DWORD, LPITEMIDLIST* list) override { return NotImplemented(list); }

private:
    template <typename Out>
    static HRESULT NotImplemented(Out** out) {
        if (out) *out = nullptr;
        return E_NOTIMPL;
    }
};

class TaskAllocator final : public IMalloc {
public:
    HRESULT QueryInterface(REFIID riid, void** object) override {
        if (!object) return E_POINTER;
        *object = riid == kIUnknown || riid == kIMalloc ? this : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    void* Alloc(SIZE_T size) override { return CoTaskMemAlloc(size); }
    void* Realloc(void* memory, SIZE_T size) override { return realloc(memory, size); }
    void Free(void* memory) override { CoTaskMemFree(memory); }
    SIZE_T GetSize(void* memory) override { return memory ? malloc_usable_size(memory) : static_cast<SIZE_T>(-1); }
    int DidAlloc(void* memory) override { return memory ? -1 : 0; }  // -1: can't tell
    void HeapMinimize() override {}
};

DesktopFolder desktopFolder;
TaskAllocator taskAllocator;

}  // namespace

bool ZelShellFullPath(LPCWSTR path, std::u16string& full) {
    if (!path || !*path) return false;
    std::vector<WCHAR> buffer(32768);
    if (!crt::_wfullpath(buffer.data(), path, buffer.size())) return false;
    full.assign(buffer.data());
    return !full.empty();
}

LPITEMIDLIST ZelShellMakeItemList(const std::u16string& path) {
    const size_t textBytes = (path.size() + 1) * sizeof(WCHAR);
    const size_t itemBytes = sizeof(USHORT) + textBytes;
    if (itemBytes > 0xFFFF) return nullptr;
    auto* bytes = static_cast<BYTE*>(CoTaskMemAlloc(itemBytes + sizeof(USHORT)));
    if (!bytes) return nullptr;
    const USHORT size = static_cast<USHORT>(itemBytes), end = 0;
    memcpy(bytes, &size, sizeof size);
    memcpy(bytes + sizeof size, path.c_str(), textBytes);
    memcpy(bytes + itemBytes, &end, sizeof end);
    return reinterpret_cast<LPITEMIDLIST>(bytes);
}

bool ZelShellItemPath(LPCITEMIDLIST list, std::u16string& path) {
    if (!list) return false;
    const auto* bytes = reinterpret_cast<const BYTE*>(list);
    USHORT size = 0;
    memcpy(&size, bytes, sizeof size);
    // The item must hold at least one character and its terminator, as whole 16-bit units.
    if (size < sizeof(USHORT) + 2 * sizeof(WCHAR) || size % sizeof(WCHAR) != 0) return false;
    const size_t units = (size - sizeof(USHORT)) / sizeof(WCHAR);
    std::u16string text(units, u'\0');
    memcpy(text.data(), bytes + sizeof(USHORT), units * sizeof(WCHAR));
    const size_t terminator = text.find(u'\0');
    if (terminator == std::u16string::npos || terminator == 0) return false;
    text.resize(terminator);
    path = std::move(text);
    return true;
}

HRESULT SHGetDesktopFolder(IShellFolder** folder) {
    if (!folder) return E_INVALIDARG;
    *folder = &desktopFolder;
    return S_OK;
}

HRESULT SHGetMalloc(IMalloc** allocator) {
    if (!allocator) return E_INVALIDARG;
    *allocator = &taskAllocator;
    return S_OK;
}

void* CoTaskMemAlloc(SIZE_T size) { return malloc(size ? size : 1); }
void CoTaskMemFree(void* memory) { free(memory); }

HGLOBAL GlobalFree(HGLOBAL memory) {
    free(memory);
    return nullptr;
}

HLOCAL LocalFree(HLOCAL memory) {
    free(memory);
    return nullptr;
}

BOOL SHGetPathFromIDListW(LPCITEMIDLIST list, LPWSTR path) {
    if (!path || !list) return FALSE;
    // The empty list is the root of the names, the desktop, whose folder is a directory.
    USHORT first = 0;
    memcpy(&first, list, sizeof first);
    if (first == 0) return SHGetSpecialFolderPathW(nullptr, path, CSIDL_DESKTOPDIRECTORY, FALSE);
    std::u16string text;
    if (!ZelShellItemPath(list, text)) return FALSE;
    if (text.size() >= MAX_PATH) {
        path[0] = 0;
        return FALSE;
    }
    memcpy(path, text.c_str(), (text.size() + 1) * sizeof(WCHAR));
    return TRUE;
}

BOOL SHGetPathFromIDListA(LPCITEMIDLIST list, LPSTR path) {
    WCHAR wide[MAX_PATH];
    if (!path || !SHGetPathFromIDListW(list, wide)) return FALSE;
    const std::string ansi = ZelPlatformWideToAnsi(wide);
    if (ansi.size() >= MAX_PATH) {
        path[0] = 0;
        return FALSE;
    }
    memcpy(path, ansi.c_str(), ansi.size() + 1);
    return TRUE;
}

HRESULT SHBindToParent(LPCITEMIDLIST list, REFIID riid, void** folder, LPCITEMIDLIST* last) {
    if (!folder) return E_INVALIDARG;
    *folder = nullptr;
    if (last) *last = nullptr;
    std::u16string path;
    if (!ZelShellItemPath(list, path)) return E_INVALIDARG;
    const HRESULT result = desktopFolder.QueryInterface(riid, folder);
    if (SUCCEEDED(result) && last) *last = list;
    return result;
}

HRESULT SHGetDataFromIDListW(IShellFolder*, LPCITEMIDLIST list, int format, void* data, int size) {
    if (format != SHGDFIL_FINDDATA) return E_NOTIMPL;
    std::u16string path;
    if (!data || size < static_cast<int>(sizeof(WIN32_FIND_DATAW)) || !ZelShellItemPath(list, path))
        return E_INVALIDARG;
    WIN32_FILE_ATTRIBUTE_DATA attributes{};
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &attributes)) return kFileNotFound;
    WIN32_FIND_DATAW found{};
    ZelCopyFileRecordHead(attributes, found);
    const size_t slash = path.find_last_of(u"\\/");
    const std::u16string title = slash == std::u16string::npos ? path : path.substr(slash + 1);
    wcsncpy(found.cFileName, title.c_str(), MAX_PATH - 1);
    memcpy(data, &found, sizeof found);
    return S_OK;
}

HRESULT SHGetDataFromIDListA(IShellFolder* folder, LPCITEMIDLIST list, int format, void* data, int size) {
    if (format != SHGDFIL_FINDDATA) return E_NOTIMPL;
    if (!data || size < static_cast<int>(sizeof(WIN32_FIND_DATAA))) return E_INVALIDARG;
    WIN32_FIND_DATAW wide{};
    const HRESULT result = SHGetDataFromIDListW(folder, list, format, &wide, sizeof wide);
    if (FAILED(result)) return result;
    WIN32_FIND_DATAA found;
    ZelFindDataToAnsi(wide, found);
    memcpy(data, &found, sizeof found);
    return S_OK;
}
