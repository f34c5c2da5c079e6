// CZelIniManager: finding sections and entries, by name or by position. A look-up by name finds
// the first match: along the list while it is short, through the object's index beyond. None of
// them touches the thread's error state.
#include <zel/settings.h>

#include <new>

#include "settings/ini_internal.h"
#include "strings/wstr.h"

namespace {

// Up to this many records a name is looked for along the list.
constexpr size_t kScannedRecords = 8;

// The position of the first record whose text (by field) equals name, or -1.
template <typename Record, typename Field>
int Scan(const std::vector<Record*>& records, Field field, const WCHAR* name) {
    for (size_t index = 0; index < records.size(); ++index)
        if (wcscmp((records[index]->*field).c_str(), name) == 0) return static_cast<int>(index);
    return -1;
}

// The same through positions that covered the first seen records, brought up to the rest first.
// Out of memory leaves the positions empty, and the list is scanned.
template <typename Record, typename Field>
int Look(ZelIniNameTable<Record>& positions, size_t& seen, const std::vector<Record*>& records, Field field,
         const WCHAR* name) {
    if (seen > records.size()) {
        positions.clear();
        seen = 0;
    }
    try {
        for (; seen < records.size(); ++seen) positions.Add(records[seen], static_cast<int>(seen), field);
    } catch (const std::bad_alloc&) {
        positions.clear();
        seen = 0;
        return Scan(records, field, name);
    }
    return positions.Find(std::u16string_view(name), field);
}

}  // namespace

int CZelIniManager::_FindSection(const WCHAR* name, tagZELINISECTION** section) {
    if (section) *section = nullptr;
    if (!_IsValidSectionName(name)) return -1;
    int index = -1;
    if (secList.size() <= kScannedRecords) {
        index = Scan(secList, &tagZELINISECTION::name, name);
    } else {
        if (!nameIndex) nameIndex.reset(new (std::nothrow) ZelIniNameIndex);
        index = nameIndex ? Look(nameIndex->sections, nameIndex->sectionsSeen, secList, &tagZELINISECTION::name, name)
                          : Scan(secList, &tagZELINISECTION::name, name);
    }
    if (index >= 0 && section) *section = secList[static_cast<size_t>(index)];
    return index;
}

int CZelIniManager::_FindValueItem(int secIndex, const WCHAR* id, tagZELINIVALUE** value) {
    if (value) *value = nullptr;
    if (secIndex < 0 || secIndex >= GetSecCount()) return -1;
    const tagZELINISECTION* section = secList[static_cast<size_t>(secIndex)];
    const std::vector<tagZELINIVALUE*>& values = *section->values;
    int index = -1;
    if (values.size() <= kScannedRecords) {
        index = Scan(values, &tagZELINIVALUE::id, id);
    } else {
        if (!nameIndex) nameIndex.reset(new (std::nothrow) ZelIniNameIndex);
        ZelIniNameIndex::Ids* ids = nullptr;
        try {
            if (nameIndex) ids = &nameIndex->ids[section];
        } catch (const std::bad_alloc&) {
        }
        index = ids ? Look(ids->first, ids->seen, values, &tagZELINIVALUE::id, id) : Scan(values, &tagZELINIVALUE::id, id);
    }
    if (index >= 0 && value) *value = values[static_cast<size_t>(index)];
    return index;
}

void ZelIniForgetPositions(ZelIniNameIndex* index) {
    if (!index) return;
    index->sections.clear();
    index->sectionsSeen = 0;
}

void ZelIniForgetIds(ZelIniNameIndex* index, const tagZELINISECTION* section) {
    if (index) index->ids.erase(section);
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
