// Modules with resource files beside them, in temporary directories, for the tests of resource
// files and the user's language.
#ifndef ZEL_TESTS_RESOURCE_FIXTURES_H
#define ZEL_TESTS_RESOURCE_FIXTURES_H

#include <zel/frame.h>

#include <string>
#include <vector>

#include "resource_file_writer.h"
#include "support/support.h"

namespace zeltest {

// A real loaded module, a copy of a small system library, at dir/relative (such as "m.so" or
// "p/Common/x.so"), so that its file name and directory are the test's own.
class ModuleInDir {
public:
    explicit ModuleInDir(const std::string& relative = "m.so");
    ~ModuleInDir();
    ModuleInDir(const ModuleInDir&) = delete;
    ModuleInDir& operator=(const ModuleInDir&) = delete;

    HMODULE handle() const { return handle_; }
    const TempDir& dir() const { return dir_; }
    // A file beside the module, in the system's form and in the library's.
    std::string SystemPath(const std::string& name) const;
    std::u16string LibraryPath(const std::string& name) const;
    // Writes name (such as "m.KOR") beside the module as a resource file with these strings.
    void WriteResources(const std::string& name, const zelres::StringTable& strings) const;

private:
    TempDir dir_;
    std::string directory_;
    HMODULE handle_ = nullptr;
};

// A resource file loaded as a data module.
class ResourceData {
public:
    explicit ResourceData(const zelres::StringTable& strings);
    explicit ResourceData(const std::vector<zelres::Resource>& resources);
    ~ResourceData();
    ResourceData(const ResourceData&) = delete;
    ResourceData& operator=(const ResourceData&) = delete;
    HMODULE handle() const { return handle_; }

private:
    TempDir dir_;
    HMODULE handle_ = nullptr;
};

// The system registry value of HKEY_CURRENT_USER or HKEY_LOCAL_MACHINE, set as a DWORD or as text;
// remove deletes it. Keys are made as needed.
void SetRegistryDword(HKEY root, const std::string& key, const std::string& name, DWORD value);
void SetRegistryText(HKEY root, const std::string& key, const std::string& name, const std::string& text);
void DeleteRegistryValue(HKEY root, const std::string& key, const std::string& name);

// Makes the process start over with the language: the caches are dropped, the suite's own setting
// for all applications is removed, and ZEL_LCID decides. False where the system fixes the language
// per process (Windows) and this one runs in another: the run in that language checks the case.
bool UseSystemLanguage(const char* lcid);

}  // namespace zeltest

#endif  // ZEL_TESTS_RESOURCE_FIXTURES_H
