// Feeds arbitrary bytes to the resource calls as a resource file loaded as a data module: as they
// come, and with a sound magic and version in front, so that the directory and the string blocks
// behind them get fuzzed too. Whatever is found must be readable within its size, and every
// string must come back within its buffer.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz_check.h"
#include "platform/common/modules/resource_file.h"
#include "platform/win32.h"

namespace {

// One file for the whole run, removed at its end.
struct TempFile {
    TempFile() {
        char name[] = "/tmp/fuzz_resource_file_XXXXXX";
        int fd = mkstemp(name);
        Check(fd >= 0);
        close(fd);
        path = name;
    }
    ~TempFile() { unlink(path.c_str()); }
    std::string path;
};

const std::string& FilePath() {
    static const TempFile file;
    return file.path;
}

void Probe(const uint8_t* data, size_t size) {
    FILE* file = std::fopen(FilePath().c_str(), "wb");
    Check(file && std::fwrite(data, 1, size, file) == size);
    std::fclose(file);
    HMODULE module = LoadLibraryExW(ZelPlatformPathFromSystem(FilePath().c_str()).c_str(), nullptr,
                                    LOAD_LIBRARY_AS_DATAFILE);
    Check(module != nullptr);

    // The first blocks, and the ones the library's own strings lie in.
    for (UINT block : {1u, 2u, 3u, 7u, 18u, 19u, 0x1000u, 0xFFFFu}) {
        HRSRC resource = FindResourceA(module, MAKEINTRESOURCEA(block), RT_STRING);
        if (!resource) {
            DWORD error = GetLastError();
            Check(error == ERROR_RESOURCE_DATA_NOT_FOUND || error == ERROR_BAD_FORMAT ||
                  error == ERROR_RESOURCE_TYPE_NOT_FOUND || error == ERROR_RESOURCE_NAME_NOT_FOUND);
            continue;
        }
        const DWORD length = SizeofResource(module, resource);
        const auto* bytes = static_cast<const uint8_t*>(LockResource(LoadResource(module, resource)));
        Check(bytes != nullptr);
        // A copy of exactly the resource's size, so that the walk's bound is checked by the sanitizer.
        std::vector<uint8_t> copy(bytes, bytes + length);
        Check(zelres::StringBlockValid(copy.data(), copy.size()));
        for (unsigned i = 0; i < 16; ++i) {
            const uint8_t* units = nullptr;
            size_t count = 0;
            zelres::StringInBlock(copy.data(), i, &units, &count);
            Check(units + 2 * count <= copy.data() + copy.size());
        }
    }
    for (UINT id : {0u, 1u, 15u, 16u, 102u, 111u, 275u, 299u, 0xFFF0u, 0xFFFFu}) {
        for (int size : {1, 2, 5, 128}) {
            Output<char> out(size);
            out.Verify(LoadStringA(module, id, out.data(), size));
        }
    }
    // Other types and a name in text.
    FindResourceA(module, MAKEINTRESOURCEA(1), MAKEINTRESOURCEA(3));
    FindResourceA(module, "#18", RT_STRING);
    Check(FreeLibrary(module));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Probe(data, size);
    std::vector<uint8_t> framed(zelres::kFileMagic, zelres::kFileMagic + sizeof zelres::kFileMagic);
    framed.push_back(zelres::kFormatVersion & 0xFF);
    framed.push_back(zelres::kFormatVersion >> 8);
    framed.insert(framed.end(), data, data + size);
    Probe(framed.data(), framed.size());
    return 0;
}
