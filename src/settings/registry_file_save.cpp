// CZelRegistry::SaveToFile: a key and everything below it, to the binary file. The header holds the
// key path as given; each key with values follows as a section, children before their parent,
// named by its path from the saved key's parent. Text is ANSI without a terminator.
#include <zel/frame.h>
#include <zel/paths.h>
#include <zel/settings.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "settings/registry_adapters.h"
#include "settings/registry_class_internal.h"
#include "settings/registry_file_format.h"
#include "strings/wstr.h"

namespace {

constexpr DWORD kOutOfMemory = 2;

// The texts of the save under way on this thread, or null.
thread_local ZelRegFileTexts* saveTexts = nullptr;

// A text field: its length in ANSI bytes, then the bytes.
bool PutText(FILE* stream, const std::string& ansi) {
    return ZelRegFilePutNumber(stream, static_cast<DWORD>(ansi.size())) &&
           std::fwrite(ansi.data(), 1, ansi.size(), stream) == ansi.size();
}

// A path or a name as a text field, through the save's texts.
template <typename Convert>
bool PutText(FILE* stream, const WCHAR* text, Convert convert) {
    if (saveTexts) return PutText(stream, (saveTexts->*convert)(text ? text : u""));
    ZelRegFileTexts texts;
    return PutText(stream, (texts.*convert)(text ? text : u""));
}

// Cuts a path at its last back slash, when it has one.
void CutLastComponent(WCHAR* path) {
    if (WCHAR* slash = wcsrchr(path, u'\\')) *slash = 0;
}

}  // namespace

int CZelRegistry::SaveToFile(const WCHAR* keyPathToSave, const WCHAR* filePath, HKEY root) {
    (void)root;  // always the current user's hive
    WCHAR absolute[MAX_PATH] = {};
    ZelPathToAbsolute(filePath, absolute);
    FILE* stream = u__wfopen(absolute, u"wb");
    if (!stream) return 0;
    ZelRegFileTexts texts;
    saveTexts = &texts;
    struct Done {
        ~Done() { saveTexts = nullptr; }
    } done;

    WCHAR copy[520] = {};
    if (keyPathToSave) wcsncpy(copy, keyPathToSave, std::size(copy) - 1);
    size_t length = wcslen(copy);
    if (length > 0 && copy[length - 1] == u'\\') copy[--length] = 0;
    _SaveKeyName(stream, keyPathToSave);

    WCHAR* slash = wcsrchr(copy, u'\\');
    if (!slash) {
        std::fclose(stream);
        return 0;
    }
    *slash = 0;
    SetRegistryKey(copy, HKEY_CURRENT_USER);
    HKEY parent = GetRegistryKey();
    if (!parent) {
        std::fclose(stream);
        return 0;
    }
    if (savePath) savePath[0] = 0;
    savePathLength = 0;
    _SaveFileFromReg(stream, slash + 1, parent);
    ZelRegCloseKey(parent, useVirtual);
    std::fclose(stream);
    return 1;
}

int CZelRegistry::_SaveKeyName(FILE* stream, const WCHAR* path) {
    return PutText(stream, path, &ZelRegFileTexts::Narrow);
}

int CZelRegistry::_SaveFileFromReg(FILE* stream, const WCHAR* name, HKEY parent) {
    if (!parent) return 0;
    HKEY key = nullptr;
    if (ZelRegOpenKeyEx(parent, name, 0, kZelKeyReadWrite, &key, useVirtual) != ERROR_SUCCESS) return 0;
    WCHAR keyClass[MAX_PATH] = {};
    DWORD classLength = MAX_PATH;
    DWORD subKeys = 0, longestSubKey = 0, values = 0, longestValueName = 0, largestValueData = 0;
    if (ZelRegQueryInfoKey(key, keyClass, &classLength, nullptr, &subKeys, &longestSubKey, nullptr, &values,
                           &longestValueName, &largestValueData, nullptr, nullptr, useVirtual) != ERROR_SUCCESS) {
        ZelRegCloseKey(key, useVirtual);
        return 0;
    }

    // savePathLength counts every unit appended since the save began, so it is never below the
    // path's length; the buffer grows once that count reaches its size.
    const size_t nameLength = wcslen(name);
    const bool first = !savePath || savePath[0] == 0;
    const DWORD total = savePathLength + static_cast<DWORD>(nameLength) + (first ? 0 : 1);
    if (total >= savePathCapacity) {
        const DWORD capacity = savePathCapacity + total + 256;
        WCHAR* grown = static_cast<WCHAR*>(std::malloc(size_t(capacity) * sizeof(WCHAR)));
        if (!grown) {
            ZelSetError(kOutOfMemory);
            ZelRegCloseKey(key, useVirtual);
            return 0;
        }
        grown[0] = 0;
        if (savePath) wcscpy(grown, savePath);
        std::free(savePath);
        savePath = grown;
        savePathCapacity = capacity;
    }
    savePathLength = total;
    size_t end = wcslen(savePath);
    if (!first) savePath[end++] = u'\\';
    std::memcpy(savePath + end, name, (nameLength + 1) * sizeof(WCHAR));

    if (subKeys > 0) {
        WCHAR* child = static_cast<WCHAR*>(std::calloc(size_t(longestSubKey) + 1, sizeof(WCHAR)));
        if (!child) {
            ZelSetError(kOutOfMemory);
            CutLastComponent(savePath);
            ZelRegCloseKey(key, useVirtual);
            return 0;
        }
        // A child that fails is left out and the others still go; a name that can't be had is
        // skipped, since the buffer would still hold the one before.
        for (DWORD index = 0; index < subKeys; ++index)
            if (ZelRegEnumKey(key, index, child, longestSubKey + 1, useVirtual) == ERROR_SUCCESS)
                _SaveFileFromReg(stream, child, key);
        std::free(child);
    }
    __WriteSectionValue(stream, key, savePath, values, longestValueName, largestValueData);
    CutLastComponent(savePath);
    ZelRegCloseKey(key, useVirtual);
    return 1;
}

int CZelRegistry::__WriteSectionValue(FILE* stream, HKEY key, const WCHAR* path, DWORD valueCount,
                                      DWORD longestValueName, DWORD largestValueData) {
    if (valueCount == 0) return 1;
    if (!__WriteSectionName(stream, path, valueCount)) return 0;
    WCHAR* name = static_cast<WCHAR*>(std::calloc(size_t(longestValueName) + 1, sizeof(WCHAR)));
    BYTE* data = static_cast<BYTE*>(std::calloc(largestValueData ? largestValueData : 1, 1));
    if (!name || !data) {
        std::free(name);
        std::free(data);
        ZelSetError(kOutOfMemory);
        return 0;
    }
    // The head promised valueCount records, so each index writes one whatever the enumeration said.
    for (DWORD index = 0; index < valueCount; ++index) {
        DWORD nameCapacity = longestValueName + 1;
        DWORD size = largestValueData;
        DWORD type = REG_NONE;
        ZelRegEnumValue(key, index, name, &nameCapacity, nullptr, &type, data, &size, useVirtual);
        // A failed call may report a size above the buffer's.
        __WriteOneValue(stream, name, type, data, std::min(size, largestValueData));
    }
    std::free(name);
    std::free(data);
    return 1;
}

int CZelRegistry::__WriteSectionName(FILE* stream, const WCHAR* path, DWORD valueCount) {
    return PutText(stream, path, &ZelRegFileTexts::Narrow) && ZelRegFilePutNumber(stream, valueCount);
}

int CZelRegistry::__WriteOneValue(FILE* stream, const WCHAR* name, DWORD type, const BYTE* data, DWORD size) {
    return PutText(stream, name, &ZelRegFileTexts::NarrowName) && ZelRegFilePutNumber(stream, type) && ZelRegFilePutNumber(stream, size) &&
           std::fwrite(data, 1, size, stream) == size;
}
