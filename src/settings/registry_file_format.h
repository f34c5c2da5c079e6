// The registry file's numbers: unsigned 32-bit, little-endian whatever the host.
#ifndef ZEL_SETTINGS_REGISTRY_FILE_FORMAT_H
#define ZEL_SETTINGS_REGISTRY_FILE_FORMAT_H

#include <zel/wintypes.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

#include "platform/stream_reads.h"
#include "settings/registry_class_internal.h"
#include "strings/name_hash.h"

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

// Put together in a register: four byte stores read back as one word would wait for the stores.
inline bool ZelRegFileGetNumber(FILE* stream, DWORD* value) {
    DWORD number = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const int byte = ZelGetcOwnStream(stream);
        if (byte == EOF) return false;
        number |= DWORD(byte) << shift;
    }
    *value = number;
    return true;
}

// The names that one save or load converted last, each found again by its text: a direct-mapped
// table, so that the many names a file repeats cost a hash and a compare, and the table never grows.
template <typename From, typename To>
class ZelRegNameCache {
public:
    const To* Find(std::basic_string_view<From> text) const {
        const Entry& entry = entries_[SlotOf(text)];
        return entry.used && entry.from == text ? &entry.to : nullptr;
    }
    const To& Put(std::basic_string_view<From> text, To converted) {
        Entry& entry = entries_[SlotOf(text)];
        entry.from.assign(text);
        entry.to = std::move(converted);
        entry.used = true;
        return entry.to;
    }

private:
    static constexpr size_t kEntries = 64;
    static size_t SlotOf(std::basic_string_view<From> text) { return ZelNameHash(text) % kEntries; }
    struct Entry {
        std::basic_string<From> from;
        To to;
        bool used = false;
    };
    Entry entries_[kEntries];
};

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
    // Into text, which holds kZelRegNameUnits units, as ZelAnsiToUnicode gives it with a buffer of
    // one unit more, up to its terminator.
    void Widen(const char* ansi, WCHAR* text) const;
    void WidenName(const char* ansi, WCHAR* text);

private:
    // Longer names are converted each time rather than remembered.
    static constexpr size_t kRememberedUnits = 64;

    DWORD codePage_;
    ZelRegNameCache<char16_t, std::string> narrowNames_;
    ZelRegNameCache<char, std::u16string> wideNames_;
};

#endif  // ZEL_SETTINGS_REGISTRY_FILE_FORMAT_H
