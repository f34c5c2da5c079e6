// CZelIniManager: finding sections and entries, by name or by position. Every look-up is a linear
// scan that stops at the first match; none of them touches the thread's error state.
#include <zel/settings.h>

#include "settings/ini_internal.h"
#include "strings/wstr.h"

int CZelIniManager::_FindSection(const WCHAR* name, tagZELINISECTION** section) {
    if (section) *section = nullptr;
    if (!_IsValidSectionName(name)) return -1;
    for (size_t index = 0; index < secList.size(); ++index) {
        if (wcscmp(secList[index]->name.c_str(), name) == 0) {
            if (section) *section = secList[index];
            return static_cast<int>(index);
        }
    }
    return -1;
}

int CZelIniManager::_FindValueItem(int secIndex, const WCHAR* id, tagZELINIVALUE** value) {
    if (value) *value = nullptr;
    if (secIndex < 0 || secIndex >= GetSecCount()) return -1;
    const std::vector<tagZELINIVALUE*>& values = *secList[secIndex]->values;
    for (size_t index = 0; index < values.size(); ++index) {
        if (wcscmp(values[index]->id.c_str(), id) == 0) {
            if (value) *value = values[index];
            return static_cast<int>(index);
        }
    }
    return -1;
}

int CZelIniManager::_FindValueItem(int secIndex, int idIndex, tagZELINIVALUE** value) {
    if (value) *value = nullptr;
    if (secIndex < 0 || secIndex >= GetSecCount()) return -1;
    const std::vector<tagZELINIVALUE*>& values = *secList[secIndex]->values;
    if (idIndex < 0 || static_cast<size_t>(idIndex) >= values.size()) return -1;
    if (value) *value = values[idIndex];
    return idIndex;
}

const WCHAR* CZelIniManager::GetValueStr(const WCHAR* secName, const WCHAR* id) {
    tagZELINIVALUE* value = nullptr;
    _FindValueItem(GetSecIndex(secName), id, &value);
    return value ? value->value.c_str() : nullptr;
}

const WCHAR* CZelIniManager::GetValueStr(const WCHAR* secName, int idIndex) {
    return GetValueStr(GetSecIndex(secName), idIndex);
}

const WCHAR* CZelIniManager::GetValueStr(int secIndex, int idIndex) {
    tagZELINIVALUE* value = nullptr;
    _FindValueItem(secIndex, idIndex, &value);
    return value ? value->value.c_str() : nullptr;
}

const WCHAR* CZelIniManager::GetIdStr(const WCHAR* secName, int idIndex) {
    return GetIdStr(GetSecIndex(secName), idIndex);
}

const WCHAR* CZelIniManager::GetIdStr(int secIndex, int idIndex) {
    tagZELINIVALUE* value = nullptr;
    _FindValueItem(secIndex, idIndex, &value);
    return value ? value->id.c_str() : nullptr;
}

int CZelIniManager::GetIdIndex(const WCHAR* secName, const WCHAR* id) {
    return GetIdIndex(GetSecIndex(secName), id);
}

int CZelIniManager::GetIdIndex(int secIndex, const WCHAR* id) { return _FindValueItem(secIndex, id, nullptr); }

int CZelIniManager::GetIdCount(const WCHAR* secName) { return GetIdCount(GetSecIndex(secName)); }

int CZelIniManager::GetIdCount(int secIndex) {
    if (secIndex < 0 || secIndex >= GetSecCount()) return -1;
    return static_cast<int>(secList[secIndex]->values->size());
}

int CZelIniManager::GetSecCount() { return static_cast<int>(secList.size()); }

const WCHAR* CZelIniManager::GetSectionName(int secIndex) {
    if (secIndex < 0 || secIndex >= GetSecCount()) return nullptr;
    return secList[secIndex]->name.c_str();
}

int CZelIniManager::GetSecIndex(const WCHAR* secName) { return _FindSection(secName, nullptr); }
