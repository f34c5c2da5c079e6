// Writes code table files: a text header and a little-endian payload. The generator of the
// shipped tables and the tests (which also make broken files on purpose) share it.
#ifndef ZEL_TOOLS_CODE_TABLE_WRITER_H
#define ZEL_TOOLS_CODE_TABLE_WRITER_H

#include <cstdint>
#include <string>
#include <vector>

namespace zeltables {

struct Header {
    std::vector<std::string> before;    // lines in front of the version line
    bool versionLine = true;
    std::string version = "3.2.0";      // after "Unicode version : "
    std::vector<std::string> between;   // lines between the version and the count lines
    bool countLine = true;
    std::string count;                  // after "Data count : "; empty: the number of elements given
    std::string lineEnd = "\n";         // "\r\n" for carriage returns
};

// dir/u%03d_%s.dat (dir in the system's form).
std::string FileName(const std::string& directory, int number, const std::string& kind);

// Payloads: 16-bit and 32-bit elements, little-endian.
std::vector<uint8_t> Payload16(const std::vector<uint16_t>& elements);
std::vector<uint8_t> Payload32(const std::vector<uint32_t>& elements);

// Writes header and payload; elementCount fills an empty Header::count. False when the file
// can't be written.
bool WriteFile(const std::string& path, const Header& header, size_t elementCount, const std::vector<uint8_t>& payload);

}  // namespace zeltables

#endif  // ZEL_TOOLS_CODE_TABLE_WRITER_H
