// What the benchmarks that read code tables share: stopping with a message, and the tables of the
// build, which lie in lib/Code beside the library while the benchmark programs sit in bench/.
#ifndef ZEL_BENCH_BENCH_TABLES_H
#define ZEL_BENCH_BENCH_TABLES_H

#include <unistd.h>
#include <zel/paths.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/win32.h"

[[noreturn]] inline void Fail(const std::string& what) {
    std::fprintf(stderr, "%s\n", what.c_str());
    std::exit(1);
}

// Registers the build's lib directory as Common and gives its path in the system's form.
inline std::string RegisterTablesOfTheBuild() {
    char self[4096];
    const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    if (n <= 0) Fail("cannot find this program's directory");
    std::string root(self, size_t(n));
    root = root.substr(0, root.rfind('/'));
    root = root.substr(0, root.rfind('/')) + "/lib";
    ZelUnregisterPath(u"Common");
    if (!ZelRegisterPath(u"Common", ZelPlatformPathFromSystem(root.c_str()).c_str())) Fail("cannot register " + root);
    return root;
}

#endif  // ZEL_BENCH_BENCH_TABLES_H
