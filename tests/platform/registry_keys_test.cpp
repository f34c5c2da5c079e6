// Registry keys: creating, opening, listing, deleting, handles, rights and volatile keys.
#include <algorithm>

#include "registry_fixture.h"
#include "support/system.h"

using RegistryKeys = RegistryKeyTest;

TEST_F(RegistryKeys, CreateAndOpenMatchNamesCaseBlindAndKeepTheFirstCase) {
    HKEY key = nullptr;
    DWORD disposition = 0;
    for (auto [path, expected] : {std::pair{u"Zel\\Alpha\\Ünïcode", REG_CREATED_NEW_KEY},
                                  std::pair{u"zel\\ALPHA\\üNÏCODE\\", REG_OPENED_EXISTING_KEY}}) {
        ASSERT_EQ(RegCreateKeyExW(root_, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, &disposition),
                  ERROR_SUCCESS);
        EXPECT_EQ(disposition, static_cast<DWORD>(expected));
        RegCloseKey(key);
    }

    HKEY zel = nullptr, alpha = nullptr;
    ASSERT_EQ(RegOpenKeyExW(root_, u"ZEL", 0, KEY_READ, &zel), ERROR_SUCCESS);
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
    HKEY parent = Create(u"Order", 0, root_);
    for (const char16_t* name : {u"gamma", u"_x", u"Alpha2", u"beta", u"ALPHA"}) RegCloseKey(Create(name, 0, parent));
    // No order is promised, yet Windows sorts by the upper-cased names, where '_' follows the
    // letters (a case-sensitive order would put "_x" before "beta"); Wine 8 sorts by lower case.
    const Names upperCaseOrder{u"ALPHA", u"Alpha2", u"beta", u"gamma", u"_x"};
    const Names listed = SubKeys(parent);
    EXPECT_TRUE(std::is_permutation(listed.begin(), listed.end(), upperCaseOrder.begin(), upperCaseOrder.end()));
    if (!zeltest::RunningUnderWine()) { EXPECT_EQ(listed, upperCaseOrder); }

    WCHAR name[8];
    const std::u16string first = listed.empty() ? u"" : listed[0];
    EXPECT_EQ(RegEnumKeyW(parent, 0, name, static_cast<DWORD>(first.size())), ERROR_MORE_DATA);  // and a terminator
    EXPECT_EQ(RegEnumKeyW(parent, 0, name, static_cast<DWORD>(first.size() + 1)), ERROR_SUCCESS);
    EXPECT_EQ(std::u16string(name), first);
    EXPECT_EQ(RegEnumKeyW(parent, 5, name, 8), ERROR_NO_MORE_ITEMS);
#if !defined(_WIN32)  // Windows takes the name buffer as given and writes through a null one
    EXPECT_EQ(RegEnumKeyW(parent, 0, nullptr, 8), ERROR_INVALID_PARAMETER);
#endif
    RegCloseKey(parent);
}

TEST_F(RegistryKeys, DeletingFollowsTheSystemRulesAndStrandsHandles) {
    HKEY parent = Create(u"Doomed", 0, root_);
    HKEY child = Create(u"Child", 0, parent);
    EXPECT_EQ(SetDword(child, u"n", 1), ERROR_SUCCESS);

    EXPECT_EQ(RegDeleteKeyW(root_, u"Doomed"), ERROR_ACCESS_DENIED);
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

    // A hive's root and the default keys stay (a default key even when it is empty, as the tests'
    // own machine key has it on Windows).
    EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, u""), ERROR_ACCESS_DENIED);
#if !defined(_WIN32)
    EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, u"Software"), ERROR_ACCESS_DENIED);
#endif
    RegCloseKey(parent);
}

TEST_F(RegistryKeys, HandlesCloseOnceAndPredefinedKeysComeBackAsThemselves) {
    HKEY key = Create(u"Handles", 0, root_);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(nullptr), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(HKEY_LOCAL_MACHINE), ERROR_SUCCESS);
    EXPECT_EQ(SetDword(key, u"x", 1), ERROR_INVALID_HANDLE);
    EXPECT_EQ(SetDword(reinterpret_cast<HKEY>(static_cast<uintptr_t>(0x80000004)), u"x", 1), ERROR_INVALID_HANDLE);

    // Without a sub-key a predefined key comes back as itself (Wine 8 makes RegCreateKey open a
    // new handle); the extended call gives any other key a new handle.
    HKEY same = nullptr;
    EXPECT_EQ(RegOpenKeyW(HKEY_CLASSES_ROOT, u"", &same), ERROR_SUCCESS);
    EXPECT_EQ(same, HKEY_CLASSES_ROOT);
    EXPECT_EQ(RegCreateKeyW(HKEY_USERS, nullptr, &same), ERROR_SUCCESS);
    if (!zeltest::RunningUnderWine()) { EXPECT_EQ(same, HKEY_USERS); }
    RegCloseKey(same);
    EXPECT_EQ(RegOpenKeyExW(HKEY_USERS, u"", 0, KEY_READ, &same), ERROR_SUCCESS);
    EXPECT_EQ(same, HKEY_USERS);
    EXPECT_EQ(RegOpenKeyExW(root_, nullptr, 0, KEY_READ, &same), ERROR_SUCCESS);
    EXPECT_NE(same, root_);
    EXPECT_EQ(RegCloseKey(same), ERROR_SUCCESS);
}

TEST_F(RegistryKeys, AHandleHoldsOnlyTheRightsItWasOpenedWith) {
    RegCloseKey(Create(u"Rights", 0, root_));
    HKEY reader = nullptr, writer = nullptr;
    ASSERT_EQ(RegOpenKeyExW(root_, u"Rights", 0, KEY_READ, &reader), ERROR_SUCCESS);
    ASSERT_EQ(RegOpenKeyExW(root_, u"Rights", 0, KEY_WRITE, &writer), ERROR_SUCCESS);
    EXPECT_EQ(SetDword(reader, u"v", 1), ERROR_ACCESS_DENIED);
    EXPECT_EQ(SetDword(writer, u"v", 1), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExW(writer, u"v", nullptr, nullptr, nullptr, nullptr), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegQueryValueExW(reader, u"v", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteValueW(reader, u"v"), ERROR_ACCESS_DENIED);
    // Deleting a key asks nothing of the handle's rights.
    EXPECT_EQ(RegDeleteKeyW(reader, u""), ERROR_SUCCESS);
    EXPECT_EQ(SetDword(writer, u"v", 2), ERROR_KEY_DELETED);
    RegCloseKey(reader);
    RegCloseKey(writer);
}

TEST_F(RegistryKeys, VolatileKeysHoldOnlyVolatileKeysAndMakeVolatileParents) {
    HKEY dust = Create(u"Dust", REG_OPTION_VOLATILE, root_), key = nullptr;
    auto createLasting = [&](HKEY parent, const char16_t* path) {
        return RegCreateKeyExW(parent, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    };
    EXPECT_EQ(createLasting(dust, u"Stone"), ERROR_CHILD_MUST_BE_VOLATILE);
    RegCloseKey(Create(u"Ash", REG_OPTION_VOLATILE, dust));
    RegCloseKey(Create(u"Dust", REG_OPTION_NON_VOLATILE, root_));  // an existing key opens whatever the options

    // Every key the call makes is volatile, the parents on the way too; those there already stay
    // as they are.
    RegCloseKey(Create(u"Made", 0, root_));
    RegCloseKey(Create(u"Made\\On\\TheWay", REG_OPTION_VOLATILE, root_));
    EXPECT_EQ(createLasting(root_, u"Made\\On\\Lasting"), ERROR_CHILD_MUST_BE_VOLATILE);
    EXPECT_EQ(createLasting(root_, u"Made\\Lasting"), ERROR_SUCCESS);
    RegCloseKey(key);
    RegCloseKey(dust);
}

TEST_F(RegistryKeys, QueryInfoGivesCountsLongestNamesClassAndTime) {
    WCHAR keyClass[] = u"Klass", subClass[] = u"LongerClass";
    HKEY key = Create(u"Info", 0, root_, keyClass);
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
    // A short class buffer (Wine 8 answers ERROR_INSUFFICIENT_BUFFER).
    classSize = 5;
    const LONG shortClass = classAndTime(buffer, &classSize, nullptr);
    if (!zeltest::RunningUnderWine()) { EXPECT_EQ(shortClass, ERROR_MORE_DATA); }
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
