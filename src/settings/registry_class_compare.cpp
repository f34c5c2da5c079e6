// CZelRegistry::CompareValue: one value of two objects, byte by byte, whatever its type.
#include <zel/settings.h>

#include <cstdlib>

#include "settings/registry_class_internal.h"

namespace {

// The whole of a value in a block of its own; null when it can't be read.
BYTE* ReadWhole(HKEY key, const WCHAR* name, DWORD& size, int useVirtual) {
    size = 0;
    if (ZelRegQueryValueEx(key, name, nullptr, nullptr, nullptr, &size, useVirtual) != ERROR_SUCCESS) return nullptr;
    BYTE* block = static_cast<BYTE*>(std::malloc(size ? size : 1));
    if (!block) return nullptr;
    DWORD read = 0;
    if (ZelRegReadValueBounded(key, name, block, size, &read, useVirtual) != ERROR_SUCCESS) {
        std::free(block);
        return nullptr;
    }
    return block;
}

}  // namespace

// Positive: the other side is missing, or this value is longer or sorts later. Each key is read on
// the registry of the object that opened it, so both objects should work on the same one.
int CZelRegistry::CompareValue(const WCHAR* section, const WCHAR* name, CZelRegistry& other) {
    HKEY own = GetSectionKey(section);
    if (!own) return -1;
    HKEY theirs = other.GetSectionKey(section);
    if (!theirs) {
        ZelRegCloseKey(own, useVirtual);
        return 1;
    }
    DWORD ownSize = 0;
    DWORD otherSize = 0;
    BYTE* ownData = ReadWhole(own, name, ownSize, useVirtual);
    BYTE* otherData = ownData ? ReadWhole(theirs, name, otherSize, other.useVirtual) : nullptr;
    int result = 0;
    if (!ownData) {
        result = -1;
    } else if (!otherData) {
        result = 1;
    } else if (ownSize != otherSize) {
        result = static_cast<int>(static_cast<LONG>(ownSize - otherSize));
    } else {
        for (DWORD i = 0; i < ownSize; ++i) {
            if (ownData[i] != otherData[i]) {
                result = ownData[i] < otherData[i] ? -1 : 1;
                break;
            }
        }
    }
    ZelRegCloseKey(own, useVirtual);
    ZelRegCloseKey(theirs, other.useVirtual);
    std::free(ownData);
    std::free(otherData);
    return result;
}
