// CZelRegistry: binding, copies, and the key getters that every operation opens its key with.
#include <zel/settings.h>

#include <cstdlib>

#include "settings/registry_class_internal.h"

namespace {

constexpr size_t kKeyPathUnits = 520;

// Copies a key path, cut to what the field holds; null leaves it empty.
void CopyKeyPath(WCHAR (&keyPath)[kKeyPathUnits], const WCHAR* path) {
    size_t length = 0;
    if (path)
        for (; length < kKeyPathUnits - 1 && path[length]; ++length) keyPath[length] = path[length];
    keyPath[length] = 0;
}

}  // namespace

CZelRegistry::CZelRegistry(int useVirtual)
    : rootKey(nullptr),
      enumKey(nullptr),
      enumIndex(0),
      keyPath{},
      useVirtual(useVirtual),
      savePath(nullptr),
      savePathLength(0),
      savePathCapacity(0) {}

CZelRegistry::CZelRegistry(const WCHAR* path, HKEY root, int useVirtual) : CZelRegistry(useVirtual) {
    SetRegistryKey(path, root);
}

// A copy shares the binding only: an open enumeration and the save buffer stay with their owner.
CZelRegistry::CZelRegistry(const CZelRegistry& other) : CZelRegistry(other.useVirtual) {
    SetRegistryKey(other.keyPath, other.rootKey);
}

CZelRegistry& CZelRegistry::operator=(const CZelRegistry& other) {
    if (this == &other) return *this;
    if (enumKey) EndEnumeration();
    useVirtual = other.useVirtual;
    SetRegistryKey(other.keyPath, other.rootKey);
    return *this;
}

CZelRegistry::~CZelRegistry() {
    if (enumKey) ZelRegCloseKey(enumKey, useVirtual);
    std::free(savePath);
}

void CZelRegistry::SetRegistryKey(const WCHAR* path, HKEY root) {
    CopyKeyPath(keyPath, path);
    rootKey = root;
}

HKEY CZelRegistry::GetRegistryKey() { return GetRegistryKey(kZelKeyReadWrite); }

HKEY CZelRegistry::GetRegistryKey(REGSAM access) {
    HKEY key = nullptr;
    DWORD disposition = 0;
    if (ZelRegCreateKeyEx(rootKey, keyPath, 0, nullptr, REG_OPTION_NON_VOLATILE, access, nullptr, &key, &disposition,
                          useVirtual) != ERROR_SUCCESS)
        return nullptr;
    return key;
}

HKEY CZelRegistry::GetSectionKey(const WCHAR* section) { return GetSectionKey(section, kZelKeyReadWrite); }

// A null section is the key itself, opened with the access asked for.
HKEY CZelRegistry::GetSectionKey(const WCHAR* section, REGSAM access) {
    if (!section) return GetRegistryKey(access);
    HKEY parent = GetRegistryKey(kZelKeyReadWrite);
    if (!parent) return nullptr;
    HKEY key = nullptr;
    DWORD disposition = 0;
    LONG status = ZelRegCreateKeyEx(parent, section, 0, nullptr, REG_OPTION_NON_VOLATILE, access, nullptr, &key,
                                    &disposition, useVirtual);
    ZelRegCloseKey(parent, useVirtual);
    return status == ERROR_SUCCESS ? key : nullptr;
}

int CZelRegistry::ExistKey(const WCHAR* subKey) {
    HKEY key = GetRegistryKey();
    if (!key) return 0;
    int exists = 0;
    if (subKey) {
        HKEY found = nullptr;
        if (ZelRegOpenKey(key, subKey, &found, useVirtual) == ERROR_SUCCESS) {
            exists = 1;
            ZelRegCloseKey(found, useVirtual);
        }
    }
    ZelRegCloseKey(key, useVirtual);
    return exists;
}
