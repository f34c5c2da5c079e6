// CZelRegistry: deleting keys and values. DeleteSubKey removes a whole subtree from the bottom up,
// so it works where a key with children can't be deleted, as on the tree.
#include <zel/settings.h>

#include <cstdlib>

#include "platform/win32.h"
#include "settings/registry_adapters.h"
#include "settings/registry_class_internal.h"

int CZelRegistry::DeleteKey(const WCHAR* subKey) {
    HKEY key = GetRegistryKey();
    if (!key) return 0;
    const LONG status = ZelRegDeleteKey(key, subKey, useVirtual);
    ZelRegCloseKey(key, useVirtual);
    return status == ERROR_SUCCESS;
}

int CZelRegistry::DeleteValue(const WCHAR* section, const WCHAR* name) {
    HKEY key = GetSectionKey(section);
    if (!key) return 0;
    const LONG status = ZelRegDeleteValue(key, name, useVirtual);
    ZelRegCloseKey(key, useVirtual);
    return status == ERROR_SUCCESS;
}

int CZelRegistry::DeleteSubKey(const WCHAR* subKey, const WCHAR* valueName, HKEY parent) {
    HKEY ownParent = nullptr;
    if (!parent) {
        parent = ownParent = GetRegistryKey();
        if (!parent) return 0;
    }
    auto finish = [&](HKEY key, int result) {
        if (key) ZelRegCloseKey(key, useVirtual);
        if (ownParent) ZelRegCloseKey(ownParent, useVirtual);
        return result;
    };
    HKEY key = nullptr;
    if (ZelRegOpenKeyEx(parent, subKey, 0, kZelKeyReadWrite, &key, useVirtual) != ERROR_SUCCESS)
        return finish(nullptr, 0);
    if (valueName) return finish(key, ZelRegDeleteValue(key, valueName, useVirtual) == ERROR_SUCCESS);

    // Each pass removes the child at index 0, so the next child moves there.
    for (;;) {
        WCHAR keyClass[MAX_PATH] = {};
        DWORD classLength = MAX_PATH;
        DWORD subKeys = 0;
        DWORD longestName = 0;
        if (ZelRegQueryInfoKey(key, keyClass, &classLength, nullptr, &subKeys, &longestName, nullptr, nullptr, nullptr,
                               nullptr, nullptr, nullptr, useVirtual) != ERROR_SUCCESS)
            return finish(key, 0);
        if (subKeys == 0) break;
        WCHAR* name = static_cast<WCHAR*>(std::calloc(size_t(longestName) + 1, sizeof(WCHAR)));
        if (!name) return finish(key, 0);
        const bool deleted = ZelRegEnumKey(key, 0, name, longestName + 1, useVirtual) == ERROR_SUCCESS &&
                             DeleteSubKey(name, nullptr, key);
        std::free(name);
        if (!deleted) return finish(key, 0);
    }
    ZelRegCloseKey(key, useVirtual);
    return finish(nullptr, ZelRegDeleteKey(parent, subKey, useVirtual) == ERROR_SUCCESS);
}
