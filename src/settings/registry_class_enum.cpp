// CZelRegistry: one enumeration at a time over the sub-keys or the values of a key. The position
// moves on every call, whether the entry was there or not.
#include <zel/settings.h>

#include "settings/registry_class_internal.h"

// An enumeration still open is not closed here: its handle is lost.
int CZelRegistry::InitEnumeration(const WCHAR* section) {
    enumKey = GetSectionKey(section);
    enumIndex = 0;
    return enumKey != nullptr;
}

int CZelRegistry::GetNextSubkeyName(WCHAR* buffer) {
    const LONG status = ZelRegEnumKey(enumKey, enumIndex, buffer, kZelRegNameUnits, useVirtual);
    ++enumIndex;
    return status == ERROR_SUCCESS;
}

int CZelRegistry::GetNextValueName(WCHAR* buffer) {
    if (!buffer) return 0;
    DWORD capacity = kZelRegNameUnits;
    DWORD type = REG_NONE;
    const LONG status =
        ZelRegEnumValue(enumKey, enumIndex, buffer, &capacity, nullptr, &type, nullptr, nullptr, useVirtual);
    ++enumIndex;
    return status == ERROR_SUCCESS;
}

void CZelRegistry::EndEnumeration() {
    if (enumKey) ZelRegCloseKey(enumKey, useVirtual);
    enumKey = nullptr;
    enumIndex = 0;
}
