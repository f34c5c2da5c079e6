// A temporary file for a benchmark to save into and load from, removed at the end.
#ifndef ZEL_BENCH_TEMP_FILE_H
#define ZEL_BENCH_TEMP_FILE_H

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/win32.h"

struct BenchFile {
    BenchFile() {
        char name[] = "/tmp/zel_bench_XXXXXX";
        const int fd = mkstemp(name);
        if (fd < 0) std::abort();
        close(fd);
        onDisk = name;
        path = ZelPlatformPathFromSystem(name);
    }
    ~BenchFile() { std::remove(onDisk.c_str()); }
    BenchFile(const BenchFile&) = delete;
    BenchFile& operator=(const BenchFile&) = delete;

    std::string onDisk;
    std::u16string path;  // in the library's form
};

#endif  // ZEL_BENCH_TEMP_FILE_H
