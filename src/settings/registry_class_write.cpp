// CZelRegistry: writing dwords, strings and binary blocks. Strings go to both registries as ANSI
// text of type REG_SZ with their terminator.
#include <zel/settings.h>

#include <cstring>

#include "paths/os/ansi_text.h"
#include "settings/registry_class_internal.h"

int CZelRegistry::__WriteRegValue(HKEY key, const WCHAR* name, DWORD type, const BYTE* data, DWORD size) {
    return ZelRegSetValueEx(key, name, 0, type, data, size, useVirtual) == ERROR_SUCCESS;
}

int CZelRegistry::WriteDwordValue(const WCHAR* section, const WCHAR* name, int value) {
    HKEY key = GetSectionKey(section);
    if (!key) return 0;
    BYTE bytes[sizeof(DWORD)];
    std::memcpy(bytes, &value, sizeof bytes);
    const int result = __WriteRegValue(key, name, REG_DWORD, bytes, sizeof bytes);
    ZelRegCloseKey(key, useVirtual);
    return result;
}

int CZelRegistry::WriteStringValue(const WCHAR* section, const WCHAR* name, const WCHAR* text) {
    HKEY key = GetSectionKey(section);
    if (!key) return 0;
    ZelNarrowArg ansi(text ? text : u"");
    const int result = __WriteRegValue(key, name, REG_SZ, reinterpret_cast<const BYTE*>(ansi.get()),
                                       static_cast<DWORD>(std::strlen(ansi.get()) + 1));
    ZelRegCloseKey(key, useVirtual);
    return result;
}

int CZelRegistry::WriteBinaryValue(const WCHAR* section, const WCHAR* name, const BYTE* data, DWORD size) {
    HKEY key = GetSectionKey(section);
    if (!key) return 0;
    const int result = __WriteRegValue(key, name, REG_BINARY, data, size);
    ZelRegCloseKey(key, useVirtual);
    return result;
}
