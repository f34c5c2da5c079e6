// CZelRegistry: reading dwords, strings and binary blocks. Strings are stored as ANSI text, so a
// read converts them to 16-bit text here.
#include <zel/codetables.h>
#include <zel/settings.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "settings/registry_class_internal.h"
#include "strings/wstr.h"

namespace {

// The bytes that the tree writes for a value of this type and length, whatever the buffer.
DWORD TreeCopyExtent(DWORD type, DWORD bytes) {
    switch (type) {
        case REG_SZ: return bytes / 2 * 2 + 2;
        case REG_DWORD: return 4;
        case REG_BINARY: return bytes;
        default: return 0;
    }
}

// Closes a key on the way out of a read.
class OpenKey {
public:
    OpenKey(HKEY key, int useVirtual) : key_(key), useVirtual_(useVirtual) {}
    ~OpenKey() {
        if (key_) ZelRegCloseKey(key_, useVirtual_);
    }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;
    HKEY get() const { return key_; }

private:
    HKEY key_;
    int useVirtual_;
};

}  // namespace

LONG ZelRegReadValueBounded(HKEY key, const WCHAR* name, BYTE* data, DWORD capacity, DWORD* size, int useVirtual) {
    *size = capacity;
    if (!useVirtual) return ZelRegQueryValueEx(key, name, nullptr, nullptr, data, size, 0);
    DWORD type = REG_NONE;
    DWORD bytes = 0;
    LONG status = ZelRegQueryValueEx(key, name, nullptr, &type, nullptr, &bytes, useVirtual);
    if (status != ERROR_SUCCESS) return status;
    const DWORD extent = TreeCopyExtent(type, bytes);
    if (extent <= capacity) {
        *size = capacity;
        return ZelRegQueryValueEx(key, name, nullptr, &type, data, size, useVirtual);
    }
    BYTE* scratch = static_cast<BYTE*>(std::calloc(extent, 1));
    if (!scratch) return -1;
    *size = extent;
    status = ZelRegQueryValueEx(key, name, nullptr, &type, scratch, size, useVirtual);
    if (status == ERROR_SUCCESS) std::memcpy(data, scratch, std::min(*size, capacity));
    std::free(scratch);
    return status;
}

int CZelRegistry::GetDwordValue(const WCHAR* section, const WCHAR* name, DWORD* value) {
    OpenKey key(GetSectionKey(section, kZelKeyRead), useVirtual);
    if (!key.get()) return 0;
    DWORD size = 0;
    return ZelRegReadValueBounded(key.get(), name, reinterpret_cast<BYTE*>(value), sizeof(DWORD), &size,
                                  useVirtual) == ERROR_SUCCESS;
}

// buffer holds maximum units: maximum bounds the stored bytes, and the 16-bit text is no longer.
int CZelRegistry::GetStringValue(const WCHAR* section, const WCHAR* name, WCHAR* buffer, DWORD maximum) {
    OpenKey key(GetSectionKey(section, kZelKeyRead), useVirtual);
    if (!key.get()) return 0;
    DWORD size = 0;
    if (ZelRegQueryValueEx(key.get(), name, nullptr, nullptr, nullptr, &size, useVirtual) != ERROR_SUCCESS) return 0;
    if (size > maximum || size == 0) {
        if (maximum > 0) buffer[0] = 0;
        return size == 0;
    }
    // Two zero bytes behind the text: the tree writes a string with one zero unit more. The wide
    // scratch has a unit to spare too, which the conversion wants.
    char* scratch = static_cast<char*>(std::calloc(size_t(size) + 2, 1));
    if (!scratch) return 0;
    DWORD read = 0;
    int result = 0;
    if (ZelRegReadValueBounded(key.get(), name, reinterpret_cast<BYTE*>(scratch), size + 2, &read, useVirtual) ==
        ERROR_SUCCESS) {
        scratch[size] = 0;
        WCHAR* wide = static_cast<WCHAR*>(std::calloc(size_t(size) + 2, sizeof(WCHAR)));
        if (wide) {
            ZelAnsiToUnicode(0, 0, scratch, -1, wide, static_cast<int>(size) + 2, 0);
            wide[size] = 0;
            const size_t length = std::min<size_t>(wcslen(wide), maximum - 1);
            std::memcpy(buffer, wide, length * sizeof(WCHAR));
            buffer[length] = 0;
            std::free(wide);
            result = 1;
        }
    }
    std::free(scratch);
    return result;
}

int CZelRegistry::GetStringValue(const WCHAR* section, const WCHAR* name, std::u16string& text) {
    OpenKey key(GetSectionKey(section, kZelKeyRead), useVirtual);
    if (!key.get()) return 0;
    DWORD size = 0;
    if (ZelRegQueryValueEx(key.get(), name, nullptr, nullptr, nullptr, &size, useVirtual) != ERROR_SUCCESS) return 0;
    text.clear();
    if (size == 0) return 1;
    char* scratch = static_cast<char*>(std::calloc(size_t(size) + 2, 1));
    WCHAR* wide = static_cast<WCHAR*>(std::calloc(size_t(size) + 2, sizeof(WCHAR)));
    DWORD read = 0;
    int result = 0;
    if (scratch && wide &&
        ZelRegReadValueBounded(key.get(), name, reinterpret_cast<BYTE*>(scratch), size + 2, &read, useVirtual) ==
            ERROR_SUCCESS) {
        scratch[size] = 0;
        ZelAnsiToUnicode(0, 0, scratch, -1, wide, static_cast<int>(size) + 2, 0);
        wide[size] = 0;
        text.assign(wide);
        result = 1;
    }
    std::free(scratch);
    std::free(wide);
    return result;
}

int CZelRegistry::GetBinaryValue(const WCHAR* section, const WCHAR* name, BYTE** block, DWORD* size) {
    *block = nullptr;
    *size = 0;
    OpenKey key(GetSectionKey(section, kZelKeyRead), useVirtual);
    if (!key.get()) return 0;
    DWORD needed = 0;
    if (ZelRegQueryValueEx(key.get(), name, nullptr, nullptr, nullptr, &needed, useVirtual) != ERROR_SUCCESS) return 0;
    *size = needed;
    BYTE* data = new (std::nothrow) BYTE[needed ? needed : 1];
    DWORD read = 0;
    if (data && ZelRegReadValueBounded(key.get(), name, data, needed, &read, useVirtual) == ERROR_SUCCESS) {
        *block = data;
        return 1;
    }
    delete[] data;
    *size = 0;
    return 0;
}

int CZelRegistry::GetBinaryValue(const WCHAR* section, const WCHAR* name, BYTE* buffer, DWORD* size) {
    OpenKey key(GetSectionKey(section, kZelKeyRead), useVirtual);
    if (!key.get()) return 0;
    DWORD needed = 0;
    const LONG status = ZelRegQueryValueEx(key.get(), name, nullptr, nullptr, nullptr, &needed, useVirtual);
    if (needed > *size) {
        *size = needed;
        return 0;
    }
    if (status != ERROR_SUCCESS) return 0;
    DWORD read = 0;
    if (ZelRegReadValueBounded(key.get(), name, buffer, *size, &read, useVirtual) != ERROR_SUCCESS) return 0;
    *size = read;
    return 1;
}
