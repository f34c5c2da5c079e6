// The value calls of the registry adapters. Value data passes as bytes on both sides; only names
// and the texts of ZelRegSetValue, ZelRegQueryValue and ZelRegQueryString are converted.
#include <zel/settings.h>

#include <algorithm>
#include <memory>
#include <new>

#include "paths/os/ansi_text.h"
#include "platform/win32.h"
#include "settings/registry_adapters_read_back.h"
#include "settings/virtual_registry.h"
#include "strings/wstr.h"

namespace {

LONG TreeStatus(int answer) { return answer ? ERROR_SUCCESS : -1; }

}  // namespace

LONG ZelRegEnumValue(HKEY key, DWORD index, WCHAR* name, LPDWORD nameLength, LPDWORD reserved, LPDWORD type,
                     LPBYTE data, LPDWORD dataSize, int useVirtual) {
    if (useVirtual) {
        // nameLength is the caller's capacity, terminator included, and is left as it is. The
        // name passes a local buffer, so the capacity is cut to that buffer's.
        if (!nameLength || *nameLength == 0) return -1;
        const DWORD capacity = std::min(*nameLength, kZelRegNameUnits) - 1;
        WCHAR local[kZelRegNameUnits];  // filled on success, read only then
        if (!ZelVirtualRegistry().EnumValue(key, index, local, capacity, type, data, dataSize)) return -1;
        if (name) wcscpy(name, local);
        return ERROR_SUCCESS;
    }
    char local[kZelRegNameBytes] = {};
    DWORD localLength = kZelRegNameBytes;
    const LONG status = RegEnumValueA(key, index, local, &localLength, reserved, type, data, dataSize);
    if (status == ERROR_SUCCESS) {
        ZelGiveNameBack(local, sizeof local, name, nameLength);
    } else if (nameLength) {
        *nameLength = localLength;
    }
    return status;
}

LONG ZelRegQueryValue(HKEY key, const WCHAR* subKey, WCHAR* value, PLONG valueSize, int useVirtual) {
    if (useVirtual) {
        WCHAR local[kZelRegNameUnits] = {};
        LONG length = 0;
        if (!ZelVirtualRegistry().QueryDefault(key, subKey, local, kZelRegNameUnits, &length)) return -1;
        if (value) wcscpy(value, local);
        if (valueSize) *valueSize = length;
        return ERROR_SUCCESS;
    }
    if (!ZelAnsiMode()) return RegQueryValueW(key, subKey, value, valueSize);
    char local[kZelRegNameBytes] = {};
    LONG localLength = kZelRegNameBytes;
    const LONG status = RegQueryValueA(key, ZelNarrowArg(subKey).get(), local, &localLength);
    if (status == ERROR_SUCCESS) {
        ZelGiveNameBack(local, sizeof local, value, valueSize);
    } else if (valueSize) {
        *valueSize = localLength;
    }
    return status;
}

LONG ZelRegQueryValueEx(HKEY key, const WCHAR* valueName, LPDWORD reserved, LPDWORD type, LPBYTE data,
                        LPDWORD dataSize, int useVirtual) {
    if (useVirtual) return TreeStatus(ZelVirtualRegistry().QueryValueEx(key, valueName, type, data, dataSize));
    return RegQueryValueExA(key, ZelNarrowArg(valueName).get(), reserved, type, data, dataSize);
}

LONG ZelRegQueryString(HKEY key, const WCHAR* valueName, LPDWORD reserved, LPDWORD /*ignored*/, WCHAR* text,
                       LPDWORD textLength, int useVirtual) {
    DWORD type = 0;
    DWORD size = 0;
    LONG status = ZelRegQueryValueEx(key, valueName, reserved, &type, nullptr, &size, useVirtual);
    if (status != ERROR_SUCCESS) return status;

    // Room for the text, its terminator and the tree's extra zero unit, in whole 32-bit words.
    const unsigned long long rounded = (static_cast<unsigned long long>(size) + 4) & ~3ULL;
    if (rounded > 0xFFFFFFFFULL) return useVirtual ? -1 : ERROR_NOT_ENOUGH_MEMORY;
    DWORD scratchSize = static_cast<DWORD>(rounded);
    std::unique_ptr<char[]> scratch(new (std::nothrow) char[scratchSize]());
    if (!scratch) return useVirtual ? -1 : ERROR_NOT_ENOUGH_MEMORY;
    status = ZelRegQueryValueEx(key, valueName, reserved, &type, reinterpret_cast<BYTE*>(scratch.get()),
                                &scratchSize, useVirtual);

    // A failed read leaves the caller's places alone.
    if (status != ERROR_SUCCESS || !textLength) return status;
    const ZelWideResult wide(scratch.get(), rounded);
    if (text && *textLength > 0) {
        // The copy stops at the caller's length; a text that fills it is cut one short, so that
        // it still ends within the buffer.
        wcsncpy(text, wide.get(), *textLength);
        text[*textLength - 1] = 0;
        *textLength = static_cast<DWORD>(wcslen(text)) + 1;
    } else {
        *textLength = static_cast<DWORD>(wcslen(wide.get())) + 1;
    }
    return status;
}

LONG ZelRegSetValue(HKEY key, const WCHAR* subKey, DWORD type, const WCHAR* text, DWORD size, int useVirtual) {
    if (useVirtual) return TreeStatus(ZelVirtualRegistry().SetDefault(key, subKey, text));
    return RegSetValueA(key, ZelNarrowArg(subKey).get(), type, ZelNarrowArg(text).get(), size);
}

LONG ZelRegSetValueEx(HKEY key, const WCHAR* valueName, DWORD reserved, DWORD type, const BYTE* data,
                      DWORD dataSize, int useVirtual) {
    if (useVirtual) return TreeStatus(ZelVirtualRegistry().SetValueEx(key, valueName, type, data, dataSize));
    return RegSetValueExA(key, ZelNarrowArg(valueName).get(), reserved, type, data, dataSize);
}

LONG ZelRegDeleteValue(HKEY key, const WCHAR* valueName, int useVirtual) {
    if (useVirtual) return TreeStatus(ZelVirtualRegistry().DeleteValue(key, valueName));
    return RegDeleteValueA(key, ZelNarrowArg(valueName).get());
}
