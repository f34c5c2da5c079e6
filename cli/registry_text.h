// What zel reg reads and shows: key paths with their hive, values as text, and registry files.
#ifndef ZEL_CLI_REGISTRY_TEXT_H
#define ZEL_CLI_REGISTRY_TEXT_H

#include <zel/wintypes.h>

#include <string>
#include <vector>

struct RegistryPath {
    HKEY root = nullptr;
    std::u16string path;  // below the hive, without a leading backslash
    std::string text;     // as the user wrote it
};

// "HKCU\a\b", "HKEY_LOCAL_MACHINE\x", "HKCR" ...; false for an unknown hive.
bool ParseRegistryPath(const std::string& text, RegistryPath& path);

// A value for the terminal: sz "text", dword 5 (0x00000005), binary 01 ff, or type N and its bytes.
// REG_SZ data is ANSI text, as the library stores it.
std::string DescribeValue(DWORD type, const std::vector<BYTE>& data);

// Pairs of hex digits, blanks allowed between pairs.
bool ParseHexBytes(const std::string& text, std::vector<BYTE>& bytes);

// The length of text in the ANSI code page, as the registry stores it, in bytes.
size_t AnsiBytes(const std::u16string& text);

// REG_SZ data as the registry's ANSI calls take it: UTF-8 text in the ANSI code page, up to its
// first zero, with the terminator.
std::vector<BYTE> AnsiSzData(const std::string& utf8);

// ANSI text of the registry as 16-bit text.
std::u16string AnsiToWide(const std::string& text);

struct RegistryFileValue {
    std::string name;
    DWORD type = 0;
    std::vector<BYTE> data;
};

struct RegistryFileSection {
    std::string path;
    std::vector<RegistryFileValue> values;
};

struct RegistryFile {
    std::string keyPath;
    std::vector<RegistryFileSection> sections;
};

// The whole file, or false with a sentence that says where and why it is broken: a file cut
// short, or a text longer than the 259 bytes that a load reads back.
bool ParseRegistryFile(const std::string& bytes, RegistryFile& file, std::string& problem);

#endif  // ZEL_CLI_REGISTRY_TEXT_H
