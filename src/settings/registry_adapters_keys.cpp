// The key calls of the registry adapters: open, create, list, describe, delete, close and save.
#include <zel/settings.h>

#include "paths/os/ansi_text.h"
#include "platform/win32.h"
#include "settings/registry_adapters.h"
#include "settings/registry_adapters_read_back.h"
#include "settings/virtual_registry.h"
#include "strings/wstr.h"

namespace {

// The tree answers 1 or 0; an adapter answers 0 or -1.
LONG TreeStatus(int answer) { return answer ? ERROR_SUCCESS : -1; }

}  // namespace

LONG ZelRegOpenKey(HKEY key, const WCHAR* subKey, PHKEY result, int useVirtual) {
    if (useVirtual) return TreeStatus(ZelVirtualRegistry().OpenKey(key, subKey, result));
    return RegOpenKeyA(key, ZelNarrowArg(subKey).get(), result);
}

LONG ZelRegOpenKeyEx(HKEY key, const WCHAR* subKey, DWORD options, REGSAM access, PHKEY result, int useVirtual) {
    if (useVirtual) return TreeStatus(ZelVirtualRegistry().OpenKey(key, subKey, result));
    return RegOpenKeyExA(key, ZelNarrowArg(subKey).get(), options, access, result);
}

LONG ZelRegCreateKey(HKEY key, const WCHAR* subKey, PHKEY result, int useVirtual) {
    if (useVirtual) return TreeStatus(ZelVirtualRegistry().CreateKey(key, subKey, result));
    return RegCreateKeyA(key, ZelNarrowArg(subKey).get(), result);
}

LONG ZelRegCreateKeyEx(HKEY key, const WCHAR* subKey, DWORD reserved, WCHAR* keyClass, DWORD options,
                       REGSAM access, const SECURITY_ATTRIBUTES* security, PHKEY result, LPDWORD disposition,
                       int useVirtual) {
    if (useVirtual) return TreeStatus(ZelVirtualRegistry().CreateKey(key, subKey, result));
    ZelNarrowArg narrowClass(keyClass);
    return RegCreateKeyExA(key, ZelNarrowArg(subKey).get(), reserved, const_cast<char*>(narrowClass.get()), options,
                           access, security, result, disposition);
}

LONG ZelRegEnumKey(HKEY key, DWORD index, WCHAR* name, DWORD nameLength, int useVirtual) {
    if (useVirtual) {
        WCHAR local[kZelRegNameUnits];  // filled on success, read only then
        if (!ZelVirtualRegistry().EnumKey(key, index, local, kZelRegNameUnits)) return -1;
        if (name) wcscpy(name, local);
        return ERROR_SUCCESS;
    }
    char local[kZelRegNameBytes] = {};
    const LONG status = RegEnumKeyA(key, index, local, kZelRegNameBytes);
    if (status == ERROR_SUCCESS && name) ZelGiveNameBack(local, sizeof local, name, &nameLength);
    return status;
}

LONG ZelRegQueryInfoKey(HKEY key, WCHAR* keyClass, LPDWORD classLength, LPDWORD reserved, LPDWORD subKeys,
                        LPDWORD longestSubKeyName, LPDWORD longestClass, LPDWORD values, LPDWORD longestValueName,
                        LPDWORD largestValueData, LPDWORD securityDescriptorSize, PFILETIME lastWriteTime,
                        int useVirtual) {
    if (useVirtual) {
        WCHAR local[kZelRegNameUnits];  // filled on success, read only then
        if (!ZelVirtualRegistry().QueryInfoKey(key, local, classLength, reserved, subKeys, longestSubKeyName,
                                               longestClass, values, longestValueName, largestValueData,
                                               securityDescriptorSize, lastWriteTime))
            return -1;
        if (keyClass) wcscpy(keyClass, local);
        return ERROR_SUCCESS;
    }
    char local[kZelRegNameBytes] = {};
    DWORD localLength = kZelRegNameBytes;
    const LONG status =
        RegQueryInfoKeyA(key, local, &localLength, reserved, subKeys, longestSubKeyName, longestClass, values,
                         longestValueName, largestValueData, securityDescriptorSize, lastWriteTime);
    if (status == ERROR_SUCCESS) {
        ZelGiveNameBack(local, sizeof local, keyClass, classLength);
    } else if (classLength) {
        *classLength = localLength;
    }
    return status;
}

LONG ZelRegDeleteKey(HKEY key, const WCHAR* subKey, int useVirtual) {
    if (useVirtual) return TreeStatus(ZelVirtualRegistry().DeleteKey(key, subKey));
    return RegDeleteKeyA(key, ZelNarrowArg(subKey).get());
}

LONG ZelRegCloseKey(HKEY key, int useVirtual) {
    // A tree handle is a key's address: there is nothing to close.
    if (useVirtual) return ERROR_SUCCESS;
    return RegCloseKey(key);
}

LONG ZelRegSaveKey(HKEY key, const WCHAR* fileName, const SECURITY_ATTRIBUTES* security, int /*ignored*/) {
    return RegSaveKeyA(key, ZelNarrowArg(fileName).get(), security);
}
