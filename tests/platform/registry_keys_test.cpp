// Registry keys: creating, opening, listing, deleting, handles, rights and volatile keys.
#include "registry_fixture.h"

using RegistryKeys = RegistryTest;

TEST_F(RegistryKeys, CreateAndOpenMatchNamesCaseBlindAndKeepTheFirstCase) {
    HKEY key = nullptr;
    DWORD disposition = 0;
    for (auto [path, expected] : {std::pair{u"Software\\Zel\\Alpha\\Ünïcode", REG_CREATED_NEW_KEY},
                                  std::pair{u"SOFTWARE\\zel\\ALPHA\\üNÏCODE\\", REG_OPENED_EXISTING_KEY}}) {
        ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, &disposition),
                  ERROR_SUCCESS);
        EXPECT_EQ(disposition, static_cast<DWORD>(expected));
        RegCloseKey(key);
    }

    HKEY zel = nullptr, alpha = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"software\\ZEL", 0, KEY_READ, &zel), ERROR_SUCCESS);
    EXPECT_EQ(SubKeys(zel), Names{u"Alpha"});
    ASSERT_EQ(RegOpenKeyW(zel, u"alpha", &alpha), ERROR_SUCCESS);
    EXPECT_EQ(SubKeys(alpha), Names{u"Ünïcode"});
    RegCloseKey(alpha);

    HKEY missing = reinterpret_cast<HKEY>(1);
    EXPECT_EQ(RegOpenKeyExW(zel, u"Beta", 0, KEY_READ, &missing), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(missing, nullptr);
    EXPECT_EQ(RegOpenKeyExW(zel, u"\\Alpha", 0, KEY_READ, &missing), ERROR_BAD_PATHNAME);
    EXPECT_EQ(RegOpenKeyExW(zel, u"Alpha", 0, KEY_READ, nullptr), ERROR_INVALID_PARAMETER);
    RegCloseKey(zel);
}

TEST_F(RegistryKeys, SubKeysListInCaseBlindOrder) {
    HKEY parent = Create(u"Software\\Order");
    for (const char16_t* name : {u"gamma", u"_x", u"Alpha2", u"beta", u"ALPHA"}) RegCloseKey(Create(name, 0, parent));
    // Upper-cased, '_' sorts after the letters; a case-sensitive order would put "_x" before "beta".
    EXPECT_EQ(SubKeys(parent), (Names{u"ALPHA", u"Alpha2", u"beta", u"gamma", u"_x"}));

    WCHAR name[8];
    EXPECT_EQ(RegEnumKeyW(parent, 0, name, 5), ERROR_MORE_DATA);  // "ALPHA" needs its terminator
    EXPECT_EQ(RegEnumKeyW(parent, 0, name, 6), ERROR_SUCCESS);
    EXPECT_EQ(std::u16string(name), u"ALPHA");
    EXPECT_EQ(RegEnumKeyW(parent, 5, name, 8), ERROR_NO_MORE_ITEMS);
    EXPECT_EQ(RegEnumKeyW(parent, 0, nullptr, 8), ERROR_INVALID_PARAMETER);
    RegCloseKey(parent);
}

TEST_F(RegistryKeys, DeletingFollowsTheSystemRulesAndStrandsHandles) {
    HKEY parent = Create(u"Software\\Doomed");
    HKEY child = Create(u"Child", 0, parent);
    EXPECT_EQ(SetDword(child, u"n", 1), ERROR_SUCCESS);

    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, u"Software\\Doomed"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteKeyW(parent, u"Nothing"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteKeyW(parent, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegDeleteKeyW(parent, u"CHILD"), ERROR_SUCCESS);
    EXPECT_EQ(SubKeys(parent), Names{});

    // The handle outlives its key: every use but closing tells so, even once the path is taken again.
    WCHAR name[16];
    EXPECT_EQ(GetText(child, u"n"), u"<status 1018>");
    EXPECT_EQ(RegEnumKeyW(child, 0, name, 16), ERROR_KEY_DELETED);
    HKEY again = Create(u"Child", 0, parent);
    EXPECT_EQ(SetDword(child, u"n", 3), ERROR_KEY_DELETED);
    EXPECT_EQ(RegCloseKey(child), ERROR_SUCCESS);

    // An empty sub-key deletes the handle's own key.
    EXPECT_EQ(RegDeleteKeyW(again, u""), ERROR_SUCCESS);
    EXPECT_EQ(RegCreateKeyExW(again, u"Below", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &child, nullptr),
              ERROR_KEY_DELETED);
    RegCloseKey(again);

    // A hive's root and the default key stay.
    EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, u""), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, u"Software"), ERROR_ACCESS_DENIED);
    RegCloseKey(parent);
}

TEST_F(RegistryKeys, HandlesCloseOnceAndTheOldCallsHandBackTheirKey) {
    HKEY key = Create(u"Software\\Handles");
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(nullptr), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(HKEY_LOCAL_MACHINE), ERROR_SUCCESS);
    EXPECT_EQ(SetDword(key, u"x", 1), ERROR_INVALID_HANDLE);
    EXPECT_EQ(SetDword(reinterpret_cast<HKEY>(static_cast<uintptr_t>(0x80000004)), u"x", 1), ERROR_INVALID_HANDLE);

    HKEY same = nullptr;
    EXPECT_EQ(RegOpenKeyW(HKEY_CLASSES_ROOT, u"", &same), ERROR_SUCCESS);
    EXPECT_EQ(same, HKEY_CLASSES_ROOT);
    EXPECT_EQ(RegCreateKeyW(HKEY_USERS, nullptr, &same), ERROR_SUCCESS);
    EXPECT_EQ(same, HKEY_USERS);
    // The extended call makes a new handle for the same key instead.
    EXPECT_EQ(RegOpenKeyExW(HKEY_USERS, u"", 0, KEY_READ, &same), ERROR_SUCCESS);
    EXPECT_NE(same, HKEY_USERS);
    EXPECT_EQ(RegCloseKey(same), ERROR_SUCCESS);
}

TEST_F(RegistryKeys, AHandleHoldsOnlyTheRightsItWasOpenedWith) {
    RegCloseKey(Create(u"Software\\Rights"));
    HKEY reader = nullptr, writer = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\Rights", 0, KEY_READ, &reader), ERROR_SUCCESS);
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\Rights", 0, KEY_WRITE, &writer), ERROR_SUCCESS);
    EXPECT_EQ(SetDword(reader, u"v", 1), ERROR_ACCESS_DENIED);
    EXPECT_EQ(SetDword(writer, u"v", 1), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExW(writer, u"v", nullptr, nullptr, nullptr, nullptr), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegQueryValueExW(reader, u"v", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteValueW(reader, u"v"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteKeyW(writer, u""), ERROR_ACCESS_DENIED);  // KEY_WRITE lacks the right to delete
    RegCloseKey(reader);
    RegCloseKey(writer);
}

TEST_F(RegistryKeys, VolatileKeysHoldOnlyVolatileKeysAndMakeLastingParents) {
    HKEY dust = Create(u"Software\\Dust", REG_OPTION_VOLATILE), key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(dust, u"Stone", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_CHILD_MUST_BE_VOLATILE);
    RegCloseKey(Create(u"Ash", REG_OPTION_VOLATILE, dust));
    RegCloseKey(Create(u"Software\\Dust", REG_OPTION_NON_VOLATILE));  // an existing key opens whatever the options

    // Only the key named becomes volatile: its new parents last, so a lasting sibling fits.
    RegCloseKey(Create(u"Software\\Made\\On\\TheWay", REG_OPTION_VOLATILE));
    RegCloseKey(Create(u"Software\\Made\\On\\Lasting"));
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, u"Software\\Made\\On\\TheWay\\Below", 0, nullptr, 0, KEY_ALL_ACCESS,
                              nullptr, &key, nullptr),
              ERROR_CHILD_MUST_BE_VOLATILE);
    RegCloseKey(dust);
}

TEST_F(RegistryKeys, QueryInfoGivesCountsLongestNamesClassAndTime) {
    WCHAR keyClass[] = u"Klass", subClass[] = u"LongerClass";
    HKEY key = Create(u"Software\\Info", 0, HKEY_CURRENT_USER, keyClass);
    ASSERT_NE(key, nullptr);
    RegCloseKey(Create(u"SubKeyName", 0, key, subClass));
    RegCloseKey(Create(u"S", 0, key));
    EXPECT_EQ(SetText(key, u"ValueName", u"twelve chars"), ERROR_SUCCESS);
    EXPECT_EQ(SetDword(key, u"n", 7), ERROR_SUCCESS);

    DWORD classSize = 16, subKeys = 0, maxSubKey = 0, maxClass = 0, values = 0, maxValueName = 0, maxValue = 0;
    FILETIME before{}, after{};
    WCHAR buffer[16];
    ASSERT_EQ(RegQueryInfoKeyW(key, buffer, &classSize, nullptr, &subKeys, &maxSubKey, &maxClass, &values,
                               &maxValueName, &maxValue, nullptr, &before),
              ERROR_SUCCESS);
    EXPECT_EQ(std::u16string(buffer), u"Klass");
    EXPECT_EQ((std::vector<DWORD>{classSize, subKeys, maxSubKey, maxClass, values, maxValueName, maxValue}),
              (std::vector<DWORD>{5, 2, 10, 11, 2, 9, 26}));

    auto classAndTime = [&](LPWSTR name, LPDWORD size, PFILETIME time) {
        return RegQueryInfoKeyW(key, name, size, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                time);
    };
    classSize = 5;
    EXPECT_EQ(classAndTime(buffer, &classSize, nullptr), ERROR_MORE_DATA);
    EXPECT_EQ(classSize, 5u);
    EXPECT_EQ(classAndTime(buffer, nullptr, nullptr), ERROR_INVALID_PARAMETER);

    // A change to the key's values moves its time of last write.
    EXPECT_EQ(SetDword(key, u"n", 8), ERROR_SUCCESS);
    ASSERT_EQ(classAndTime(nullptr, nullptr, &after), ERROR_SUCCESS);
    auto ticks = [](FILETIME t) { return (static_cast<uint64_t>(t.dwHighDateTime) << 32) | t.dwLowDateTime; };
    EXPECT_GT(ticks(before), 116444736000000000ull);  // after 1970
    EXPECT_GE(ticks(after), ticks(before));
    RegCloseKey(key);
}
