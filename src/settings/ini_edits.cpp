// CZelIniManager: adding, changing and removing sections and entries. Records are allocated one
// by one and held by pointer, so that a removal moves only pointers. Every change sets modified.
#include <zel/frame.h>
#include <zel/settings.h>

#include <new>

#include "settings/ini_internal.h"
#include "strings/wstr.h"

int CZelIniManager::_AddItemToSecList(const tagZELINISECTION* section) {
    auto* record = new (std::nothrow) tagZELINISECTION{};
    if (!record) return 0;
    try {
        record->name = section->name;
        record->values = section->values;
        secList.push_back(record);
    } catch (const std::bad_alloc&) {
        delete record;  // the values array stays the caller's
        return 0;
    }
    return 1;
}

int CZelIniManager::_AddItemToValueList(std::vector<tagZELINIVALUE*>* array, const tagZELINIVALUE* value) {
    auto* record = new (std::nothrow) tagZELINIVALUE{};
    if (!record) return 0;
    try {
        record->id = value->id;
        record->value = value->value;
        array->push_back(record);
    } catch (const std::bad_alloc&) {
        delete record;
        return 0;
    }
    return 1;
}

int CZelIniManager::AddSection(const WCHAR* secName) {
    if (_FindSection(secName, nullptr) >= 0) return -1;
    tagZELINISECTION section{};
    section.values = new (std::nothrow) std::vector<tagZELINIVALUE*>();
    bool made = section.values != nullptr;
    if (made) {
        try {
            section.name = secName;
        } catch (const std::bad_alloc&) {
            made = false;
        }
    }
    if (!made || !_AddItemToSecList(&section)) {
        delete section.values;
        ZelSetError(kZelIniOutOfMemory);
        return 0;
    }
    modified = 1;
    return GetSecCount() - 1;
}

int CZelIniManager::AddIdValueStr(const WCHAR* secName, const WCHAR* id, const WCHAR* value) {
    return AddIdValueStr(GetSecIndex(secName), id, value);
}

int CZelIniManager::AddIdValueStr(int secIndex, const WCHAR* id, const WCHAR* value) {
    if (secIndex < 0 || secIndex >= GetSecCount()) return 0;
    if (_FindValueItem(secIndex, id, nullptr) >= 0) return 0;
    tagZELINIVALUE entry{};
    try {
        entry.id = id;
        entry.value = value;
    } catch (const std::bad_alloc&) {
        ZelSetError(kZelIniOutOfMemory);
        return 0;
    }
    if (!_AddItemToValueList(secList[secIndex]->values, &entry)) {
        ZelSetError(kZelIniOutOfMemory);
        return 0;
    }
    modified = 1;
    return 1;
}

namespace {

// Replaces one text of a record; 0 when memory runs out, leaving the old text.
int Replace(std::u16string& target, const WCHAR* text) {
    try {
        target = text;
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return 1;
}

}  // namespace

int CZelIniManager::SetValue(const WCHAR* secName, const WCHAR* id, const WCHAR* value) {
    return SetValue(GetSecIndex(secName), id, value);
}

int CZelIniManager::SetValue(int secIndex, const WCHAR* id, const WCHAR* value) {
    tagZELINIVALUE* record = nullptr;
    if (_FindValueItem(secIndex, id, &record) < 0 || !Replace(record->value, value)) return 0;
    modified = 1;
    return 1;
}

int CZelIniManager::SetValue(int secIndex, int idIndex, const WCHAR* value) {
    tagZELINIVALUE* record = nullptr;
    if (_FindValueItem(secIndex, idIndex, &record) < 0 || !Replace(record->value, value)) return 0;
    modified = 1;
    return 1;
}

int CZelIniManager::SetIDStr(const WCHAR* secName, const WCHAR* id, const WCHAR* newId) {
    return SetIDStr(GetSecIndex(secName), id, newId);
}

int CZelIniManager::SetIDStr(int secIndex, const WCHAR* id, const WCHAR* newId) {
    return SetIDStr(secIndex, _FindValueItem(secIndex, id, nullptr), newId);
}

int CZelIniManager::SetIDStr(int secIndex, int idIndex, const WCHAR* newId) {
    tagZELINIVALUE* record = nullptr;
    if (_FindValueItem(secIndex, idIndex, &record) < 0) return 0;
    // The index holds the old id, and which entry of a name comes first may change.
    ZelIniForgetIds(nameIndex.get(), secList[static_cast<size_t>(secIndex)]);
    if (!Replace(record->id, newId)) return 0;
    modified = 1;
    return 1;
}

int CZelIniManager::RemoveId(const WCHAR* secName, const WCHAR* id) { return RemoveId(GetSecIndex(secName), id); }

int CZelIniManager::RemoveId(int secIndex, const WCHAR* id) {
    return RemoveId(secIndex, _FindValueItem(secIndex, id, nullptr));
}

int CZelIniManager::RemoveId(int secIndex, int idIndex) {
    tagZELINIVALUE* record = nullptr;
    if (_FindValueItem(secIndex, idIndex, &record) < 0) return 0;
    ZelIniForgetIds(nameIndex.get(), secList[static_cast<size_t>(secIndex)]);
    std::vector<tagZELINIVALUE*>& values = *secList[secIndex]->values;
    values.erase(values.begin() + idIndex);
    delete record;
    modified = 1;
    return 1;
}

int CZelIniManager::RemoveSection(const WCHAR* secName) {
    const int index = GetSecIndex(secName);
    if (index >= 0) RemoveSection(index);
    modified = 1;
    return 1;
}

int CZelIniManager::RemoveSection(int secIndex) {
    if (secIndex < 0 || secIndex >= GetSecCount()) return 0;
    tagZELINISECTION* section = secList[secIndex];
    ZelIniForgetIds(nameIndex.get(), section);
    ZelIniForgetPositions(nameIndex.get());
    secList.erase(secList.begin() + secIndex);
    ZelIniFreeSection(section);
    modified = 1;
    return 1;
}

int CZelIniManager::RemoveAllId(const WCHAR* secName) { return RemoveAllId(GetSecIndex(secName)); }

int CZelIniManager::RemoveAllId(int secIndex) {
    if (secIndex < 0 || secIndex >= GetSecCount()) return 0;
    ZelIniForgetIds(nameIndex.get(), secList[static_cast<size_t>(secIndex)]);
    std::vector<tagZELINIVALUE*>& values = *secList[secIndex]->values;
    for (tagZELINIVALUE* value : values) delete value;
    values.clear();
    modified = 1;
    return 1;
}
