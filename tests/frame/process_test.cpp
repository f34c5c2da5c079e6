// Process attach and detach, seen from a fresh process that loads the shared library.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <string>

#include "frame/thread_data.h"
#include "platform/posix/registry/registry_files.h"
#include "platform/win32.h"
#include "support/support.h"

using zeltest::ProgramResult;
using zeltest::RunProgram;
using zeltest::ScopedEnv;
using zeltest::TempDir;

namespace {

constexpr char kLocalesKey[] = "Software\\Morvalis\\Global Settings\\User Locales";

// A registry and runtime directory of its own, shared by this test and the probes it starts.
class FreshSystem {
public:
    FreshSystem() : registry_("ZEL_REGISTRY_DIR", dir_.file("registry")) {}

    ProgramResult Probe(const std::string& lcid, const std::string& command = "modules",
                        std::map<std::string, std::optional<std::string>> env = {}) {
        env["ZEL_LCID"] = lcid;
        env.emplace("ZEL_DEBUG", std::nullopt);
        return RunProgram(ZEL_TEST_PROBE_PATH, {command}, env);
    }

    // Another boot: the volatile keys are gone with the runtime directory.
    void Reboot() {
        runtime_.reset();
        runtime_ = std::make_unique<ScopedEnv>("XDG_RUNTIME_DIR", dir_.file("run2"));
    }

private:
    TempDir dir_;
    ScopedEnv registry_;
    std::unique_ptr<ScopedEnv> runtime_ = std::make_unique<ScopedEnv>("XDG_RUNTIME_DIR", dir_.file("run"));
};

// The seeded "LCID" value: -1 without the key, -2 with the key but without the value.
long SeededLcid() {
    HKEY key;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, kLocalesKey, 0, KEY_READ, &key) != ERROR_SUCCESS) return -1;
    DWORD value = 0, type = 0, size = sizeof value;
    LONG status = RegQueryValueExA(key, "LCID", nullptr, &type, reinterpret_cast<BYTE*>(&value), &size);
    RegCloseKey(key);
    if (status != ERROR_SUCCESS) return -2;
    return type == REG_DWORD ? static_cast<long>(value) : -3;
}

TEST(ProcessAttach, SeedsTheVolatileLocaleKeyOnce) {
    FreshSystem system;
    ProgramResult first = system.Probe("0x412");
    ASSERT_EQ(first.status, 0) << first.err;
    EXPECT_EQ(SeededLcid(), 0x411);

    // A later attach finds the key and leaves whatever it holds.
    HKEY key;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kLocalesKey, 0, KEY_ALL_ACCESS, &key), ERROR_SUCCESS);
    const DWORD changed = 0x409;
    ASSERT_EQ(RegSetValueExA(key, "LCID", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&changed), 4), ERROR_SUCCESS);
    ASSERT_EQ(system.Probe("0x412").status, 0);
    EXPECT_EQ(SeededLcid(), 0x409);
    ASSERT_EQ(RegDeleteValueA(key, "LCID"), ERROR_SUCCESS);
    RegCloseKey(key);
    ASSERT_EQ(system.Probe("0x409").status, 0);
    EXPECT_EQ(SeededLcid(), -2);

    // The key lasts until the next boot, and is seeded again then.
    system.Reboot();
    EXPECT_EQ(SeededLcid(), -1);
    ASSERT_EQ(system.Probe("0x412").status, 0);
    EXPECT_EQ(SeededLcid(), 0x411);
}

TEST(ProcessAttach, JapaneseSystemsAreNotSeeded) {
    FreshSystem system;
    ASSERT_EQ(system.Probe("0x411").status, 0);
    EXPECT_EQ(SeededLcid(), -1);
}

TEST(ProcessAttach, TheLibrarysOwnRecordIsRegistered) {
    FreshSystem system;
    ProgramResult result = system.Probe("0x412");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "0 ZelModKT.ZelBase\n");
    EXPECT_EQ(result.err, "");
}

TEST(ProcessAttach, DebugLinesOnlyWhenAskedFor) {
    FreshSystem system;
    ProgramResult quiet = system.Probe("0x412");
    EXPECT_EQ(quiet.err.find("DllMain()"), std::string::npos);
    ProgramResult debug = system.Probe("0x412", "modules", {{"ZEL_DEBUG", "1"}});
    ASSERT_EQ(debug.status, 0);
    EXPECT_EQ(debug.err,
              "DllMain() : DLL_PROCESS_ATTACH -  ZelBase Start!\n"
              "DllMain() : DLL_PROCESS_DETACH -  ZelBase End!\n");
}

TEST(ProcessAttach, ThreadsKeepTheirOwnStateAndFreeItAtTheirEnd) {
    FreshSystem system;
    ProgramResult result = system.Probe("0x412", "threads");
    EXPECT_NE(result.status, 0);  // the probe wants a thread count
    result = RunProgram(ZEL_TEST_PROBE_PATH, {"threads", "8"});
    EXPECT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_EQ(result.out, "failures 0\n");
}

// Attach again in a child process whose registry cannot write files at all, or cannot write a file
// that holds a value named LCID.
int AttachWithFailingWrites(bool everyWrite) {
    return zeltest::RunInChild([everyWrite] {
        ZelPlatformProcessDetach();
        TempDir dir;
        ScopedEnv registry("ZEL_REGISTRY_DIR", dir.file("registry"));
        ScopedEnv runtime("XDG_RUNTIME_DIR", dir.file("run"));
        ScopedEnv language("ZEL_LCID", "0x412");
        static bool failAll;
        failAll = everyWrite;
        zelreg::g_writeFile = [](int fd, const void* data, size_t size) -> ssize_t {
            static const char narrow[] = "LCID";
            static const char16_t wide[] = u"LCID";
            if (failAll || memmem(data, size, narrow, 4) || memmem(data, size, wide, 8)) {
                errno = ENOSPC;
                return -1;
            }
            return write(fd, data, size);
        };
        ZelPlatformProcessAttach();
        const bool attached = ZelGetModuleDef(0) != nullptr && g_zelThreadSlot != TLS_OUT_OF_INDEXES;
        return attached ? 10 : 20;
    });
}

TEST(ProcessAttach, OnlyAFailedSeedValueEndsTheAttach) {
    // The key cannot be made: no failure, the attach goes on.
    EXPECT_EQ(AttachWithFailingWrites(true), 10);
    // The key is made but its value cannot be written: the attach stops before the thread slot.
    EXPECT_EQ(AttachWithFailingWrites(false), 20);
}

}  // namespace
