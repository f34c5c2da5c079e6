// What the registry's suites share: a registry of their own in a fresh directory, and short helpers
// over the wide calls.
#ifndef ZEL_TESTS_PLATFORM_REGISTRY_FIXTURE_H
#define ZEL_TESTS_PLATFORM_REGISTRY_FIXTURE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/posix/registry/registry_tree.h"  // the status codes the common header lacks
#include "platform/win32.h"
#include "support/support.h"

using Names = std::vector<std::u16string>;

class RegistryTest : public ::testing::Test {
protected:
    zeltest::TempDir dir_;
    zeltest::ScopedEnv registryDir_{"ZEL_REGISTRY_DIR", dir_.file("registry")};
    zeltest::ScopedEnv runtimeDir_{"XDG_RUNTIME_DIR", dir_.file("run")};
    zeltest::ScopedEnv ansiCodePage_{"ZEL_ACP", "1252"};

    std::string HiveFile() const { return dir_.file("registry/current_user.db"); }

    // A key made (or opened) with every right; null on failure.
    static HKEY Create(const char16_t* path, DWORD options = REG_OPTION_NON_VOLATILE, HKEY parent = HKEY_CURRENT_USER,
                       LPWSTR keyClass = nullptr) {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExW(parent, path, 0, keyClass, options, KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        return key;
    }

    static LONG SetText(HKEY key, const char16_t* name, const std::u16string& text) {
        return RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                              static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)));
    }

    static LONG SetDword(HKEY key, const char16_t* name, DWORD value) {
        return RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
    }

    // The value's text without its terminator, or "<status N>".
    static std::u16string GetText(HKEY key, const char16_t* name) {
        WCHAR buffer[512] = {};
        DWORD size = sizeof buffer - sizeof(WCHAR);
        LONG status = RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<LPBYTE>(buffer), &size);
        if (status != ERROR_SUCCESS) return u"<status " + Number(status) + u">";
        return std::u16string(buffer, size / sizeof(WCHAR)).c_str();
    }

    // The same for a value of the key at path below HKEY_CURRENT_USER, opened for the read alone.
    static std::u16string ReadText(const char16_t* path, const char16_t* name) {
        HKEY key = nullptr;
        LONG status = RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_READ, &key);
        if (status != ERROR_SUCCESS) return u"<status " + Number(status) + u">";
        std::u16string text = GetText(key, name);
        RegCloseKey(key);
        return text;
    }

    static Names SubKeys(HKEY key) {
        Names names;
        WCHAR name[256];
        for (DWORD i = 0; RegEnumKeyW(key, i, name, 256) == ERROR_SUCCESS; ++i) names.push_back(name);
        return names;
    }

    static Names ValueNames(HKEY key) {
        Names names;
        WCHAR name[256];
        for (DWORD i = 0, size = 256;
             RegEnumValueW(key, i, name, &size, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS; ++i, size = 256)
            names.push_back(name);
        return names;
    }

    static std::u16string Number(long n) {
        std::string digits = std::to_string(n);
        return {digits.begin(), digits.end()};
    }
};

// The registry suites that run on every system work below a key of the test's own in
// HKEY_CURRENT_USER, removed with everything below it at the end: on Windows the tests of a run
// share one registry, which the registry directories above do not reach.
class RegistryKeyTest : public RegistryTest {
protected:
    HKEY root_ = nullptr;
    std::u16string rootPath_;

    void SetUp() override {
        const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
        const std::string name = std::string(test->test_suite_name()) + "." + test->name();
        rootPath_ = u"Software\\ZelTest\\" + std::u16string(name.begin(), name.end());
        root_ = Create(rootPath_.c_str());
    }

    void TearDown() override {
        RegCloseKey(root_);
        DeleteTree(HKEY_CURRENT_USER, rootPath_.c_str());
    }

    static bool DeleteTree(HKEY parent, const char16_t* path) {
        HKEY key = nullptr;
        if (RegOpenKeyExW(parent, path, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) return false;
        WCHAR name[256];
        while (RegEnumKeyW(key, 0, name, 256) == ERROR_SUCCESS && DeleteTree(key, name)) {
        }
        RegCloseKey(key);
        return RegDeleteKeyW(parent, path) == ERROR_SUCCESS;
    }
};

#endif  // ZEL_TESTS_PLATFORM_REGISTRY_FIXTURE_H
