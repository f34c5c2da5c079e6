// CZelIniManager: construction, deep copies, the modified flag and freeing everything.
#include <zel/settings.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "settings/ini_internal.h"

void ZelIniFreeSection(tagZELINISECTION* section) {
    if (!section) return;
    if (section->values) {
        for (tagZELINIVALUE* value : *section->values) delete value;
        delete section->values;
    }
    delete section;
}

namespace {

// A section with copies of every entry. Throws std::bad_alloc, leaving nothing behind.
tagZELINISECTION* CopySection(const tagZELINISECTION& source) {
    auto* copy = new tagZELINISECTION{source.name, nullptr};
    try {
        copy->values = new std::vector<tagZELINIVALUE*>();
        if (source.values) {
            copy->values->reserve(source.values->size());
            for (const tagZELINIVALUE* value : *source.values) copy->values->push_back(new tagZELINIVALUE(*value));
        }
    } catch (...) {
        ZelIniFreeSection(copy);
        throw;
    }
    return copy;
}

}  // namespace

CZelIniManager::CZelIniManager()
    : filePath{}, stream(nullptr), streamOpen(0), fileSize(0), modified(0), readBuffer(nullptr), readCursor(nullptr) {}

CZelIniManager::CZelIniManager(const CZelIniManager& other) : CZelIniManager() {
    headerInfo = other.headerInfo;
    std::copy(std::begin(other.filePath), std::end(other.filePath), filePath);
    modified = other.modified;
    try {
        secList.reserve(other.secList.size());
        for (const tagZELINISECTION* section : other.secList) secList.push_back(CopySection(*section));
    } catch (...) {
        RemoveAllSecList();
        throw;
    }
}

CZelIniManager& CZelIniManager::operator=(const CZelIniManager& other) {
    if (this == &other) return *this;
    CZelIniManager copy(other);
    std::swap(secList, copy.secList);
    std::swap(headerInfo, copy.headerInfo);
    std::swap(filePath, copy.filePath);
    std::swap(nameIndex, copy.nameIndex);
    modified = copy.modified;
    return *this;
}

CZelIniManager::~CZelIniManager() {
    _ReleaseRead();
    for (tagZELINISECTION* section : secList) ZelIniFreeSection(section);
}

void CZelIniManager::_ReleaseRead() {
    std::free(readBuffer);
    readBuffer = nullptr;
    readCursor = nullptr;
    if (stream) std::fclose(stream);
    stream = nullptr;
    streamOpen = 0;
}

void CZelIniManager::RemoveAllSecList() {
    nameIndex.reset();
    for (tagZELINISECTION* section : secList) ZelIniFreeSection(section);
    secList.clear();
    modified = 1;
}

int CZelIniManager::IsModified() { return modified; }

void CZelIniManager::_SetModified(int flag) { modified = flag; }

const WCHAR* CZelIniManager::GetHeaderInfo() { return headerInfo.empty() ? nullptr : headerInfo.c_str(); }

void CZelIniManager::SetHeaderInfo(const WCHAR* text) {
    if (text)
        headerInfo = text;
    else
        headerInfo.clear();
    modified = 1;
}
