// The registry file's numbers: unsigned 32-bit, little-endian whatever the host.
#ifndef ZEL_SETTINGS_REGISTRY_FILE_FORMAT_H
#define ZEL_SETTINGS_REGISTRY_FILE_FORMAT_H

#include <zel/wintypes.h>

#include <cstdio>
#include <string>
#include <unordered_map>

#include "platform/stream_reads.h"

inline bool ZelRegFilePutNumber(FILE* stream, DWORD value) {
    const unsigned char bytes[4] = {static_cast<unsigned char>(value), static_cast<unsigned char>(value >> 8),
                                    static_cast<unsigned char>(value >> 16), static_cast<unsigned char>(value >> 24)};
    return std::fwrite(bytes, 1, 4, stream) == 4;
}

// Bytes from a stream that only the caller's thread reads: a few at a time straight from its
// buffer, more through fread. Gives false when the stream ends first.
inline bool ZelRegFileGetBytes(FILE* stream, void* bytes, size_t count) {
    if (count > 32) return ZelReadOwnStream(bytes, count, stream) == count;
    for (size_t at = 0; at < count; ++at) {
        const int byte = ZelGetcOwnStream(stream);
        if (byte == EOF) return false;
        static_cast<unsigned char*>(bytes)[at] = static_cast<unsigned char>(byte);
    }
    return true;
}

inline bool ZelRegFileGetNumber(FILE* stream, DWORD* value) {
    unsigned char bytes[4];
    if (!ZelRegFileGetBytes(stream, bytes, 4)) return false;
    *value = DWORD(bytes[0]) | DWORD(bytes[1]) << 8 | DWORD(bytes[2]) << 16 | DWORD(bytes[3]) << 24;
    return true;
}

// The text fields of one save or load, in the ANSI code page as it stood when the call began.
// Names, which come again and again, are converted once a call; paths, which don't, every time.
class ZelRegFileTexts {
public:
    ZelRegFileTexts();
    ZelRegFileTexts(const ZelRegFileTexts&) = delete;
    ZelRegFileTexts& operator=(const ZelRegFileTexts&) = delete;

    // As ZelNarrowArg gives it.
    std::string Narrow(const WCHAR* text) const;
    std::string NarrowName(const WCHAR* name);
    // Into text, which holds count units, as ZelAnsiToUnicode gives it with a buffer of count + 1.
    void Widen(const char* ansi, WCHAR* text, size_t count) const;
    void WidenName(const char* ansi, WCHAR* text, size_t count);

private:
    // Longer names are converted each time rather than remembered.
    static constexpr size_t kRememberedUnits = 64;

    DWORD codePage_;
    std::unordered_map<std::u16string, std::string> narrowNames_;
    std::unordered_map<std::string, std::u16string> wideNames_;
};

#endif  // ZEL_SETTINGS_REGISTRY_FILE_FORMAT_H
