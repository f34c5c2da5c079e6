// Writes resource files (layout in src/platform/common/modules/resource_file_layout.h) and reads the text
// sources they are compiled from. The resource compiler and the tests (which also break files on
// purpose) share it.
#ifndef ZEL_TOOLS_RESOURCE_FILE_WRITER_H
#define ZEL_TOOLS_RESOURCE_FILE_WRITER_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zelres {

struct Resource {
    uint32_t type;
    uint32_t id;
    std::vector<uint8_t> data;
};

// String id to its text; an empty text is the same as no string.
using StringTable = std::map<uint32_t, std::u16string>;

// One block of 16 strings: each a 16-bit length and its units. Texts past 16 are ignored, and a
// text longer than 0xFFFF units is cut.
std::vector<uint8_t> StringBlock(const std::vector<std::u16string>& strings);

// The blocks of a string table, one resource of type 6 for each block that holds a string.
std::vector<Resource> StringTableResources(const StringTable& strings);

// The whole file: header, comment, directory in the order given, data.
std::vector<uint8_t> ResourceFileBytes(const std::string& comment, const std::vector<Resource>& resources);

// False when the file can't be written.
bool WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes);

// A text source: UTF-8 lines "ID<blanks>text". Blank lines and lines that start with # are
// skipped. The text runs to the end of the line without trailing blanks, or is quoted with "..."
// to keep blanks at its ends. Escapes: \n \r \t \\ \" (a /uXXXX escape is plain text here: the
// library decodes it after loading). Ids are decimal, 0 to 65535, each once; texts aren't empty.
struct SourceError {
    int line = 0;
    std::string message;
};
bool ParseSource(const std::string& text, StringTable* strings, SourceError* error);

}  // namespace zelres

#endif  // ZEL_TOOLS_RESOURCE_FILE_WRITER_H
