// Bounded helpers on plain byte strings: a character is one byte, whatever the code page.
#include <zel/strings.h>

#include <cctype>

#include "strings/bounded_units.h"

namespace {
// Only bytes below 0x80 can be white space, so a byte of 0x80 or above ends a trim whatever the
// process locale says of it.
bool IsSpace(char c) {
    auto byte = static_cast<unsigned char>(c);
    return byte < 0x80 && std::isspace(byte);
}
}  // namespace

int sstrlcpy(char* dest, const char* src, int size) { return zelbounded::Copy(dest, src, size); }

int sstrlcat(char* dest, const char* src, int size) {
    return zelbounded::Append(dest, src, size, zelbounded::Copy<char>);
}

int sstrcut(char* s, int size) { return zelbounded::Cut(s, size); }

int sstrtriml(char* s) { return zelbounded::TrimLeft(s, IsSpace); }

int sstrtrimr(char* s) { return zelbounded::TrimRight(s, IsSpace); }
