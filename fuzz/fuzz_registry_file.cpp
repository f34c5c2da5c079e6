// Arbitrary bytes as a registry file, loaded into the in-memory tree. The load may stop anywhere
// but must not read or write past a buffer. Afterwards every key below the current user's hive
// goes, so each run starts from an empty hive whatever paths the input named.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <zel/settings.h>

#include "fuzz_check.h"
#include "platform/win32.h"

namespace {

// The input's file, in the library's form of the path and on disk.
struct InputFile {
    InputFile() {
        char name[] = "/tmp/fuzz_registry_file_XXXXXX";
        const int fd = mkstemp(name);
        Check(fd >= 0);
        close(fd);
        onDisk = name;
        path = ZelPlatformPathFromSystem(name);
    }
    ~InputFile() { std::remove(onDisk.c_str()); }
    std::string onDisk;
    std::u16string path;
};

void ClearHive() {
    CZelRegistry reg(1);
    WCHAR name[MAX_PATH];
    while (ZelRegEnumKey(HKEY_CURRENT_USER, 0, name, MAX_PATH, 1) == ERROR_SUCCESS)
        Check(reg.DeleteSubKey(name, nullptr, HKEY_CURRENT_USER) == 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static InputFile file;
    FILE* stream = std::fopen(file.onDisk.c_str(), "wb");
    Check(stream != nullptr);
    Check(std::fwrite(data, 1, size, stream) == size);
    std::fclose(stream);

    CZelRegistry reg(1);
    const int result = reg.LoadFromFile(file.path.c_str());
    Check(result == 0 || result == 1);
    ClearHive();
    return 0;
}
