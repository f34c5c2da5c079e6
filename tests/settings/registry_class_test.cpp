// CZelRegistry on both registries: each test runs once on the system registry (0) and once on the
// in-memory tree (1), with a key of its own below the current user.
#include <gtest/gtest.h>
#include <zel/settings.h>

#include <cstring>
#include <string>

#include "strings/wstr.h"

namespace {

// Opens the protected state to the tests.
class Probe : public CZelRegistry {
public:
    using CZelRegistry::CZelRegistry;
    DWORD Index() const { return enumIndex; }
    HKEY Enum() const { return enumKey; }
    const WCHAR* Path() const { return keyPath; }
    const WCHAR* SaveBuffer() const { return savePath; }
};

class RegistryClass : public ::testing::TestWithParam<int> {
protected:
    int side() const { return GetParam(); }
    // A key of this test's own, so that the two sides and the tests never meet.
    std::u16string Key(const char16_t* leaf) const {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        std::u16string path = u"Software\\ClassTest\\";
        for (const char* c = info->name(); *c; ++c) path += *c == '/' ? u'_' : char16_t(*c);
        return path + u"\\" + leaf;
    }
    bool Exists(const std::u16string& path) const {
        HKEY key = nullptr;
        if (ZelRegOpenKey(HKEY_CURRENT_USER, path.c_str(), &key, side()) != ERROR_SUCCESS) return false;
        ZelRegCloseKey(key, side());
        return true;
    }
};

TEST_P(RegistryClass, ReadsCreateTheKeyPathAndMissingValuesFail) {
    const std::u16string path = Key(u"Made");
    CZelRegistry reg(path.c_str(), HKEY_CURRENT_USER, side());
    DWORD value = 77;
    EXPECT_EQ(0, reg.GetDwordValue(u"Sec\\Deep", u"none", &value));
    EXPECT_TRUE(Exists(path + u"\\Sec\\Deep"));
    EXPECT_EQ(1, reg.ExistKey(u"Sec"));
    EXPECT_EQ(0, reg.ExistKey(u"Other"));
    EXPECT_EQ(0, reg.ExistKey(nullptr));
}

TEST_P(RegistryClass, ValuesRoundTripAndStringsAreStoredAsAnsi) {
    CZelRegistry reg(Key(u"Values").c_str(), HKEY_CURRENT_USER, side());
    ASSERT_EQ(1, reg.WriteDwordValue(nullptr, u"d", -2));
    ASSERT_EQ(1, reg.WriteStringValue(u"S", u"s", u"abc"));
    const BYTE bytes[] = {1, 0, 0xFF};
    ASSERT_EQ(1, reg.WriteBinaryValue(u"S", u"b", bytes, 3));

    DWORD dword = 0;
    EXPECT_EQ(1, reg.GetDwordValue(nullptr, u"d", &dword));
    EXPECT_EQ(0xFFFFFFFEu, dword);
    WCHAR text[8];
    EXPECT_EQ(1, reg.GetStringValue(u"S", u"s", text, 8));
    EXPECT_EQ(std::u16string(u"abc"), text);
    std::u16string object;
    EXPECT_EQ(1, reg.GetStringValue(u"S", u"s", object));
    EXPECT_EQ(u"abc", object);

    // The stored form: ANSI bytes with their terminator, type REG_SZ.
    BYTE* block = nullptr;
    DWORD size = 0;
    ASSERT_EQ(1, reg.GetBinaryValue(u"S", u"s", &block, &size));
    EXPECT_EQ(std::string("abc", 4), std::string(reinterpret_cast<char*>(block), size));
    delete[] block;
    HKEY key = nullptr;
    DWORD type = 0;
    ASSERT_EQ(ERROR_SUCCESS, ZelRegOpenKey(HKEY_CURRENT_USER, (Key(u"Values") + u"\\S").c_str(), &key, side()));
    EXPECT_EQ(ERROR_SUCCESS, ZelRegQueryValueEx(key, u"s", nullptr, &type, nullptr, &size, side()));
    EXPECT_EQ(DWORD(REG_SZ), type);
    ZelRegCloseKey(key, side());

    // A dword read of a longer value keeps to its four bytes.
    dword = 0;
    reg.WriteStringValue(nullptr, u"long", u"0123456789");
    reg.GetDwordValue(nullptr, u"long", &dword);
    EXPECT_TRUE(dword == 0 || dword == 0x33323130u);
}

TEST_P(RegistryClass, StringAndBinaryBuffers) {
    CZelRegistry reg(Key(u"Buffers").c_str(), HKEY_CURRENT_USER, side());
    reg.WriteBinaryValue(nullptr, u"empty", nullptr, 0);
    reg.WriteStringValue(nullptr, u"s", u"hello");

    WCHAR text[16] = u"junk";
    EXPECT_EQ(1, reg.GetStringValue(nullptr, u"empty", text, 16));
    EXPECT_EQ(0, text[0]);
    std::u16string object = u"junk";
    EXPECT_EQ(1, reg.GetStringValue(nullptr, u"empty", object));
    EXPECT_TRUE(object.empty());
    // The stored size is 6 bytes: a maximum of 5 is too small, 6 fits.
    wcscpy(text, u"junk");
    EXPECT_EQ(0, reg.GetStringValue(nullptr, u"s", text, 5));
    EXPECT_EQ(0, text[0]);
    EXPECT_EQ(1, reg.GetStringValue(nullptr, u"s", text, 6));
    EXPECT_EQ(std::u16string(u"hello"), text);
    EXPECT_EQ(0, reg.GetStringValue(nullptr, u"missing", object));

    // Text stored without a terminator reads whole, into a buffer of the stored size. (Windows adds
    // the terminator itself when the byte behind the data given is a zero.)
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, ZelRegOpenKey(HKEY_CURRENT_USER, Key(u"Buffers").c_str(), &key, side()));
    ZelRegSetValueEx(key, u"bare", 0, REG_SZ, reinterpret_cast<const BYTE*>("abcdX"), 4, side());
    ZelRegCloseKey(key, side());
    EXPECT_EQ(1, reg.GetStringValue(nullptr, u"bare", text, 4));
    EXPECT_EQ(std::u16string(u"abc"), text);
    EXPECT_EQ(1, reg.GetStringValue(nullptr, u"bare", object));
    EXPECT_EQ(u"abcd", object);

    BYTE small[2];
    DWORD size = sizeof small;
    EXPECT_EQ(0, reg.GetBinaryValue(nullptr, u"s", small, &size));
    EXPECT_EQ(6u, size);
    BYTE exact[6];
    EXPECT_EQ(1, reg.GetBinaryValue(nullptr, u"s", exact, &size));
    EXPECT_EQ(0, std::memcmp(exact, "hello", 6));
    BYTE* block = reinterpret_cast<BYTE*>(1);
    EXPECT_EQ(0, reg.GetBinaryValue(nullptr, u"missing", &block, &size));
    EXPECT_EQ(nullptr, block);
    EXPECT_EQ(0u, size);
}

TEST_P(RegistryClass, EnumerationMovesWhateverTheResult) {
    const std::u16string path = Key(u"Enum");
    Probe reg(path.c_str(), HKEY_CURRENT_USER, side());
    reg.WriteDwordValue(u"A", u"v", 1);
    reg.WriteDwordValue(u"B", u"v", 1);
    reg.WriteDwordValue(nullptr, u"x", 1);

    ASSERT_EQ(1, reg.InitEnumeration(nullptr));
    WCHAR name[MAX_PATH];
    EXPECT_EQ(1, reg.GetNextSubkeyName(name));
    EXPECT_EQ(std::u16string(u"A"), name);
    EXPECT_EQ(1, reg.GetNextSubkeyName(name));
    EXPECT_EQ(std::u16string(u"B"), name);
    EXPECT_EQ(0, reg.GetNextSubkeyName(name));
    EXPECT_EQ(3u, reg.Index());
    EXPECT_EQ(0, reg.GetNextValueName(nullptr));
    EXPECT_EQ(3u, reg.Index());
    reg.EndEnumeration();
    EXPECT_EQ(nullptr, reg.Enum());
    EXPECT_EQ(0u, reg.Index());

    ASSERT_EQ(1, reg.InitEnumeration(nullptr));
    EXPECT_EQ(1, reg.GetNextValueName(name));
    EXPECT_EQ(std::u16string(u"x"), name);
    EXPECT_EQ(0, reg.GetNextValueName(name));
    EXPECT_EQ(2u, reg.Index());
    reg.EndEnumeration();
}

TEST_P(RegistryClass, CompareValueIsSigned) {
    CZelRegistry mine(Key(u"Mine").c_str(), HKEY_CURRENT_USER, side());
    CZelRegistry theirs(Key(u"Theirs").c_str(), HKEY_CURRENT_USER, side());
    const BYTE low[] = {1, 2, 0x01};
    const BYTE high[] = {1, 2, 0x80};
    mine.WriteBinaryValue(u"S", u"same", low, 3);
    theirs.WriteBinaryValue(u"S", u"same", low, 3);
    mine.WriteBinaryValue(u"S", u"differ", low, 3);
    theirs.WriteBinaryValue(u"S", u"differ", high, 3);
    mine.WriteBinaryValue(u"S", u"longer", low, 3);
    theirs.WriteBinaryValue(u"S", u"longer", low, 1);
    mine.WriteBinaryValue(u"S", u"onlyMine", low, 3);

    EXPECT_EQ(0, mine.CompareValue(u"S", u"same", theirs));
    EXPECT_EQ(-1, mine.CompareValue(u"S", u"differ", theirs));  // bytes compare unsigned
    EXPECT_EQ(1, theirs.CompareValue(u"S", u"differ", mine));
    EXPECT_EQ(2, mine.CompareValue(u"S", u"longer", theirs));
    EXPECT_EQ(-2, theirs.CompareValue(u"S", u"longer", mine));
    EXPECT_EQ(1, mine.CompareValue(u"S", u"onlyMine", theirs));
    EXPECT_EQ(-1, theirs.CompareValue(u"S", u"onlyMine", mine));
}

TEST_P(RegistryClass, Deletion) {
    const std::u16string path = Key(u"Del");
    CZelRegistry reg(path.c_str(), HKEY_CURRENT_USER, side());
    reg.WriteDwordValue(u"Top\\L1\\L2\\L3", u"v", 1);
    reg.WriteDwordValue(u"Top\\L1\\Side", u"v", 1);
    reg.WriteDwordValue(u"Top", u"v", 1);
    reg.WriteDwordValue(u"Top", u"w", 1);
    reg.WriteDwordValue(u"Keep", u"v", 1);

    // With a value name only that value goes.
    EXPECT_EQ(1, reg.DeleteSubKey(u"Top", u"w"));
    DWORD value = 0;
    EXPECT_EQ(0, reg.GetDwordValue(u"Top", u"w", &value));
    EXPECT_EQ(1, reg.GetDwordValue(u"Top", u"v", &value));

    EXPECT_EQ(0, reg.DeleteKey(u"Top"));  // has children
    EXPECT_EQ(1, reg.DeleteSubKey(u"Top"));
    EXPECT_FALSE(Exists(path + u"\\Top"));
    EXPECT_TRUE(Exists(path + u"\\Keep"));
    EXPECT_EQ(0, reg.DeleteSubKey(u"Top"));

    EXPECT_EQ(1, reg.DeleteValue(u"Keep", u"v"));
    EXPECT_EQ(0, reg.DeleteValue(u"Keep", u"v"));
    EXPECT_EQ(1, reg.DeleteKey(u"Keep"));
    EXPECT_FALSE(Exists(path + u"\\Keep"));
}

INSTANTIATE_TEST_SUITE_P(Side, RegistryClass, ::testing::Values(0, 1),
                         [](const auto& info) { return info.param ? "Tree" : "System"; });

TEST(RegistryClassCopy, CopiesTakeTheBindingOnly) {
    const std::u16string path = u"Software\\ClassTest\\Copy";
    Probe original(path.c_str(), HKEY_CURRENT_USER, 1);
    original.WriteDwordValue(u"A", u"v", 1);
    ASSERT_EQ(1, original.InitEnumeration(nullptr));
    WCHAR name[MAX_PATH];
    original.GetNextSubkeyName(name);

    Probe copy(original);
    EXPECT_EQ(path, copy.Path());
    EXPECT_EQ(nullptr, copy.Enum());
    EXPECT_EQ(0u, copy.Index());
    DWORD value = 0;
    EXPECT_EQ(1, copy.GetDwordValue(u"A", u"v", &value));  // the tree, as the original

    // An assignment ends the object's own enumeration and keeps its own save buffer.
    Probe other(u"Software\\ClassTest\\Other", HKEY_CURRENT_USER, 0);
    other = original;
    EXPECT_EQ(path, other.Path());
    EXPECT_EQ(1, other.GetDwordValue(u"A", u"v", &value));
    original = copy;
    EXPECT_EQ(nullptr, original.Enum());
    EXPECT_EQ(0u, original.Index());

    // The key path holds 519 characters.
    const std::u16string longPath(600, u'k');
    Probe cut(longPath.c_str(), HKEY_CURRENT_USER, 1);
    EXPECT_EQ(519u, wcslen(cut.Path()));
}

}  // namespace
