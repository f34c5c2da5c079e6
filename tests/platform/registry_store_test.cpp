// The registry on disk: what lasts past a process, what processes share, volatile keys, damaged
// files, failed writes and saved keys.
#include <dirent.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/posix/registry_files.h"
#include "platform/posix/registry_format.h"
#include "registry_fixture.h"

using RegistryStore = RegistryTest;
using Names = std::vector<std::u16string>;

namespace {

// Whether bytes hold name as UTF-16 text, as the hive files store names.
bool HoldsName(const std::string& bytes, const std::u16string& name) {
    std::string needle(reinterpret_cast<const char*>(name.data()), name.size() * sizeof(char16_t));
    return bytes.find(needle) != std::string::npos;
}

std::vector<std::string> FilesIn(const std::string& dir) {
    std::vector<std::string> names;
    if (DIR* d = opendir(dir.c_str())) {
        while (dirent* entry = readdir(d))
            if (entry->d_name[0] != '.') names.push_back(entry->d_name);
        closedir(d);
    }
    std::sort(names.begin(), names.end());
    return names;
}

// Makes every file write fail as a full disk does, for the guard's lifetime.
struct FailingWrites {
    FailingWrites() {
        zelreg::g_writeFile = [](int, const void*, size_t) -> ssize_t {
            errno = ENOSPC;
            return -1;
        };
    }
    ~FailingWrites() { zelreg::g_writeFile = &::write; }
};

}  // namespace

TEST_F(RegistryStore, WhatAChildProcessWritesReachesTheParentsOpenHandle) {
    HKEY shared = Create(u"Software\\Shared");
    ASSERT_EQ(SetDword(shared, u"before", 1), ERROR_SUCCESS);
    int status = zeltest::RunInChild([] {
        HKEY key = nullptr;
        if (RegCreateKeyExW(HKEY_CURRENT_USER, u"Software\\Shared\\FromChild", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                            &key, nullptr) != ERROR_SUCCESS)
            return 1;
        return SetText(key, u"said", u"hello") == ERROR_SUCCESS ? 0 : 2;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(SubKeys(shared), Names{u"FromChild"});
    EXPECT_EQ(ValueNames(shared), Names{u"before"});
    HKEY child = nullptr;
    ASSERT_EQ(RegOpenKeyExW(shared, u"fromchild", 0, KEY_READ, &child), ERROR_SUCCESS);
    EXPECT_EQ(GetText(child, u"said"), u"hello");
    RegCloseKey(child);
    RegCloseKey(shared);
    EXPECT_TRUE(HoldsName(zeltest::ReadFile(HiveFile()), u"FromChild"));
}

TEST_F(RegistryStore, TwoProcessesWritingAtOnceLoseNoValue) {
    constexpr int kPerWriter = 40;
    RegCloseKey(Create(u"Software\\Race"));
    int gate[2];
    ASSERT_EQ(pipe(gate), 0);
    pid_t writers[2];
    for (int w = 0; w < 2; ++w) {
        fflush(nullptr);
        writers[w] = fork();
        ASSERT_GE(writers[w], 0);
        if (writers[w] == 0) {
            close(gate[1]);
            char byte;
            (void)!read(gate[0], &byte, 1);  // both start when the gate closes
            HKEY key = nullptr;
            int failures = RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\Race", 0, KEY_ALL_ACCESS, &key) != 0;
            for (int i = 0; i < kPerWriter; ++i) {
                std::u16string name = u"w" + Number(w) + u"-" + Number(i);
                failures += SetDword(key, name.c_str(), static_cast<DWORD>(w * 1000 + i)) != ERROR_SUCCESS;
            }
            _exit(failures ? 1 : 0);
        }
    }
    close(gate[0]);
    close(gate[1]);
    for (pid_t pid : writers) {
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }

    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\Race", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(ValueNames(key).size(), 2u * kPerWriter);
    for (int w = 0; w < 2; ++w)
        for (int i = 0; i < kPerWriter; ++i) {
            std::u16string name = u"w" + Number(w) + u"-" + Number(i);
            DWORD value = 0, size = sizeof value;
            ASSERT_EQ(RegQueryValueExW(key, name.c_str(), nullptr, nullptr, reinterpret_cast<LPBYTE>(&value), &size),
                      ERROR_SUCCESS);
            EXPECT_EQ(value, static_cast<DWORD>(w * 1000 + i));
        }
    RegCloseKey(key);
}

TEST_F(RegistryStore, WithoutADirectoryNamedTheHivesGoBelowTheConfigurationHome) {
    zeltest::ScopedEnv noDirectory("ZEL_REGISTRY_DIR", std::nullopt);
    zeltest::ScopedEnv config("XDG_CONFIG_HOME", dir_.file("config"));
    RegCloseKey(Create(u"Software\\Default"));
    EXPECT_TRUE(HoldsName(zeltest::ReadFile(dir_.file("config/Morvalis/registry/current_user.hive")), u"Default"));
}

TEST_F(RegistryStore, VolatileKeysStayOutOfTheHiveFileYetOtherProcessesSeeThem) {
    HKEY fleeting = Create(u"Software\\Fleeting", REG_OPTION_VOLATILE);
    ASSERT_EQ(SetText(fleeting, u"Mood", u"passing"), ERROR_SUCCESS);
    RegCloseKey(Create(u"Software\\Made\\Transient", REG_OPTION_VOLATILE));
    RegCloseKey(fleeting);

    std::string hive = zeltest::ReadFile(HiveFile());
    EXPECT_FALSE(HoldsName(hive, u"Fleeting"));
    EXPECT_FALSE(HoldsName(hive, u"Mood"));
    EXPECT_FALSE(HoldsName(hive, u"Transient"));
    EXPECT_TRUE(HoldsName(hive, u"Made"));  // the parent made on the way lasts

    EXPECT_EQ(zeltest::RunInChild([] {
                  HKEY key = nullptr;
                  if (RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\Fleeting", 0, KEY_READ, &key) != ERROR_SUCCESS)
                      return 1;
                  return GetText(key, u"Mood") == u"passing" ? 0 : 2;
              }),
              0);
    // Another registry directory has volatile keys of its own.
    zeltest::TempDir other;
    zeltest::ScopedEnv otherRegistry("ZEL_REGISTRY_DIR", other.file("registry"));
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\Fleeting", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryStore, ADamagedOrTruncatedHiveLoadsWhatItCan) {
    for (const char16_t* name : {u"Software\\K1", u"Software\\K2", u"Software\\K3", u"Software\\K4"}) {
        HKEY key = Create(name);
        ASSERT_EQ(SetText(key, u"v", name), ERROR_SUCCESS);
        RegCloseKey(key);
    }
    std::string good = zeltest::ReadFile(HiveFile());
    std::u16string k3 = u"Software\\K3";
    size_t at = good.find(std::string(reinterpret_cast<const char*>(k3.data()), k3.size() * 2));
    ASSERT_NE(at, std::string::npos);
    std::string damaged = good;
    damaged[at + 2] ^= 0x40;

    auto loadsFrom = [](const std::string& bytes) {
        zeltest::TempDir dir;
        zeltest::ScopedEnv registry("ZEL_REGISTRY_DIR", dir.file("registry"));
        mkdir(dir.file("registry").c_str(), 0700);
        zeltest::WriteFile(dir.file("registry/current_user.hive"), bytes);
        std::vector<std::u16string> found;
        for (const char16_t* name : {u"Software\\K1", u"Software\\K2", u"Software\\K3", u"Software\\K4"}) {
            HKEY key = nullptr;
            if (RegOpenKeyExW(HKEY_CURRENT_USER, name, 0, KEY_READ, &key) == ERROR_SUCCESS) {
                found.push_back(GetText(key, u"v"));
                RegCloseKey(key);
            }
        }
        // The hive takes changes again, and writes a whole file.
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, u"Software\\After", &key), ERROR_SUCCESS);
        RegCloseKey(key);
        zelreg::RegKey root;
        std::string rewritten = zeltest::ReadFile(dir.file("registry/current_user.hive"));
        zelreg::LoadStats stats = zelreg::HiveLoader(root).Load(reinterpret_cast<const uint8_t*>(rewritten.data()),
                                                                rewritten.size(), zelreg::HiveLoader::Volatility::Off);
        EXPECT_TRUE(stats.headerValid);
        EXPECT_EQ(stats.skipped, 0u);
        return found;
    };
    EXPECT_EQ(loadsFrom(damaged), (Names{u"Software\\K1", u"Software\\K2", u"Software\\K4"}));
    EXPECT_EQ(loadsFrom(good.substr(0, at)), (Names{u"Software\\K1", u"Software\\K2"}));
    EXPECT_EQ(loadsFrom("not a hive at all"), Names{});
}

TEST_F(RegistryStore, AFailedWriteLeavesTheOldFileAndTheMemoryAgreesWithIt) {
    HKEY key = Create(u"Software\\Seam");
    ASSERT_EQ(SetDword(key, u"kept", 1), ERROR_SUCCESS);
    std::string before = zeltest::ReadFile(HiveFile());
    {
        FailingWrites failing;
        EXPECT_EQ(SetDword(key, u"lost", 2), ERROR_DISK_FULL);
        HKEY sub = nullptr;
        EXPECT_EQ(RegCreateKeyExW(key, u"Lost", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &sub, nullptr),
                  ERROR_DISK_FULL);
        EXPECT_EQ(sub, nullptr);
        EXPECT_EQ(RegDeleteValueW(key, u"kept"), ERROR_DISK_FULL);
    }
    EXPECT_EQ(zeltest::ReadFile(HiveFile()), before);
    EXPECT_EQ(ValueNames(key), Names{u"kept"});
    EXPECT_EQ(SubKeys(key), Names{});
    EXPECT_EQ(FilesIn(dir_.file("registry")), (std::vector<std::string>{"current_user.hive", "current_user.hive.lock"}));
    EXPECT_EQ(SetDword(key, u"now", 3), ERROR_SUCCESS);
    RegCloseKey(key);
}

TEST_F(RegistryStore, SaveKeyWritesTheSubtreeOnceAndNeverOverwrites) {
    HKEY key = Create(u"Software\\ToSave");
    ASSERT_EQ(SetText(key, u"top", u"level"), ERROR_SUCCESS);
    HKEY child = Create(u"Child\\Grand", REG_OPTION_VOLATILE, key);
    ASSERT_EQ(SetDword(child, u"n", 5), ERROR_SUCCESS);
    RegCloseKey(child);

    zeltest::ScopedEnv drive("ZEL_DRIVE_Q", dir_.path());
    ASSERT_EQ(RegSaveKeyA(key, "q:\\saved.hiv", nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegSaveKeyW(key, u"q:\\saved.hiv", nullptr), ERROR_ALREADY_EXISTS);
    {
        FailingWrites failing;
        EXPECT_EQ(RegSaveKeyW(key, u"q:\\failed.hiv", nullptr), ERROR_DISK_FULL);
    }
    EXPECT_EQ(access(dir_.file("failed.hiv").c_str(), F_OK), -1);

    std::string saved = zeltest::ReadFile(dir_.file("saved.hiv"));
    zelreg::RegKey root;
    zelreg::LoadStats stats = zelreg::HiveLoader(root).Load(reinterpret_cast<const uint8_t*>(saved.data()),
                                                            saved.size(), zelreg::HiveLoader::Volatility::FromFile);
    EXPECT_EQ(stats.kind, zelreg::FileKind::Saved);
    EXPECT_EQ(stats.skipped, 0u);
    ASSERT_EQ(root.values.size(), 1u);
    EXPECT_EQ(root.values[0].name, u"top");
    zelreg::RegKey* grand = zelreg::FindPath(&root, {u"Child", u"Grand"});
    ASSERT_NE(grand, nullptr);
    EXPECT_FALSE(grand->parent->isVolatile);
    EXPECT_TRUE(grand->isVolatile);
    ASSERT_EQ(grand->values.size(), 1u);
    EXPECT_EQ(grand->values[0].type, static_cast<DWORD>(REG_DWORD));
    RegCloseKey(key);
}
