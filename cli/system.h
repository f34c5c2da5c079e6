// What zel needs of the system beyond the library and the C run-time, one body per system
// (system_posix.cpp, system_windows.cpp).
#ifndef ZEL_CLI_SYSTEM_H
#define ZEL_CLI_SYSTEM_H

#include <cstdio>
#include <string>
#include <vector>

// The flags of every file that zel opens: its bytes as they are, kept from the programs zel starts.
extern const int kOpenPlain;

// zel's arguments in UTF-8 as every system gets them, with the standard streams set to pass bytes
// as they are: a call at the start of main.
std::vector<std::string> StartCommand(int argc, char** argv);
// Files by their UTF-8 names.
int OpenByName(const std::string& path, int flags, int mode = 0);
FILE* OpenStreamByName(const std::string& path, const char* mode);

// The file of the library that holds address, with links resolved; empty when unknown.
std::string LibraryFileOf(const void* address);
// The version that the library's file name carries ("0.1.0"), or empty.
std::string VersionInLibraryName(const std::string& file);

// Flushes what was written through fd to the disk.
bool FlushDescriptor(int fd);
// Flushes the directory entry of a file just renamed, where the system needs that; an error
// there does not undo the rename.
void FlushDirectory(const std::string& directory);
// Puts copy in place of target in one step, target existing or not.
bool ReplaceFileWith(const std::string& copy, const std::string& target);

// Signals that end zel and after which the copy being written must go.
const int* EndingSignals(int& count);
// A file size limit makes a write fail, which zel reports, rather than end zel.
void KeepRunningOverFileSizeLimit();

#endif  // ZEL_CLI_SYSTEM_H
