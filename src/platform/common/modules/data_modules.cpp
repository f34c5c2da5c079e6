// Modules loaded as data files: a file's bytes in memory under a handle whose low bit is set, as
// Win32 marks data files. A handle is known by its record's address in the list of those loaded.
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <vector>

#include "platform/common/modules/data_modules.h"
#include "platform/process_object.h"

namespace {

struct DataModule {
    ZelDataModule view;
    std::vector<BYTE> bytes;
    unsigned references;
};

constinit ZelProcessObjectLock dataLock;
// The data modules still loaded; the library's entry loads its resource file at attach and frees
// it at detach. Those a program never freed go with the library.
struct DataModuleList {
    std::vector<DataModule*> modules;
    DataModuleList() = default;
    DataModuleList(const DataModuleList&) = delete;
    DataModuleList& operator=(const DataModuleList&) = delete;
    ~DataModuleList() {
        for (DataModule* module : modules) delete module;
    }
};
constinit ZelProcessObject<DataModuleList> dataModules;
std::vector<DataModule*>& DataModules() { return dataModules->modules; }

DataModule* FindData(HMODULE module) {
    if (!ZelPlatformHasDataMark(module)) return nullptr;
    auto* record = reinterpret_cast<DataModule*>(reinterpret_cast<uintptr_t>(module) & ~uintptr_t{1});
    for (DataModule* m : DataModules())
        if (m == record) return m;
    return nullptr;
}

HMODULE DataHandle(DataModule* m) { return reinterpret_cast<HMODULE>(reinterpret_cast<uintptr_t>(m) | 1); }

}  // namespace

HMODULE ZelPlatformLoadDataModule(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return nullptr;
    }
    auto* m = new DataModule{};
    m->bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    m->view = {m->bytes.data(), m->bytes.size()};
    m->references = 1;
    std::lock_guard<ZelProcessObjectLock> guard(dataLock);
    DataModules().push_back(m);
    return DataHandle(m);
}

bool ZelPlatformIsDataModule(HMODULE module) {
    std::lock_guard<ZelProcessObjectLock> guard(dataLock);
    return FindData(module) != nullptr;
}

bool ZelPlatformFreeDataModule(HMODULE module) {
    std::lock_guard<ZelProcessObjectLock> guard(dataLock);
    DataModule* m = FindData(module);
    if (!m) return false;
    if (--m->references == 0) {
        std::erase(DataModules(), m);
        delete m;
    }
    return true;
}

const ZelDataModule* ZelPlatformDataModule(HMODULE module) {
    std::lock_guard<ZelProcessObjectLock> guard(dataLock);
    DataModule* m = FindData(module);
    return m ? &m->view : nullptr;
}
