// The registry on disk: what lasts past a process, what processes share, volatile keys, hive files
// of the older format and saved keys.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "platform/posix/registry/registry_files.h"
#include "platform/posix/registry/registry_format.h"
#include "registry_fixture.h"

using RegistryStore = RegistryTest;

namespace {

// Whether bytes hold name as UTF-16 text, as the databases and the hive files store names.
bool HoldsName(const std::string& bytes, const std::u16string& name) {
    return bytes.find(std::string(reinterpret_cast<const char*>(name.data()), name.size() * 2)) != std::string::npos;
}

// What a database holds on disk: the file and its write-ahead log.
std::string DatabaseBytes(const std::string& path) {
    std::string bytes = zeltest::ReadFile(path);
    if (access((path + "-wal").c_str(), F_OK) == 0) bytes += zeltest::ReadFile(path + "-wal");
    return bytes;
}

// The names in a directory, sorted.
std::vector<std::string> FilesIn(const std::string& dir) {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) files.push_back(entry.path().filename());
    std::sort(files.begin(), files.end());
    return files;
}

// Makes every file write fail as a full disk does, for the guard's lifetime.
struct FailingWrites {
    FailingWrites() {
        zelreg::g_writeFile = [](int, const void*, size_t) -> ssize_t { return errno = ENOSPC, -1; };
    }
    ~FailingWrites() { zelreg::g_writeFile = &::write; }
};

zelreg::LoadStats LoadInto(zelreg::RegKey& root, const std::string& bytes, zelreg::HiveLoader::Volatility volatility) {
    return zelreg::HiveLoader(root).Load(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), volatility);
}

}  // namespace

TEST_F(RegistryStore, WhatAChildProcessWritesReachesTheParentsOpenHandle) {
    HKEY shared = Create(u"Software\\Shared");
    ASSERT_EQ(SetDword(shared, u"before", 1), ERROR_SUCCESS);
    EXPECT_EQ(zeltest::RunInChild([] { return SetText(Create(u"Software\\Shared\\FromChild"), u"said", u"hello"); }),
              0);
    EXPECT_EQ(SubKeys(shared), Names{u"FromChild"});
    EXPECT_EQ(ValueNames(shared), Names{u"before"});
    EXPECT_EQ(ReadText(u"software\\shared\\fromchild", u"said"), u"hello");
    RegCloseKey(shared);
    EXPECT_TRUE(HoldsName(DatabaseBytes(HiveFile()), u"FromChild"));
}

TEST_F(RegistryStore, TwoProcessesWritingAtOnceLoseNoValue) {
    constexpr int kPerWriter = 40;
    auto name = [](int w, int i) { return u"w" + Number(w) + u"-" + Number(i); };
    auto write = [&](int w) {
        HKEY key = nullptr;
        int failures = RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\Race", 0, KEY_ALL_ACCESS, &key) != 0;
        for (int i = 0; i < kPerWriter; ++i)
            failures += SetDword(key, name(w, i).c_str(), static_cast<DWORD>(w * 1000 + i)) != ERROR_SUCCESS;
        RegCloseKey(key);
        return failures;
    };
    RegCloseKey(Create(u"Software\\Race"));
    int gate[2];
    ASSERT_EQ(pipe(gate), 0);
    fflush(nullptr);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        close(gate[1]);
        char byte;
        (void)!read(gate[0], &byte, 1);  // starts when the parent closes the gate
        _exit(write(0) ? 1 : 0);
    }
    close(gate[0]);
    close(gate[1]);
    EXPECT_EQ(write(1), 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);

    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\Race", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(ValueNames(key).size(), 2u * kPerWriter);
    for (int w = 0; w < 2; ++w)
        for (int i = 0; i < kPerWriter; ++i) {
            DWORD value = 0, size = sizeof value;
            ASSERT_EQ(
                RegQueryValueExW(key, name(w, i).c_str(), nullptr, nullptr, reinterpret_cast<LPBYTE>(&value), &size),
                ERROR_SUCCESS);
            EXPECT_EQ(value, static_cast<DWORD>(w * 1000 + i));
        }
    RegCloseKey(key);
}

TEST_F(RegistryStore, WithoutADirectoryNamedTheHivesGoBelowTheConfigurationHome) {
    zeltest::ScopedEnv noDirectory("ZEL_REGISTRY_DIR", std::nullopt);
    zeltest::ScopedEnv config("XDG_CONFIG_HOME", dir_.file("config"));
    RegCloseKey(Create(u"Software\\Default"));
    EXPECT_TRUE(HoldsName(DatabaseBytes(dir_.file("config/Morvalis/registry/current_user.db")), u"Default"));
}

TEST_F(RegistryStore, VolatileKeysStayOutOfTheHiveFileYetOtherProcessesSeeThem) {
    HKEY fleeting = Create(u"Software\\Fleeting", REG_OPTION_VOLATILE);
    ASSERT_EQ(SetText(fleeting, u"Mood", u"passing"), ERROR_SUCCESS);
    RegCloseKey(Create(u"Software\\Made"));
    RegCloseKey(Create(u"Software\\Made\\Between\\Transient", REG_OPTION_VOLATILE));
    RegCloseKey(fleeting);

    std::string hive = DatabaseBytes(HiveFile());
    // The parents made on the way are volatile too; the one there before lasts.
    for (const char16_t* name : {u"Fleeting", u"Mood", u"Between", u"Transient"}) EXPECT_FALSE(HoldsName(hive, name));
    EXPECT_TRUE(HoldsName(hive, u"Made"));

    EXPECT_EQ(zeltest::RunInChild([] { return ReadText(u"Software\\Fleeting", u"Mood") == u"passing" ? 0 : 1; }), 0);
    // Another registry directory has volatile keys of its own.
    zeltest::TempDir other;
    zeltest::ScopedEnv otherRegistry("ZEL_REGISTRY_DIR", other.file("registry"));
    EXPECT_EQ(ReadText(u"Software\\Fleeting", u"Mood"), u"<status 2>");
}

TEST_F(RegistryStore, AHiveFileOfTheOlderFormatIsImportedOnceLoadingWhatItCan) {
    const Names keys{u"K1", u"K2", u"K3", u"K4"};
    zelreg::RegKey root;
    zelreg::RegKey* software = root.AddSubKey(u"Software", 7, false);
    for (const std::u16string& name : keys) {
        std::u16string text = u"Software\\" + name;
        auto bytes = reinterpret_cast<const BYTE*>(text.c_str());
        software->AddSubKey(name, zelreg::NewKeyId(), false)
            ->values.push_back({u"v", REG_SZ, {bytes, bytes + (text.size() + 1) * sizeof(char16_t)}});
    }
    std::vector<uint8_t> written = zelreg::WriteHiveFile(root, zelreg::FileKind::Persistent, 1);
    std::string good(written.begin(), written.end()), damaged = good;
    size_t at = good.find(std::string(reinterpret_cast<const char*>(keys[2].data()), keys[2].size() * 2));
    ASSERT_NE(at, std::string::npos);
    damaged[at + 2] ^= 0x40;

    auto importFrom = [&](const std::string& bytes) {
        zeltest::TempDir dir;
        zeltest::ScopedEnv registry("ZEL_REGISTRY_DIR", dir.file("registry"));
        mkdir(dir.file("registry").c_str(), 0700);
        zeltest::WriteFile(dir.file("registry/current_user.hive"), bytes);
        zeltest::WriteFile(dir.file("registry/current_user.hive.lock"), "");
        Names found;
        for (const std::u16string& name : keys)
            if (std::u16string text = ReadText((u"Software\\" + name).c_str(), u"v"); text != u"<status 2>")
                found.push_back(text);
        // The old file is kept aside, its lock goes, and the hive takes changes.
        EXPECT_EQ(FilesIn(dir.file("registry")),
                  (std::vector<std::string>{"current_user.db", "current_user.db-shm", "current_user.db-wal",
                                            "current_user.hive.imported"}));
        EXPECT_EQ(zeltest::ReadFile(dir.file("registry/current_user.hive.imported")), bytes);
        HKEY after = Create(u"Software\\After");
        EXPECT_EQ(SetDword(after, u"n", 1), ERROR_SUCCESS);
        RegCloseKey(after);
        return found;
    };
    EXPECT_EQ(importFrom(good), (Names{u"Software\\K1", u"Software\\K2", u"Software\\K3", u"Software\\K4"}));
    EXPECT_EQ(importFrom(damaged), (Names{u"Software\\K1", u"Software\\K2", u"Software\\K4"}));
    EXPECT_EQ(importFrom(good.substr(0, at)), (Names{u"Software\\K1", u"Software\\K2"}));
    EXPECT_EQ(importFrom("not a hive at all"), Names{});
}

TEST_F(RegistryStore, AFailedWriteChangesNothingAndLeavesNoFile) {
    HKEY key = Create(u"Software\\Seam");
    ASSERT_EQ(SetDword(key, u"kept", 1), ERROR_SUCCESS);
    {
        FailingWrites failing;
        EXPECT_EQ(SetDword(key, u"lost", 2), ERROR_DISK_FULL);
        HKEY sub = nullptr;
        EXPECT_EQ(RegCreateKeyExW(key, u"Lost\\Deeper", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &sub, nullptr),
                  ERROR_DISK_FULL);
        EXPECT_EQ(sub, nullptr);
        EXPECT_EQ(RegDeleteValueW(key, u"kept"), ERROR_DISK_FULL);
        // What the failed calls did not change still reads.
        EXPECT_EQ(ValueNames(key), Names{u"kept"});
    }
    EXPECT_EQ(ValueNames(key), Names{u"kept"});
    EXPECT_EQ(SubKeys(key), Names{});
    EXPECT_EQ(zeltest::RunInChild([] { return ReadText(u"Software\\Seam\\Lost", nullptr) == u"<status 2>" ? 0 : 1; }),
              0);
    for (const std::string& file : FilesIn(dir_.file("registry")))
        EXPECT_EQ(file.rfind("current_user.db", 0), 0u) << file;
    EXPECT_EQ(SetDword(key, u"now", 3), ERROR_SUCCESS);
    RegCloseKey(key);
}

TEST_F(RegistryStore, SaveKeyWritesTheSubtreeOnceAndNeverOverwrites) {
    HKEY key = Create(u"Software\\ToSave");
    ASSERT_EQ(SetText(key, u"top", u"level"), ERROR_SUCCESS);
    RegCloseKey(Create(u"Child", REG_OPTION_NON_VOLATILE, key));
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

    zelreg::RegKey root;
    zelreg::LoadStats stats =
        LoadInto(root, zeltest::ReadFile(dir_.file("saved.hiv")), zelreg::HiveLoader::Volatility::FromFile);
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
