// The reader of resource files (layout in resource_file_layout.h). It works on the bytes of a data
// module and never reads outside them: every offset and size is checked against the file before
// it is followed.
#ifndef ZEL_PLATFORM_COMMON_RESOURCE_FILE_H
#define ZEL_PLATFORM_COMMON_RESOURCE_FILE_H

#include <cstddef>
#include <cstdint>

#include "platform/common/modules/resource_file_layout.h"

namespace zelres {

enum class Lookup {
    Found,
    NotAResourceFile,  // too short for the header, or another magic or version
    Damaged,           // the directory, an entry or a string block reaches outside its bounds
    TypeNotFound,
    NameNotFound,
};

struct Entry {
    size_t place;  // offset of the directory entry in the file
    uint32_t type;
    uint32_t id;
    uint32_t offset;
    uint32_t size;
};

// Checks the header and the whole directory, then finds the first entry of that type and id. A
// string block found is checked too, so that a walk over its 16 strings stays inside it.
Lookup FindEntry(const uint8_t* file, size_t fileSize, uint32_t type, uint32_t id, Entry* found);

// The entry whose directory record starts at place, if the file is sound and place is the start
// of one of its records.
bool EntryAt(const uint8_t* file, size_t fileSize, size_t place, Entry* entry);

// Whether a string block holds its 16 strings within size bytes.
bool StringBlockValid(const uint8_t* block, size_t size);

// String index (0 to 15) of a sound block: where its units start and how many there are.
void StringInBlock(const uint8_t* block, unsigned index, const uint8_t** units, size_t* length);

}  // namespace zelres

#endif  // ZEL_PLATFORM_COMMON_RESOURCE_FILE_H
