// The code table files in the library's Code directory, as zel codetables and zel --version list them.
#ifndef ZEL_CLI_CODE_TABLE_FILES_H
#define ZEL_CLI_CODE_TABLE_FILES_H

#include <string>
#include <vector>

struct CodeTableFile {
    std::string name;    // u320_gen.dat
    std::string number;  // 320
    std::string kind;    // gen
};

// The directory ${Common}\Code as the library names it, and the files u???_*.dat found in it.
std::string CodeTableDirectory();
std::vector<CodeTableFile> CodeTableFiles();

#endif  // ZEL_CLI_CODE_TABLE_FILES_H
