// Registry values: sizes and short buffers, types, names, order, the default value and the ANSI
// calls' conversions.
#include <cstring>

#include <algorithm>

#include "registry_fixture.h"
#include "support/system.h"

using RegistryValues = RegistryKeyTest;
using zeltest::SystemLocale;

namespace {

std::vector<BYTE> Bytes(const void* data, size_t size) {
    auto p = static_cast<const BYTE*>(data);
    return {p, p + size};
}

Names Sorted(Names names) {
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

TEST_F(RegistryValues, QueryGivesTypeAndSizeAndTellsOfShortBuffers) {
    HKEY key = Create(u"Query", 0, root_);
    ASSERT_EQ(SetText(key, u"Greeting", u"hello"), ERROR_SUCCESS);

    DWORD type = 0, size = 0;
    EXPECT_EQ(RegQueryValueExW(key, u"greeting", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(size, 12u);

    BYTE buffer[16];
    memset(buffer, 0xEE, sizeof buffer);
    size = 11;
    EXPECT_EQ(RegQueryValueExW(key, u"Greeting", nullptr, &type, buffer, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 12u);
    EXPECT_EQ(RegQueryValueExW(key, u"Greeting", nullptr, &type, buffer, &size), ERROR_SUCCESS);
    EXPECT_EQ(std::u16string(reinterpret_cast<const char16_t*>(buffer)), u"hello");
    EXPECT_EQ(buffer[12], 0xEE);

    EXPECT_EQ(RegQueryValueExW(key, u"Missing", nullptr, &type, nullptr, &size), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegQueryValueExW(key, nullptr, nullptr, &type, nullptr, &size), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegQueryValueExW(key, u"Greeting", &size, &type, nullptr, &size), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryValueExW(key, u"Greeting", nullptr, &type, buffer, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegSetValueExW(key, u"x", 0, REG_BINARY, nullptr, 4), ERROR_NOACCESS);
    RegCloseKey(key);
}

TEST_F(RegistryValues, NamesMatchCaseBlindAndListInOrderOfCreation) {
    HKEY key = Create(u"Names", 0, root_);
    for (const char16_t* name : {u"Zulu", u"alpha", u"Mike"}) ASSERT_EQ(SetDword(key, name, 1), ERROR_SUCCESS);
    ASSERT_EQ(SetText(key, nullptr, u"default"), ERROR_SUCCESS);
    ASSERT_EQ(SetDword(key, u"ALPHA", 2), ERROR_SUCCESS);  // replaces, in place, under its first name
    EXPECT_EQ(Sorted(ValueNames(key)), (Names{u"", u"Mike", u"Zulu", u"alpha"}));
    // No order is promised, yet Windows lists values in order of creation; Wine 8 sorts them by name.
    if (!zeltest::RunningUnderWine()) { EXPECT_EQ(ValueNames(key), (Names{u"Zulu", u"alpha", u"Mike", u""})); }
    EXPECT_EQ(GetText(key, u""), u"default");

    EXPECT_EQ(RegDeleteValueW(key, u"zulu"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteValueW(key, u"zulu"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteValueW(key, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(ValueNames(key), (Names{u"alpha", u"Mike"}));
    RegCloseKey(key);
}

TEST_F(RegistryValues, EnumerationTellsTheSizesNeededWhenEitherBufferIsShort) {
    HKEY key = Create(u"Enum", 0, root_);
    ASSERT_EQ(SetText(key, u"Name", u"abcdef"), ERROR_SUCCESS);

    WCHAR name[8];
    BYTE data[32];
    memset(name, 0x55, sizeof name);
    memset(data, 0x55, sizeof data);
    // A short name buffer: its size stays and nothing is written.
    DWORD nameSize = 4, dataSize = 32, type = 0;
    EXPECT_EQ(RegEnumValueW(key, 0, name, &nameSize, nullptr, &type, data, &dataSize), ERROR_MORE_DATA);
    EXPECT_EQ(nameSize, 4u);
    EXPECT_EQ(name[0], 0x5555);
    EXPECT_EQ(data[0], 0x55);
    // A short data buffer: the size needed comes back (what the buffers then hold is left open).
    nameSize = 5, dataSize = 13;
    EXPECT_EQ(RegEnumValueW(key, 0, name, &nameSize, nullptr, &type, data, &dataSize), ERROR_MORE_DATA);
    EXPECT_EQ(dataSize, 14u);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));

    nameSize = 5, dataSize = 14;
    EXPECT_EQ(RegEnumValueW(key, 0, name, &nameSize, nullptr, nullptr, data, &dataSize), ERROR_SUCCESS);
    EXPECT_EQ(nameSize, 4u);
    EXPECT_EQ(std::u16string(name), u"Name");
    EXPECT_EQ(std::u16string(reinterpret_cast<const char16_t*>(data)), u"abcdef");
    EXPECT_EQ(RegEnumValueW(key, 1, name, &nameSize, nullptr, nullptr, data, &dataSize), ERROR_NO_MORE_ITEMS);
    EXPECT_EQ(RegEnumValueW(key, 0, name, nullptr, nullptr, nullptr, data, &dataSize), ERROR_INVALID_PARAMETER);
    RegCloseKey(key);
}

TEST_F(RegistryValues, OldCallsWorkOnTheDefaultValueAsText) {
    HKEY key = Create(u"Old", 0, root_);
    // The size given is not used; the sub-key is made on the way.
    ASSERT_EQ(RegSetValueW(key, u"Sub\\Deeper", REG_SZ, u"text", 1), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueW(key, u"Sub", REG_DWORD, u"text", 10), ERROR_INVALID_PARAMETER);

    WCHAR buffer[16];
    LONG size = 9;
    EXPECT_EQ(RegQueryValueW(key, u"Sub\\Deeper", buffer, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 10);
    EXPECT_EQ(RegQueryValueW(key, u"sub\\deeper", buffer, &size), ERROR_SUCCESS);
    EXPECT_EQ(std::u16string(buffer), u"text");

    // A key without a default value reads as empty text; a missing key does not read.
    size = sizeof buffer;
    EXPECT_EQ(RegQueryValueW(key, u"Sub", buffer, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 2);
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(RegQueryValueW(key, u"None", buffer, &size), ERROR_FILE_NOT_FOUND);

    // The ANSI call counts bytes.
    char ansi[16];
    for (auto [sub, bytes] : {std::pair{"Sub", 1}, {"Sub\\Deeper", 5}}) {
        size = sizeof ansi;
        EXPECT_EQ(RegQueryValueA(key, sub, ansi, &size), ERROR_SUCCESS);
        EXPECT_EQ(size, bytes) << sub;
    }
    EXPECT_STREQ(ansi, "text");
    RegCloseKey(key);
}

TEST_F(RegistryValues, AnsiCallsConvertTextDataAndGiveTheirOwnSizes) {
    SystemLocale western({.acp = "1252"});
    if (!western.active()) GTEST_SKIP() << "needs code page 1252";
    HKEY key = Create(u"Ansi", 0, root_);
    const char cafe[] = "caf\xE9";  // "café" in code page 1252: five bytes with the terminator
    auto setA = [&](const char* name, DWORD type, const void* data, DWORD size) {
        return RegSetValueExA(key, name, 0, type, static_cast<const BYTE*>(data), size);
    };
    ASSERT_EQ(setA("Drink", REG_SZ, cafe, sizeof cafe), ERROR_SUCCESS);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExW(key, u"Drink", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 10u);
    EXPECT_EQ(GetText(key, u"drink"), u"café");

    EXPECT_EQ(RegQueryValueExA(key, "DRINK", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 5u);
    char text[8] = {};
    size = 4;
    EXPECT_EQ(RegQueryValueExA(key, "Drink", nullptr, nullptr, reinterpret_cast<LPBYTE>(text), &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 5u);
    EXPECT_EQ(RegQueryValueExA(key, "Drink", nullptr, nullptr, reinterpret_cast<LPBYTE>(text), &size), ERROR_SUCCESS);
    EXPECT_STREQ(text, cafe);

    // Lists convert whole, inner terminators included; other types pass as bytes.
    const char list[] = "a\0\xE9\0";
    const char16_t wideList[] = u"a\0é\0";
    ASSERT_EQ(setA("List", REG_MULTI_SZ, list, sizeof list), ERROR_SUCCESS);
    ASSERT_EQ(setA("Raw", REG_BINARY, cafe, 4), ERROR_SUCCESS);
    for (auto [name, expected] : {std::pair{u"List", Bytes(wideList, sizeof wideList)}, {u"Raw", Bytes(cafe, 4)}}) {
        BYTE buffer[32];
        size = sizeof buffer;
        EXPECT_EQ(RegQueryValueExW(key, name, nullptr, nullptr, buffer, &size), ERROR_SUCCESS);
        EXPECT_EQ(Bytes(buffer, size), expected);
    }

    // Names convert too; enumeration counts the ANSI name and data.
    ASSERT_EQ(setA("\xC9t\xE9", REG_SZ, cafe, sizeof cafe), ERROR_SUCCESS);
    EXPECT_EQ(GetText(key, u"été"), u"café");
    char name[8];
    DWORD nameSize = sizeof name;
    size = 0;
    EXPECT_EQ(RegEnumValueA(key, 3, name, &nameSize, nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_STREQ(name, "\xC9t\xE9");
    EXPECT_EQ(nameSize, 3u);
    EXPECT_EQ(size, 5u);
    EXPECT_EQ(RegEnumValueA(key, 3, name, &nameSize, nullptr, nullptr, nullptr, &size), ERROR_MORE_DATA);
    RegCloseKey(key);
}

TEST_F(RegistryValues, AnsiKeyCallsConvertNamesAndClasses) {
    SystemLocale western({.acp = "1252"});
    if (!western.active()) GTEST_SKIP() << "needs code page 1252";
    HKEY key = nullptr, same = nullptr, software = nullptr;
    char keyClass[] = "Cl\xE4ss";
    ASSERT_EQ(RegCreateKeyExA(root_, "\xC7" "a", 0, keyClass, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    ASSERT_EQ(RegOpenKeyExW(root_, u"ça", 0, KEY_READ, &same), ERROR_SUCCESS);
    RegCloseKey(same);

    char buffer[8];
    DWORD size = sizeof buffer;
    EXPECT_EQ(RegQueryInfoKeyA(key, buffer, &size, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_STREQ(buffer, keyClass);
    EXPECT_EQ(size, 5u);

    ASSERT_EQ(RegOpenKeyA(HKEY_CURRENT_USER, std::string(rootPath_.begin(), rootPath_.end()).c_str(), &software),
              ERROR_SUCCESS);
    char name[4];
    DWORD i = 0;
    while (RegEnumKeyA(software, i, name, sizeof name) == ERROR_SUCCESS && strcmp(name, "\xC7" "a") != 0) ++i;
    EXPECT_STREQ(name, "\xC7" "a");
    EXPECT_EQ(RegEnumKeyA(software, i, name, 2), ERROR_MORE_DATA);
    EXPECT_EQ(RegDeleteKeyA(software, "\xE7" "A"), ERROR_SUCCESS);
    RegCloseKey(software);
    RegCloseKey(key);
}
