#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "system.h"

const int kOpenPlain = O_CLOEXEC;

std::string LibraryFileOf(const void* address) {
    Dl_info info{};
    if (!dladdr(address, &info) || !info.dli_fname) return {};
    char resolved[PATH_MAX];
    return realpath(info.dli_fname, resolved) ? resolved : "";
}

std::string VersionInLibraryName(const std::string& file) {
    const std::string marker = ".so.";
    const size_t at = file.rfind(marker);
    return at == std::string::npos ? "" : file.substr(at + marker.size());
}

bool FlushDescriptor(int fd) { return fsync(fd) == 0; }

void FlushDirectory(const std::string& directory) {
    const int fd = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    fsync(fd);
    close(fd);
}

bool ReplaceFileWith(const std::string& copy, const std::string& target) {
    return rename(copy.c_str(), target.c_str()) == 0;
}

const int* EndingSignals(int& count) {
    static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};
    count = 4;
    return kSignals;
}

void KeepRunningOverFileSizeLimit() { signal(SIGXFSZ, SIG_IGN); }

std::vector<std::string> StartCommand(int argc, char** argv) { return std::vector<std::string>(argv, argv + argc); }

int OpenByName(const std::string& path, int flags, int mode) { return open(path.c_str(), flags, mode); }

FILE* OpenStreamByName(const std::string& path, const char* mode) { return fopen(path.c_str(), mode); }
