// The registry adapters on both sides: the in-memory tree (useVirtual 1) and the system registry
// of the test process (useVirtual 0), in wide mode and, re-run in a child, as on the 95 family
// with the Korean ANSI code page.
#include <gtest/gtest.h>
#include <zel/paths.h>
#include <zel/settings.h>

#include <cstring>
#include <string>

#include <unistd.h>

#include "platform/win32.h"
#include "settings/registry_adapters.h"
#include "support/support.h"

namespace {

const BYTE* Bytes(const void* data) { return static_cast<const BYTE*>(data); }

HKEY CreateKey(const WCHAR* path, int useVirtual) {
    HKEY key = nullptr;
    EXPECT_EQ(0, ZelRegCreateKey(HKEY_CURRENT_USER, path, &key, useVirtual));
    return key;
}

TEST(RegistryAdapter, TreeSideAnswersZeroOrMinusOne) {
    EXPECT_EQ(0, ZelRegCloseKey(reinterpret_cast<HKEY>(0x1234), 1));
    HKEY key = nullptr;
    DWORD disposition = 77;
    EXPECT_EQ(0, ZelRegCreateKeyEx(HKEY_CURRENT_USER, u"Tree\\Side", 0, nullptr, 0, 0, nullptr, &key, &disposition, 1));
    EXPECT_EQ(77u, disposition);
    HKEY missing = nullptr;
    EXPECT_EQ(-1, ZelRegOpenKey(key, u"Nowhere", &missing, 1));

    // A null name sets the unnamed value; type and size have no effect.
    const WCHAR text[] = u"default";
    EXPECT_EQ(0, ZelRegSetValueEx(key, nullptr, 0, REG_DWORD, Bytes(text), 0, 1));
    WCHAR value[16] = {};
    LONG valueSize = 0;
    EXPECT_EQ(0, ZelRegQueryValue(HKEY_CURRENT_USER, u"Tree\\Side", value, &valueSize, 1));
    EXPECT_EQ(std::u16string(u"default"), value);
    EXPECT_EQ(7, valueSize);

    // The name length is a capacity that counts the terminator, and it is not changed.
    EXPECT_EQ(0, ZelRegSetValueEx(key, u"name", 0, REG_BINARY, Bytes("xy"), 2, 1));
    WCHAR name[8] = {};
    DWORD nameLength = 5, type = 0, dataSize = 2;
    BYTE data[2] = {};
    EXPECT_EQ(0, ZelRegEnumValue(key, 0, name, &nameLength, nullptr, &type, data, &dataSize, 1));
    EXPECT_EQ(std::u16string(u"name"), name);
    EXPECT_EQ(5u, nameLength);
    nameLength = 4;
    EXPECT_EQ(-1, ZelRegEnumValue(key, 0, name, &nameLength, nullptr, &type, nullptr, nullptr, 1));

    DWORD classLength = 99, values = 0;
    EXPECT_EQ(0, ZelRegQueryInfoKey(key, name, &classLength, nullptr, nullptr, nullptr, nullptr, &values, nullptr,
                                    nullptr, nullptr, nullptr, 1));
    EXPECT_EQ(0, name[0]);
    EXPECT_EQ(99u, classLength);
    EXPECT_EQ(1u, values);
}

// Names pass a local buffer of 260 units: a longer one makes the call fail and writes nothing.
TEST(RegistryAdapter, TreeNamesLongerThanThePathBufferFail) {
    const std::u16string longName(300, u'n');
    HKEY parent = CreateKey(u"Tree\\LongNames", 1);
    HKEY child = nullptr;
    EXPECT_EQ(0, ZelRegCreateKey(parent, longName.c_str(), &child, 1));
    EXPECT_EQ(0, ZelRegSetValueEx(parent, longName.c_str(), 0, REG_BINARY, Bytes("x"), 1, 1));
    EXPECT_EQ(0, ZelRegSetValue(parent, nullptr, REG_SZ, longName.c_str(), 0, 1));

    std::u16string buffer(400, u'#');
    DWORD capacity = 400;
    LONG size = 400;
    EXPECT_EQ(-1, ZelRegEnumKey(parent, 0, buffer.data(), 400, 1));
    EXPECT_EQ(-1, ZelRegEnumValue(parent, 0, buffer.data(), &capacity, nullptr, nullptr, nullptr, nullptr, 1));
    EXPECT_EQ(-1, ZelRegQueryValue(parent, nullptr, buffer.data(), &size, 1));
    EXPECT_EQ(std::u16string(400, u'#'), buffer);
    EXPECT_EQ(400, size);
}

class QueryStringTest : public ::testing::TestWithParam<int> {};

TEST_P(QueryStringTest, GivesAnsiTextBackAsWideText) {
    const int useVirtual = GetParam();
    HKEY key = CreateKey(u"Software\\ZelTest\\QueryString", useVirtual);
    ASSERT_EQ(0, ZelRegSetValueEx(key, u"s", 0, REG_SZ, Bytes("hello"), 6, useVirtual));
    WCHAR text[16] = {};
    DWORD length = 16;
    EXPECT_EQ(0, ZelRegQueryString(key, u"s", nullptr, nullptr, text, &length, useVirtual));
    EXPECT_EQ(std::u16string(u"hello"), text);
    EXPECT_EQ(6u, length);  // counts the terminator

    length = 3;
    std::memset(text, 0xFF, sizeof text);
    EXPECT_EQ(0, ZelRegQueryString(key, u"s", nullptr, nullptr, text, &length, useVirtual));
    EXPECT_EQ(std::u16string(u"he"), text);  // cut, and ended within the length
    EXPECT_EQ(0xFFFF, text[3]);
    EXPECT_EQ(3u, length);

    length = 0;
    EXPECT_EQ(0, ZelRegQueryString(key, u"s", nullptr, nullptr, nullptr, &length, useVirtual));
    EXPECT_EQ(6u, length);

    EXPECT_NE(0, ZelRegQueryString(key, u"missing", nullptr, nullptr, text, &length, useVirtual));
    EXPECT_EQ(6u, length);
    EXPECT_EQ(0, ZelRegCloseKey(key, useVirtual));
}

INSTANTIATE_TEST_SUITE_P(BothSides, QueryStringTest, ::testing::Values(0, 1));

TEST(RegistryAdapter, SystemSidePassesDataAsBytesAndCopiesNamesBounded) {
    HKEY key = CreateKey(u"Software\\ZelTest\\System", 0);
    HKEY child = nullptr;
    ASSERT_EQ(0, ZelRegCreateKey(key, u"children", &child, 0));
    ZelRegCloseKey(child, 0);
    ASSERT_EQ(0, ZelRegSetValueEx(key, u"value", 0, REG_SZ, Bytes("abc"), 4, 0));
    BYTE data[16] = {};
    DWORD type = 0, dataSize = sizeof data;
    EXPECT_EQ(0, ZelRegQueryValueEx(key, u"value", nullptr, &type, data, &dataSize, 0));
    EXPECT_EQ(4u, dataSize);  // ANSI bytes, not 16-bit text
    EXPECT_STREQ("abc", reinterpret_cast<const char*>(data));

    WCHAR name[16] = {};
    EXPECT_EQ(0, ZelRegEnumKey(key, 0, nullptr, 0, 0));
    EXPECT_EQ(ERROR_NO_MORE_ITEMS, ZelRegEnumKey(key, 1, nullptr, 0, 0));
    EXPECT_EQ(0, ZelRegEnumKey(key, 0, name, 4, 0));
    EXPECT_EQ(std::u16string(u"chi"), name);

    DWORD nameLength = 3;
    EXPECT_EQ(0, ZelRegEnumValue(key, 0, name, &nameLength, nullptr, &type, nullptr, nullptr, 0));
    EXPECT_EQ(std::u16string(u"va"), name);
    EXPECT_EQ(2u, nameLength);
    EXPECT_EQ(0, ZelRegEnumValue(key, 0, nullptr, &nameLength, nullptr, &type, nullptr, nullptr, 0));
    EXPECT_EQ(5u, nameLength);

    // The unnamed value; in wide mode the size is the system call's own, in bytes, and in ANSI
    // mode the characters copied.
    EXPECT_EQ(0, ZelRegSetValue(key, u"children", REG_SZ, u"kid", 3, 0));
    LONG size = 16;
    EXPECT_EQ(0, ZelRegQueryValue(key, u"children", name, &size, 0));
    EXPECT_EQ(std::u16string(u"kid"), name);
    EXPECT_EQ(ZelGetWinVersion() == 1 ? 3 : 8, size);

    // The last argument of the save means nothing: the system registry is saved.
    zeltest::TempDir dir;
    EXPECT_EQ(0, ZelRegSaveKey(key, ZelPlatformPathFromSystem(dir.file("saved").c_str()).c_str(), nullptr, 1));
    EXPECT_EQ(0, ::access(dir.file("saved").c_str(), F_OK));

    EXPECT_EQ(0, ZelRegDeleteValue(key, u"value", 0));
    EXPECT_EQ(0, ZelRegDeleteKey(key, u"children", 0));
    EXPECT_EQ(0, ZelRegCloseKey(key, 0));
}

// Runs in a child as on the 95 family with code page 949; the parent only starts the child.
TEST(RegistryAdapterAnsi, KoreanNamesAndTheOldQueryValue) {
    if (ZelGetWinVersion() != 1) {
        const auto child = zeltest::RunTestsInNewProcess("RegistryAdapterAnsi.*",
                                                         {{"ZEL_OS_VERSION", "1.4.0"}, {"ZEL_ACP", "949"}});
        if (child.skipped) GTEST_SKIP() << child.err;
        EXPECT_EQ(0, child.status) << child.out << child.err;
        return;
    }
    HKEY key = CreateKey(u"Software\\ZelTest\\\uD55C\uAE00", 0);
    HKEY child = nullptr;
    ASSERT_EQ(0, ZelRegCreateKey(key, u"\uAC00\uB098", &child, 0));
    ZelRegCloseKey(child, 0);
    WCHAR name[16] = {};
    EXPECT_EQ(0, ZelRegEnumKey(key, 0, name, 16, 0));
    EXPECT_EQ(std::u16string(u"\uAC00\uB098"), name);

    // The old branch counts characters, bounded by the size that came in.
    EXPECT_EQ(0, ZelRegSetValue(key, u"\uAC00\uB098", REG_SZ, u"\uD55C\uAE00\uB9D0", 0, 0));
    LONG size = 16;
    EXPECT_EQ(0, ZelRegQueryValue(key, u"\uAC00\uB098", name, &size, 0));
    EXPECT_EQ(std::u16string(u"\uD55C\uAE00\uB9D0"), name);
    EXPECT_EQ(3, size);
    size = 3;
    EXPECT_EQ(0, ZelRegQueryValue(key, u"\uAC00\uB098", name, &size, 0));
    EXPECT_EQ(std::u16string(u"\uD55C\uAE00"), name);
    EXPECT_EQ(2, size);

    ASSERT_EQ(0, ZelRegSetValueEx(key, u"s", 0, REG_SZ, Bytes("\xC7\xD1\xB1\xDB"), 5, 0));  // in 949
    DWORD length = 16;
    EXPECT_EQ(0, ZelRegQueryString(key, u"s", nullptr, nullptr, name, &length, 0));
    EXPECT_EQ(std::u16string(u"\uD55C\uAE00"), name);
    EXPECT_EQ(3u, length);
    ZelRegCloseKey(key, 0);
}

}  // namespace
