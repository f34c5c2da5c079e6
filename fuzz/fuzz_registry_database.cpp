// Opens the registry on arbitrary bytes as a hive's database, as they come and behind a valid
// database header (so that SQLite reads on into the pages), and checks what the registry promises
// of any file there: the call answers, a damaged file is set aside, and a write afterwards works
// and reads back.
#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>

#include "fuzz_check.h"
#include "platform/win32.h"

namespace {

const std::string& Directory() {
    static auto& dir = *new std::string([] {
        char name[] = "/tmp/zel_fuzz_registry_XXXXXX";
        Check(mkdtemp(name) != nullptr);
        return std::string(name);
    }());
    return dir;
}

void Write(const std::string& path, const uint8_t* data, size_t size) {
    FILE* file = fopen(path.c_str(), "wb");
    Check(file != nullptr);
    if (size) Check(fwrite(data, 1, size, file) == size);
    fclose(file);
}

void OpenOn(const uint8_t* data, size_t size, bool withHeader) {
    static int round = 0;
    // A directory of its own each round: the registry opens its databases again when it changes.
    const std::string registry = Directory() + "/r" + std::to_string(round++ % 2);
    std::filesystem::remove_all(registry);
    std::filesystem::create_directories(registry);
    std::string bytes(reinterpret_cast<const char*>(data), size);
    if (withHeader) {
        // SQLite's header: the magic, a 4096-byte page, file format 2 (WAL), and enough pages.
        std::string header("SQLite format 3\0", 16);
        header += std::string("\x10\x00\x02\x02\x00\x40\x20\x20", 8);
        header.resize(100, '\0');
        header[31] = 8;  // pages in the file
        bytes = header + bytes;
    }
    Write(registry + "/current_user.db", reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    setenv("ZEL_REGISTRY_DIR", registry.c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (Directory() + "/run").c_str(), 1);

    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, u"Software", 0, KEY_READ, &key) == ERROR_SUCCESS) {
        WCHAR name[256];
        for (DWORD i = 0; i < 4 && RegEnumKeyW(key, i, name, 256) == ERROR_SUCCESS; ++i) {
        }
        RegCloseKey(key);
    }
    Check(RegCreateKeyExW(HKEY_CURRENT_USER, u"Software\\Fuzz", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                          nullptr) == ERROR_SUCCESS);
    const DWORD value = 7;
    Check(RegSetValueExW(key, u"v", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value) ==
          ERROR_SUCCESS);
    DWORD read = 0, readSize = sizeof read;
    Check(RegQueryValueExW(key, u"v", nullptr, nullptr, reinterpret_cast<BYTE*>(&read), &readSize) == ERROR_SUCCESS);
    Check(read == value);
    RegCloseKey(key);
}

}  // namespace

// Every database set aside says so on standard error: run with -close_fd_mask=2 for quiet.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    OpenOn(data, size, false);
    OpenOn(data, size, true);
    return 0;
}
