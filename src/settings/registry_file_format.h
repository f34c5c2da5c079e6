// The registry file's numbers: unsigned 32-bit, little-endian whatever the host.
#ifndef ZEL_SETTINGS_REGISTRY_FILE_FORMAT_H
#define ZEL_SETTINGS_REGISTRY_FILE_FORMAT_H

#include <zel/wintypes.h>

#include <cstdio>

inline bool ZelRegFilePutNumber(FILE* stream, DWORD value) {
    const unsigned char bytes[4] = {static_cast<unsigned char>(value), static_cast<unsigned char>(value >> 8),
                                    static_cast<unsigned char>(value >> 16), static_cast<unsigned char>(value >> 24)};
    return std::fwrite(bytes, 1, 4, stream) == 4;
}

inline bool ZelRegFileGetNumber(FILE* stream, DWORD* value) {
    unsigned char bytes[4];
    if (std::fread(bytes, 1, 4, stream) != 4) return false;
    *value = DWORD(bytes[0]) | DWORD(bytes[1]) << 8 | DWORD(bytes[2]) << 16 | DWORD(bytes[3]) << 24;
    return true;
}

#endif  // ZEL_SETTINGS_REGISTRY_FILE_FORMAT_H
