#include "codetables/code_table_file.h"

#include <zel/paths.h>

#include <cstring>

#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

constexpr char kVersionKey[] = "Unicode version : ";  // 18 characters
constexpr char kCountKey[] = "Data count : ";         // 13 characters

bool StartsWithNoCase(const uint8_t* line, size_t length, const char* key) {
    size_t keyLength = std::strlen(key);
    if (length < keyLength) return false;
    for (size_t i = 0; i < keyLength; ++i) {
        unsigned char a = line[i], b = static_cast<unsigned char>(key[i]);
        if (a >= 'A' && a <= 'Z') a = static_cast<unsigned char>(a + 32);
        if (b >= 'A' && b <= 'Z') b = static_cast<unsigned char>(b + 32);
        if (a != b) return false;
    }
    return true;
}

// The digits of the text as one decimal number, everything else dropped: "3.2.0" reads 320.
DWORD DigitsOf(const uint8_t* text, size_t length) {
    uint64_t value = 0;
    for (size_t i = 0; i < length; ++i) {
        if (text[i] < '0' || text[i] > '9') continue;
        value = value * 10 + (text[i] - '0');
        if (value > 0xFFFFFFFFu) value = 0xFFFFFFFFu;
    }
    return static_cast<DWORD>(value);
}

// One read of the back end; an error (-1) counts as nothing read.
DWORD ReadSome(CZelIOFileDesc& file, void* buffer, DWORD size) {
    DWORD got = file.ReadBlock(buffer, size);
    return got > size ? 0 : got;
}

// Fills buffer as far as the file goes; gives the bytes read.
DWORD ReadFully(CZelIOFileDesc& file, uint8_t* buffer, DWORD size) {
    DWORD total = 0;
    while (total < size) {
        DWORD got = ReadSome(file, buffer + total, size - total);
        if (got == 0) break;
        total += got;
    }
    return total;
}

template <typename T>
DWORD ReadElements(CZelIOFileDesc& file, DWORD offset, T* elements, DWORD count) {
    if (count == 0 || offset > 0x7FFFFFFFu || !file.SeekFromBegin(static_cast<LONG>(offset))) return 0;
    uint8_t chunk[4096];
    constexpr DWORD kPerChunk = sizeof chunk / sizeof(T);
    DWORD done = 0;
    while (done < count) {
        DWORD want = count - done < kPerChunk ? count - done : kPerChunk;
        DWORD got = ReadFully(file, chunk, want * sizeof(T)) / sizeof(T);
        for (DWORD i = 0; i < got; ++i) {
            T value = 0;
            for (size_t b = 0; b < sizeof(T); ++b) value = static_cast<T>(value | (T(chunk[i * sizeof(T) + b]) << (8 * b)));
            elements[done + i] = value;
        }
        done += got;
        if (got < want) break;  // the end of the file: the rest keeps its fill value
    }
    return done;
}

}  // namespace

bool ZelParseTableHeader(const uint8_t* bytes, size_t size, int number, ZelTableHeader* header) {
    bool versionMatched = false;
    size_t lineStart = 0;
    for (size_t i = 0; i < size; ++i) {
        if (bytes[i] != '\n') continue;
        const uint8_t* line = bytes + lineStart;
        size_t length = i - lineStart;
        lineStart = i + 1;  // the running length: every line so far plus its line feed
        if (StartsWithNoCase(line, length, kVersionKey)) {
            if (number < 0 || DigitsOf(line + 18, length - 18) != static_cast<DWORD>(number)) return false;
            versionMatched = true;
        } else if (StartsWithNoCase(line, length, kCountKey)) {
            if (!versionMatched) return false;
            header->count = DigitsOf(line + 13, length - 13);
            header->payloadOffset = static_cast<DWORD>(lineStart);
            return true;
        }
    }
    return false;
}

bool ZelReadTableHeader(CZelIOFileDesc& file, int number, ZelTableHeader* header) {
    uint8_t bytes[kZelTableHeaderLimit];
    if (!file.SeekFromBegin(0)) return false;
    DWORD size = ReadFully(file, bytes, sizeof bytes);
    return size > 0 && ZelParseTableHeader(bytes, size, number, header);
}

DWORD ZelTableElementsInFile(CZelIOFileDesc& file, DWORD offset, DWORD elementSize) {
    LONG length = file.GetFileSize();
    if (length < 0 || static_cast<DWORD>(length) <= offset || elementSize == 0) return 0;
    return (static_cast<DWORD>(length) - offset) / elementSize;
}

DWORD ZelReadTableWords(CZelIOFileDesc& file, DWORD offset, WORD* elements, DWORD count) {
    return ReadElements(file, offset, elements, count);
}

DWORD ZelReadTableDwords(CZelIOFileDesc& file, DWORD offset, DWORD* elements, DWORD count) {
    return ReadElements(file, offset, elements, count);
}

int ZelOpenTableFileWide(const WCHAR* path) {
    int descriptor = u__wopen(path, _O_RDONLY | _O_BINARY);
    return descriptor < 0 ? -1 : descriptor;
}

int ZelOpenTableFileNarrow(const WCHAR* path) {
    char narrow[MAX_PATH * 3 + 4];  // three bytes a unit plus four
    size_t length = wcslen(path);
    if (length >= MAX_PATH) return -1;
    int written = WideCharToMultiByte(CP_ACP, 0, path, -1, narrow, static_cast<int>(length * 3 + 4), nullptr, nullptr);
    if (written <= 0) return -1;
    narrow[sizeof narrow - 1] = '\0';
    int descriptor = crt::_open(narrow, _O_RDONLY | _O_BINARY);
    return descriptor < 0 ? -1 : descriptor;
}

void ZelCloseTableFile(int descriptor) {
    if (descriptor >= 0) crt::_close(descriptor);
}
