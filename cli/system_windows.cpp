// The system's own header stays in this file: its types would clash with the library's.
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <csignal>
#include <cstdlib>

#include "system.h"

const int kOpenPlain = _O_NOINHERIT | _O_BINARY;

namespace {

std::string Utf8(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 0) return {};
    std::string bytes(size_t(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes.data(), size, nullptr, nullptr);
    bytes.resize(size_t(size) - 1);
    return bytes;
}

std::wstring Wide(const std::string& text) {
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, nullptr, 0);
    if (size <= 0) return {};
    std::wstring wide(size_t(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, wide.data(), size);
    wide.resize(size_t(size) - 1);
    return wide;
}

}  // namespace

std::string LibraryFileOf(const void* address) {
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<LPCWSTR>(address), &module))
        return {};
    wchar_t name[32768];
    const DWORD length = GetModuleFileNameW(module, name, 32768);
    return length == 0 || length >= 32768 ? "" : Utf8(name);
}

// A library on Windows carries its version in its resources, not in its name.
std::string VersionInLibraryName(const std::string&) { return {}; }

bool FlushDescriptor(int fd) { return _commit(fd) == 0; }

// The file system keeps its directory entries in its journal: nothing to flush.
void FlushDirectory(const std::string&) {}

bool ReplaceFileWith(const std::string& copy, const std::string& target) {
    return MoveFileExW(Wide(copy).c_str(), Wide(target).c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

const int* EndingSignals(int& count) {
    static constexpr int kSignals[] = {SIGINT, SIGTERM};
    count = 2;
    return kSignals;
}

// Windows has no file size limit signal.
void KeepRunningOverFileSizeLimit() {}

// The run-time's narrow arguments are in the ANSI code page: the wide ones hold every name.
std::vector<std::string> StartCommand(int argc, char** argv) {
    for (FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
    std::vector<std::string> args;
    int count = 0;
    if (wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count)) {
        for (int i = 0; i < count; ++i) args.push_back(Utf8(wide[i]));
        LocalFree(wide);
    }
    if (args.size() != size_t(argc)) args.assign(argv, argv + argc);
    return args;
}

int OpenByName(const std::string& path, int flags, int mode) { return _wopen(Wide(path).c_str(), flags, mode); }

FILE* OpenStreamByName(const std::string& path, const char* mode) {
    return _wfopen(Wide(path).c_str(), Wide(mode).c_str());
}
