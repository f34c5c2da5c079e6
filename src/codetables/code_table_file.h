// Reading one code table file: the text header in front, then the little-endian payload.
#ifndef ZEL_CODETABLES_CODE_TABLE_FILE_H
#define ZEL_CODETABLES_CODE_TABLE_FILE_H

#include <zel/streams.h>
#include <zel/wintypes.h>

#include <cstddef>
#include <cstdint>

// The header lies within this many bytes from the start of the file.
constexpr DWORD kZelTableHeaderLimit = 640;

struct ZelTableHeader {
    DWORD count = 0;          // the "Data count" value, saturated at 0xFFFFFFFF
    DWORD payloadOffset = 0;  // the byte after the line feed of the count line
};

// Walks the header lines in bytes; true when a "Unicode version" line that matches number came
// before a "Data count" line. Only lines ended by a line feed count.
bool ZelParseTableHeader(const uint8_t* bytes, size_t size, int number, ZelTableHeader* header);

// Reads the first bytes of the file and parses them; false also when nothing could be read.
bool ZelReadTableHeader(CZelIOFileDesc& file, int number, ZelTableHeader* header);

// Whole elements of elementSize bytes that the file holds from offset on.
DWORD ZelTableElementsInFile(CZelIOFileDesc& file, DWORD offset, DWORD elementSize);

// Read count little-endian elements from offset on. An element that can't be read whole keeps
// what stands in its place. Gives the number read whole.
DWORD ZelReadTableWords(CZelIOFileDesc& file, DWORD offset, WORD* elements, DWORD count);
DWORD ZelReadTableDwords(CZelIOFileDesc& file, DWORD offset, DWORD* elements, DWORD count);

// Open read-only in binary mode: by the wide path through u__wopen, or by its narrow form in the
// system's ANSI code page through _open (for the code page tables, whose load must not convert
// by way of the code page front end). -1 on failure.
int ZelOpenTableFileWide(const WCHAR* path);
int ZelOpenTableFileNarrow(const WCHAR* path);
void ZelCloseTableFile(int descriptor);

#endif  // ZEL_CODETABLES_CODE_TABLE_FILE_H
