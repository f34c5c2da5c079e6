// Walks by index go on from where the last call stood; whatever order the indexes come in and
// whoever writes between the calls, each answer is the one that counting from the start gives.
#include "registry_fixture.h"

namespace {

class RegistryEnumeration : public RegistryKeyTest {
protected:
    static std::u16string KeyAt(HKEY key, DWORD index) {
        WCHAR name[64];
        LONG status = RegEnumKeyW(key, index, name, 64);
        return status == ERROR_SUCCESS ? std::u16string(name) : u"<status " + Number(status) + u">";
    }
    static std::u16string ValueAt(HKEY key, DWORD index) {
        WCHAR name[64];
        DWORD size = 64;
        LONG status = RegEnumValueW(key, index, name, &size, nullptr, nullptr, nullptr, nullptr);
        return status == ERROR_SUCCESS ? std::u16string(name) : u"<status " + Number(status) + u">";
    }
    // Each index of the walk against the whole list as it stands.
    template <typename At, typename List>
    static void ExpectWalk(HKEY key, std::initializer_list<DWORD> indexes, At at, List list) {
        const Names all = list(key);
        for (DWORD index : indexes)
            EXPECT_EQ(at(key, index), index < all.size() ? all[index] : u"<status 259>") << "index " << index;
    }
};

TEST_F(RegistryEnumeration, AnyOrderOfIndexesAgreesWithCounting) {
    HKEY parent = Create(u"Walk", 0, root_);
    // Persistent and volatile sub-keys interleave in name order.
    for (const char16_t* name : {u"d", u"B", u"f"}) RegCloseKey(Create(name, REG_OPTION_NON_VOLATILE, parent));
    for (const char16_t* name : {u"c", u"E"}) RegCloseKey(Create(name, REG_OPTION_VOLATILE, parent));
    for (const char16_t* name : {u"v3", u"v1", u"v2", u"v0"}) ASSERT_EQ(SetDword(parent, name, 1), ERROR_SUCCESS);
    ASSERT_EQ(SubKeys(parent), (Names{u"B", u"c", u"d", u"E", u"f"}));
    ExpectWalk(parent, {0, 1, 1, 2, 3, 4, 5, 6, 0, 2, 3, 1, 0, 4, 4, 3}, KeyAt, SubKeys);
    ExpectWalk(parent, {0, 0, 1, 2, 2, 3, 4, 1, 3, 2}, ValueAt, ValueNames);
    RegCloseKey(parent);
}

TEST_F(RegistryEnumeration, WritesBetweenCallsMoveTheWalkAsTheyMoveTheList) {
    HKEY parent = Create(u"Walk", 0, root_);
    for (const char16_t* name : {u"b", u"d", u"f", u"h"}) RegCloseKey(Create(name, REG_OPTION_NON_VOLATILE, parent));
    for (const char16_t* name : {u"v1", u"v2", u"v3", u"v4"}) ASSERT_EQ(SetDword(parent, name, 1), ERROR_SUCCESS);
    EXPECT_EQ(KeyAt(parent, 0), u"b");
    EXPECT_EQ(KeyAt(parent, 1), u"d");
    EXPECT_EQ(ValueAt(parent, 0), u"v1");
    EXPECT_EQ(ValueAt(parent, 1), u"v2");

    // Another process adds a key in front of the walk and removes a value behind it.
    ASSERT_EQ(zeltest::RunInChild([this] {
                  HKEY key = Create(u"Walk", 0, root_);
                  RegCloseKey(Create(u"a", REG_OPTION_NON_VOLATILE, key));
                  return RegDeleteValueW(key, u"v1") == ERROR_SUCCESS ? 0 : 1;
              }),
              0);
    EXPECT_EQ(KeyAt(parent, 2), u"d");  // a b d f h
    EXPECT_EQ(ValueAt(parent, 2), u"v4");  // v2 v3 v4

    // This process's own writes do the same; a volatile key lands in the other database.
    ASSERT_EQ(RegDeleteKeyW(parent, u"b"), ERROR_SUCCESS);
    EXPECT_EQ(KeyAt(parent, 3), u"h");  // a d f h
    RegCloseKey(Create(u"c", REG_OPTION_VOLATILE, parent));
    EXPECT_EQ(KeyAt(parent, 4), u"h");  // a c d f h
    EXPECT_EQ(KeyAt(parent, 5), u"<status 259>");
    ASSERT_EQ(SetDword(parent, u"v5", 1), ERROR_SUCCESS);
    EXPECT_EQ(ValueAt(parent, 3), u"v5");  // v2 v3 v4 v5
    EXPECT_EQ(ValueAt(parent, 4), u"<status 259>");
    RegCloseKey(parent);
}

}  // namespace
