// Where the registry's files live. Both directories are worked out on every call from the
// environment, so a process (or a test) that changes ZEL_REGISTRY_DIR gets the other registry at once.
#include <pwd.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "platform/posix/registry/registry_store.h"

namespace zelreg {
namespace {

std::string Env(const char* name) {
    const char* value = getenv(name);
    return value ? value : "";
}

std::string HomeDirectory() {
    std::string home = Env("HOME");
    if (!home.empty()) return home;
    struct passwd entry;
    struct passwd* found = nullptr;
    char buffer[4096];
    if (getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &found) == 0 && found && found->pw_dir)
        return found->pw_dir;
    return "/";
}

std::string Absolute(const std::string& path) {
    if (path.empty() || path[0] == '/') return path;
    char buffer[4096];
    if (!getcwd(buffer, sizeof buffer)) return path;
    return std::string(buffer) + "/" + path;
}

}  // namespace

std::string RegistryDirectory() {
    std::string dir = Env("ZEL_REGISTRY_DIR");
    if (!dir.empty()) return dir;
    // A configuration home that is not absolute is to be ignored.
    std::string config = Env("XDG_CONFIG_HOME");
    if (config.empty() || config[0] != '/') config = HomeDirectory() + "/.config";
    return config + "/Morvalis/registry";
}

std::string VolatileDirectory(const std::string& registryDirectory) {
    std::string base = Env("XDG_RUNTIME_DIR");
    if (base.empty() || base[0] != '/') {
        base = Env("TMPDIR");
        if (base.empty() || base[0] != '/') base = "/tmp";
    }
    // One directory for each registry directory, so that two registries never share volatile keys;
    // the user's id keeps users apart in a shared temporary directory.
    uint64_t hash = 0xcbf29ce484222325ull;
    for (unsigned char c : Absolute(registryDirectory)) {
        hash ^= c;
        hash *= 0x100000001b3ull;
    }
    char name[64];
    snprintf(name, sizeof name, "zel-registry-%u-%016llx", static_cast<unsigned>(getuid()),
             static_cast<unsigned long long>(hash));
    return base + "/" + name;
}

}  // namespace zelreg
