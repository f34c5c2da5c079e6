// CZelRegistry::LoadFromFile: a registry file back into the registry, below the parent of the key
// named in its header. The target key is cleared first (not wholly: see _DeleteFullSubKey).
//
// A file that ends early loads what stands before the end. A text field of more than 259 bytes,
// or data longer than the rest of the file, is taken as such an end: nothing is read past it, and
// no block larger than the file is allocated.
#include <zel/codetables.h>
#include <zel/frame.h>
#include <zel/paths.h>
#include <zel/settings.h>

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "settings/registry_adapters.h"
#include "settings/registry_class_internal.h"
#include "settings/registry_file_format.h"
#include "strings/wstr.h"

namespace {

constexpr DWORD kOutOfMemory = 2;
constexpr DWORD kFirstDataBytes = 256;
// A load reads a few bytes at a time: a larger buffer than the default saves most of the reads
// from the system.
constexpr size_t kStreamBuffer = size_t(64) << 10;

// Set by a leaf that _DeleteFullSubKey reached, cleared when its parent deleted it. One per
// process, so only one load may run at a time.
int leafReached = 0;

// The stream of a load is its own: its reads take no lock. Where the file being loaded ends,
// measured when it was opened.
thread_local long loadEnd = 0;

DWORD BytesLeft(FILE* stream) {
    const long at = std::ftell(stream);
    return at < 0 || at >= loadEnd ? 0 : static_cast<DWORD>(loadEnd - at);
}

// The texts of the load under way on this thread, or null.
thread_local ZelRegFileTexts* loadTexts = nullptr;

// The texts of a call outside a load hold tables that the load's own reads should not carry on
// their stack.
[[gnu::noinline]] void WidenOutsideALoad(const char* ansi, WCHAR* text) {
    ZelRegFileTexts().Widen(ansi, text);
}

// A text field into text, which holds kZelRegNameUnits units: a path, or a name.
bool GetText(FILE* stream, WCHAR* text, bool name = false) {
    DWORD length = 0;
    if (!ZelRegFileGetNumber(stream, &length) || length >= kZelRegNameUnits) return false;
    char ansi[kZelRegNameUnits];
    if (!ZelRegFileGetBytes(stream, ansi, length)) return false;
    ansi[length] = 0;
    if (!loadTexts)
        WidenOutsideALoad(ansi, text);
    else if (name)
        loadTexts->WidenName(ansi, text);
    else
        loadTexts->Widen(ansi, text);
    return true;
}

}  // namespace

int CZelRegistry::LoadFromFile(const WCHAR* filePath, HKEY root) {
    (void)root;  // always the current user's hive
    WCHAR absolute[MAX_PATH] = {};
    ZelPathToAbsolute(filePath, absolute);
    FILE* stream = u__wfopen(absolute, u"rb");
    if (!stream) return 0;
    std::vector<char> buffer(kStreamBuffer);
    std::setvbuf(stream, buffer.data(), _IOFBF, buffer.size());
    loadEnd = std::fseek(stream, 0, SEEK_END) == 0 ? std::ftell(stream) : 0;
    std::rewind(stream);
    ZelRegFileTexts texts;
    loadTexts = &texts;
    struct Done {
        ~Done() { loadTexts = nullptr; }
    } done;

    WCHAR path[kZelRegNameUnits] = {};
    _LoadKeyName(stream, path);
    size_t length = wcslen(path);
    if (length > 0 && path[length - 1] == u'\\') path[--length] = 0;
    WCHAR* slash = wcsrchr(path, u'\\');
    if (!slash) {
        std::fclose(stream);
        return 0;
    }
    *slash = 0;
    SetRegistryKey(path, HKEY_CURRENT_USER);
    HKEY parent = GetRegistryKey();
    _DeleteFullSubKey(slash + 1, parent);
    _WriteRegFromFile(stream, parent);
    if (parent) ZelRegCloseKey(parent, useVirtual);
    std::fclose(stream);
    return 1;
}

int CZelRegistry::_LoadKeyName(FILE* stream, WCHAR* path) { return GetText(stream, path); }

int CZelRegistry::__LoadSubKeyAndGetCntValue(FILE* stream, WCHAR* path, DWORD* count) {
    return GetText(stream, path) && ZelRegFileGetNumber(stream, count);
}

int CZelRegistry::__LoadKeyValue(FILE* stream, DWORD* capacity, WCHAR* name, DWORD* type, BYTE** data, DWORD* size) {
    if (!GetText(stream, name, true) || !ZelRegFileGetNumber(stream, type) || !ZelRegFileGetNumber(stream, size))
        return 0;
    if (*size > *capacity) {
        // Data longer than the rest of the file ends the load before a block is made for it. Data
        // that fits the buffer needs no such check: its read comes short and ends the load too.
        if (*size > BytesLeft(stream)) return 0;
        BYTE* grown = static_cast<BYTE*>(std::malloc(*size));
        if (!grown) {
            ZelSetError(kOutOfMemory);
            return 0;
        }
        std::free(*data);
        *data = grown;
        *capacity = *size;
    }
    return ZelRegFileGetBytes(stream, *data, *size);
}

int CZelRegistry::_WriteRegFromFile(FILE* stream, HKEY parent) {
    DWORD capacity = kFirstDataBytes;
    BYTE* data = static_cast<BYTE*>(std::malloc(capacity));
    if (!data) {
        ZelSetError(kOutOfMemory);
        return 0;
    }
    WCHAR path[kZelRegNameUnits];
    WCHAR name[kZelRegNameUnits];
    DWORD count = 0;
    int result = 1;
    bool more = true;
    // Sections come children first, so that a run of them shares the path up to its last back
    // slash. In the tree, where nothing else deletes keys meanwhile, the key at that path is kept
    // from one section to the next and only the last component is looked for below it.
    std::u16string shared;
    HKEY sharedKey = nullptr;
    while (more && __LoadSubKeyAndGetCntValue(stream, path, &count)) {
        HKEY key = nullptr;
        const WCHAR* slash = useVirtual ? wcsrchr(path, u'\\') : nullptr;
        if (slash && !(sharedKey && shared == std::u16string_view(path, static_cast<size_t>(slash - path)))) {
            shared.assign(path, static_cast<size_t>(slash - path));
            if (ZelRegCreateKey(parent, shared.c_str(), &sharedKey, useVirtual) != ERROR_SUCCESS) sharedKey = nullptr;
        }
        const LONG made = slash && sharedKey ? ZelRegCreateKey(sharedKey, slash + 1, &key, useVirtual)
                                             : ZelRegCreateKey(parent, path, &key, useVirtual);
        if (made != ERROR_SUCCESS) {
            result = 0;
            break;
        }
        // A record that can't be read whole ends the file; a value that the registry refuses is
        // passed over.
        for (DWORD n = 0; n < count && more; ++n) {
            DWORD type = REG_NONE;
            DWORD size = 0;
            more = __LoadKeyValue(stream, &capacity, name, &type, &data, &size);
            if (more) ZelRegSetValueEx(key, name, 0, type, data, size, useVirtual);
        }
        ZelRegCloseKey(key, useVirtual);
    }
    std::free(data);
    return result;
}

// Clears the key name below parent, leaving the key itself. Every leaf below it goes, and the child
// at index 0 of each level once it is empty; a child at another index that had children loses them
// and stays, with its values.
int CZelRegistry::_DeleteFullSubKey(const WCHAR* name, HKEY parent) {
    if (!parent) return 0;
    HKEY key = nullptr;
    if (ZelRegOpenKeyEx(parent, name, 0, kZelKeyReadWrite, &key, useVirtual) != ERROR_SUCCESS) return 0;
    WCHAR keyClass[MAX_PATH] = {};
    DWORD classLength = MAX_PATH;
    DWORD subKeys = 0;
    DWORD longestName = 0;
    if (ZelRegQueryInfoKey(key, keyClass, &classLength, nullptr, &subKeys, &longestName, nullptr, nullptr, nullptr,
                           nullptr, nullptr, nullptr, useVirtual) != ERROR_SUCCESS) {
        ZelRegCloseKey(key, useVirtual);
        return 0;
    }
    if (subKeys == 0) {
        leafReached = 1;
        ZelRegCloseKey(key, useVirtual);
        return 1;
    }
    WCHAR* child = static_cast<WCHAR*>(std::calloc(size_t(longestName) + 1, sizeof(WCHAR)));
    if (!child) {
        ZelSetError(kOutOfMemory);
        ZelRegCloseKey(key, useVirtual);
        return 0;
    }
    // From the last child down, so that a deletion moves none of the children still to come. A
    // name that can't be had is passed over: an empty one would open this key again.
    for (DWORD index = subKeys; index-- > 0;) {
        if (ZelRegEnumKey(key, index, child, longestName + 1, useVirtual) != ERROR_SUCCESS) continue;
        if (_DeleteFullSubKey(child, key) && leafReached) {
            ZelRegDeleteKey(key, child, useVirtual);
            leafReached = 0;
        }
    }
    // The child at index 0 once more: empty by now, unless a child of its own stayed.
    ZelRegDeleteKey(key, child, useVirtual);
    std::free(child);
    ZelRegCloseKey(key, useVirtual);
    return 1;
}
