#include "support/resource_fixtures.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "frame/resource_lookup.h"
#include "platform/win32.h"
#include "support/system.h"

namespace zeltest {

namespace {

std::string SystemLibraryPath() {
    HMODULE math = LoadLibraryA("libm.so.6");
    WCHAR name[MAX_PATH] = {};
    GetModuleFileNameW(math, name, MAX_PATH);
    FreeLibrary(math);
    return ZelPlatformPathToSystem(name);
}

HKEY OpenOrCreate(HKEY root, const std::string& key) {
    HKEY handle = nullptr;
    DWORD disposition = 0;
    LONG status = RegCreateKeyExA(root, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &handle, &disposition);
    if (status == ERROR_CHILD_MUST_BE_VOLATILE)  // below the volatile key of the user locales
        status = RegCreateKeyExA(root, key.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &handle,
                                 &disposition);
    EXPECT_EQ(status, ERROR_SUCCESS) << key;
    return handle;
}

}  // namespace

ModuleInDir::ModuleInDir(const std::string& relative) {
    const std::filesystem::path target = dir_.path() + "/" + relative;
    std::filesystem::create_directories(target.parent_path());
    std::filesystem::copy_file(SystemLibraryPath(), target);
    directory_ = target.parent_path().string();
    handle_ = LoadLibraryW(ZelPlatformPathFromSystem(target.string().c_str()).c_str());
    EXPECT_NE(handle_, nullptr) << target;
}

ModuleInDir::~ModuleInDir() {
    if (handle_) FreeLibrary(handle_);
}

std::string ModuleInDir::SystemPath(const std::string& name) const { return directory_ + "/" + name; }

std::u16string ModuleInDir::LibraryPath(const std::string& name) const {
    return ZelPlatformPathFromSystem(SystemPath(name).c_str());
}

void ModuleInDir::WriteResources(const std::string& name, const zelres::StringTable& strings) const {
    ASSERT_TRUE(zelres::WriteBytes(SystemPath(name),
                                   zelres::ResourceFileBytes("test", zelres::StringTableResources(strings))));
}

ResourceData::ResourceData(const zelres::StringTable& strings) : ResourceData(zelres::StringTableResources(strings)) {}

ResourceData::ResourceData(const std::vector<zelres::Resource>& resources) {
    EXPECT_TRUE(zelres::WriteBytes(dir_.file("r.KOR"), zelres::ResourceFileBytes("test", resources)));
    handle_ = LoadLibraryExW(ZelPlatformPathFromSystem(dir_.file("r.KOR").c_str()).c_str(), nullptr,
                             LOAD_LIBRARY_AS_DATAFILE);
    EXPECT_NE(handle_, nullptr);
}

ResourceData::~ResourceData() {
    if (handle_) FreeLibrary(handle_);
}

void SetRegistryDword(HKEY root, const std::string& key, const std::string& name, DWORD value) {
    HKEY handle = OpenOrCreate(root, key);
    EXPECT_EQ(RegSetValueExA(handle, name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value),
              ERROR_SUCCESS);
    RegCloseKey(handle);
}

void SetRegistryText(HKEY root, const std::string& key, const std::string& name, const std::string& text) {
    HKEY handle = OpenOrCreate(root, key);
    EXPECT_EQ(RegSetValueExA(handle, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                             static_cast<DWORD>(text.size() + 1)),
              ERROR_SUCCESS);
    RegCloseKey(handle);
}

void DeleteRegistryValue(HKEY root, const std::string& key, const std::string& name) {
    HKEY handle = nullptr;
    if (RegOpenKeyA(root, key.c_str(), &handle) != ERROR_SUCCESS) return;
    RegDeleteValueA(handle, name.c_str());
    RegCloseKey(handle);
}

bool UseSystemLanguage(const char* lcid) {
    DeleteRegistryValue(HKEY_CURRENT_USER, "Software\\Morvalis\\Global Settings\\User Locales", "LCID");
    zeltest::SetEnvironment("ZEL_LCID", lcid);
    ZelForgetLocaleCaches();
    return LocaleSettingIs("ZEL_LCID", lcid);
}

}  // namespace zeltest
