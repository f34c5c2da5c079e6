// The registry file: its bytes, save and load on both registries and across them, the clearing
// before a load, and files that are cut short or hold more than the reader takes.
#include <gtest/gtest.h>
#include <zel/settings.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>

#include "platform/win32.h"
#include "strings/wstr.h"
#include "support/support.h"

namespace {

class Probe : public CZelRegistry {
public:
    using CZelRegistry::CZelRegistry;
    DWORD SaveCapacity() const { return savePathCapacity; }
    const WCHAR* Path() const { return keyPath; }
};

std::string Le(DWORD n) { return {char(n), char(n >> 8), char(n >> 16), char(n >> 24)}; }
std::string Text(const std::string& s) { return Le(DWORD(s.size())) + s; }

bool Exists(const std::u16string& path, int side) {
    HKEY key = nullptr;
    if (ZelRegOpenKey(HKEY_CURRENT_USER, path.c_str(), &key, side) != ERROR_SUCCESS) return false;
    ZelRegCloseKey(key, side);
    return true;
}

class RegistryFile : public ::testing::TestWithParam<int> {
protected:
    int side() const { return GetParam(); }
    // A file in the test's directory, in the library's form and on disk.
    std::u16string File(const char* name) const { return ZelPlatformPathFromSystem(dir.file(name).c_str()); }
    std::string Bytes(const char* name) const { return zeltest::ReadFile(dir.file(name)); }
    void Put(const char* name, const std::string& bytes) const { zeltest::WriteFile(dir.file(name), bytes); }

    // Top: values of each kind, one longer than the loader's first buffer and a small one behind
    // it; Sub with a value; Empty with nothing; Mid with only a child that has values.
    void Build(const std::u16string& top) const {
        CZelRegistry reg(top.c_str(), HKEY_CURRENT_USER, side());
        reg.WriteDwordValue(nullptr, u"d", 5);
        reg.WriteStringValue(nullptr, u"s", u"text");
        std::string big(300, 'x');
        for (size_t i = 0; i < big.size(); ++i) big[i] = char(i);
        reg.WriteBinaryValue(nullptr, u"big", reinterpret_cast<const BYTE*>(big.data()), DWORD(big.size()));
        const BYTE small[] = {9, 8, 7};
        reg.WriteBinaryValue(nullptr, u"small", small, 3);
        DWORD none = 0;
        reg.GetDwordValue(u"Empty", u"none", &none);  // a read makes the key, empty
        reg.WriteDwordValue(u"Mid\\Leaf", u"n", 1);
        reg.WriteStringValue(u"Sub", u"name", u"value");
    }

    zeltest::TempDir dir;
};

TEST_P(RegistryFile, ByteExample) {
    CZelRegistry reg(u"Soft\\App", HKEY_CURRENT_USER, side());
    ASSERT_EQ(1, reg.WriteDwordValue(nullptr, u"N", 5));
    ASSERT_EQ(1, reg.SaveToFile(u"Soft\\App", File("app.reg").c_str()));
    const std::string expected = Text("Soft\\App") + Text("App") + Le(1) + Text("N") + Le(4) + Le(4) + Le(5);
    EXPECT_EQ(expected, Bytes("app.reg"));

    // Back under another name: the relative path starts from the header's parent.
    Put("moved.reg", Text("Soft\\Moved") + Text("Moved") + Le(1) + Text("N") + Le(4) + Le(4) + Le(7));
    ASSERT_EQ(1, reg.LoadFromFile(File("moved.reg").c_str()));
    CZelRegistry moved(u"Soft\\Moved", HKEY_CURRENT_USER, side());
    DWORD value = 0;
    EXPECT_EQ(1, moved.GetDwordValue(nullptr, u"N", &value));
    EXPECT_EQ(7u, value);
}

TEST_P(RegistryFile, HeaderOnlyFiles) {
    Probe reg(side());
    CZelRegistry(u"Soft\\Bare", HKEY_CURRENT_USER, side()).ExistKey(u"x");  // makes Soft\Bare, empty
    EXPECT_EQ(1, reg.SaveToFile(u"Soft\\Bare", File("bare.reg").c_str()));
    EXPECT_EQ(Text("Soft\\Bare"), Bytes("bare.reg"));
    EXPECT_EQ(std::u16string(u"Soft"), reg.Path());
    EXPECT_EQ(1, reg.SaveToFile(u"Soft\\Nowhere\\Key", File("none.reg").c_str()));
    EXPECT_EQ(Text("Soft\\Nowhere\\Key"), Bytes("none.reg"));
    EXPECT_EQ(0, reg.SaveToFile(u"Soft", File("top.reg").c_str()));
    EXPECT_EQ(Text("Soft"), Bytes("top.reg"));
    EXPECT_EQ(0, reg.SaveToFile(u"Soft", u"")) << "no file to open";
    EXPECT_EQ(0, reg.LoadFromFile(File("top.reg").c_str()));
    EXPECT_EQ(0, reg.LoadFromFile(File("missing.reg").c_str()));
}

TEST_P(RegistryFile, SaveAndLoadKeepEveryKeyThatHasValues) {
    Build(u"Soft\\Round\\Top");
    Probe reg(side());
    ASSERT_EQ(1, reg.SaveToFile(u"Soft\\Round\\Top", File("a.reg").c_str()));
    const std::string first = Bytes("a.reg");
    // Sections: children first, the saved key last.
    const size_t leaf = first.find("Top\\Mid\\Leaf"), sub = first.find("Top\\Sub"), own = first.rfind(Text("Top"));
    EXPECT_LT(leaf, sub);
    EXPECT_LT(sub, own);
    EXPECT_EQ(std::string::npos, first.find("Empty"));
    EXPECT_EQ(std::string::npos, first.find(Text("Top\\Mid") + Le(1)));

    // Again with the same object, and with a trailing back slash, which only the header shows.
    ASSERT_EQ(1, reg.SaveToFile(u"Soft\\Round\\Top\\", File("b.reg").c_str()));
    EXPECT_EQ(Text("Soft\\Round\\Top\\") + first.substr(4 + 14), Bytes("b.reg"));

    CZelRegistry(u"Soft\\Round", HKEY_CURRENT_USER, side()).DeleteSubKey(u"Top");
    ASSERT_EQ(1, reg.LoadFromFile(File("b.reg").c_str()));
    EXPECT_EQ(std::u16string(u"Soft\\Round"), reg.Path());
    EXPECT_FALSE(Exists(u"Soft\\Round\\Top\\Empty", side()));
    CZelRegistry top(u"Soft\\Round\\Top", HKEY_CURRENT_USER, side());
    BYTE* block = nullptr;
    DWORD size = 0;
    ASSERT_EQ(1, top.GetBinaryValue(nullptr, u"big", &block, &size));
    ASSERT_EQ(300u, size);
    EXPECT_EQ(BYTE(299), block[299]);
    delete[] block;
    BYTE small[3] = {};
    size = 3;
    EXPECT_EQ(1, top.GetBinaryValue(nullptr, u"small", small, &size));
    EXPECT_EQ(9, small[0]);
    ASSERT_EQ(1, reg.SaveToFile(u"Soft\\Round\\Top", File("c.reg").c_str()));
    EXPECT_EQ(first, Bytes("c.reg"));
}

TEST_P(RegistryFile, AcrossRegistries) {
    const int from = side(), to = 1 - side();
    CZelRegistry source(from), target(to);
    {
        CZelRegistry reg(u"Soft\\Across\\Top", HKEY_CURRENT_USER, from);
        reg.WriteDwordValue(u"A", u"d", 3);
        reg.WriteStringValue(u"A\\B", u"s", u"text");
        const BYTE bytes[] = {0, 1, 2};
        reg.WriteBinaryValue(nullptr, u"b", bytes, 3);
    }
    ASSERT_EQ(1, source.SaveToFile(u"Soft\\Across\\Top", File("from.reg").c_str()));
    ASSERT_EQ(1, target.LoadFromFile(File("from.reg").c_str()));
    ASSERT_EQ(1, target.SaveToFile(u"Soft\\Across\\Top", File("to.reg").c_str()));
    EXPECT_EQ(Bytes("from.reg"), Bytes("to.reg"));
    std::u16string text;
    EXPECT_EQ(1, CZelRegistry(u"Soft\\Across\\Top\\A\\B", HKEY_CURRENT_USER, to).GetStringValue(nullptr, u"s", text));
    EXPECT_EQ(u"text", text);
}

// Below the target, leaves go and so does each level's first child once it is empty; another child
// that had children of its own loses them and stays.
TEST_P(RegistryFile, LoadClearsTheTargetByItsRule) {
    CZelRegistry reg(u"Soft\\Clear\\T", HKEY_CURRENT_USER, side());
    for (const char16_t* key : {u"A\\A1", u"B", u"C\\C1", u"C\\C2\\C2a", u"C\\C2"})
        reg.WriteDwordValue(key, u"v", 1);
    reg.WriteDwordValue(nullptr, u"own", 1);
    Put("new.reg", Text("Soft\\Clear\\T") + Text("T\\New") + Le(1) + Text("n") + Le(3) + Le(1) + "x");
    ASSERT_EQ(1, reg.LoadFromFile(File("new.reg").c_str()));

    for (const char16_t* gone : {u"A", u"A\\A1", u"B", u"C\\C1", u"C\\C2\\C2a"})
        EXPECT_FALSE(Exists(std::u16string(u"Soft\\Clear\\T\\") + gone, side()));
    for (const char16_t* kept : {u"", u"\\C", u"\\C\\C2", u"\\New"})
        EXPECT_TRUE(Exists(std::u16string(u"Soft\\Clear\\T") + kept, side()));
    DWORD value = 0;
    EXPECT_EQ(1, CZelRegistry(u"Soft\\Clear\\T\\C\\C2", HKEY_CURRENT_USER, side()).GetDwordValue(nullptr, u"v", &value));
    EXPECT_EQ(1, CZelRegistry(u"Soft\\Clear\\T", HKEY_CURRENT_USER, side()).GetDwordValue(nullptr, u"own", &value));
}

TEST_P(RegistryFile, SavePathGrowsByCapacityTotalAnd256) {
    CZelRegistry reg(u"Soft\\Grow\\T", HKEY_CURRENT_USER, side());
    const std::u16string one(200, u'a'), two(200, u'b');
    reg.WriteDwordValue(one.c_str(), u"v", 1);
    reg.WriteDwordValue(two.c_str(), u"v", 1);
    Probe saver(side());
    ASSERT_EQ(1, saver.SaveToFile(u"Soft\\Grow\\T", File("g1.reg").c_str()));
    // "T" makes 257; "\bbb..." brings the count to 403, so 257 + 403 + 256.
    EXPECT_EQ(916u, saver.SaveCapacity());
    ASSERT_EQ(1, saver.SaveToFile(u"Soft\\Grow\\T", File("g2.reg").c_str()));
    EXPECT_EQ(916u, saver.SaveCapacity());
    EXPECT_EQ(Bytes("g1.reg"), Bytes("g2.reg"));
}

INSTANTIATE_TEST_SUITE_P(Side, RegistryFile, ::testing::Values(0, 1),
                         [](const auto& info) { return info.param ? "Tree" : "System"; });

// FNV-1a, 64 bits: a fingerprint of a file's bytes.
uint64_t Fingerprint(const std::string& bytes) {
    uint64_t hash = 0xcbf29ce484222325ULL;
    for (unsigned char byte : bytes) hash = (hash ^ byte) * 0x100000001b3ULL;
    return hash;
}

// A large random tree: names that differ only in case name one key, value names keep their case,
// keys and values come and go. Its file, and the file of a second tree that a load of the first
// one went over, must keep the bytes that the first release of the tree wrote.
TEST(RegistryFileBytes, RandomTreeKeepsItsBytes) {
    zeltest::TempDir dir;
    const std::u16string file = ZelPlatformPathFromSystem(dir.file("random.reg").c_str());
    std::mt19937 random(20261124);
    auto name = [&](const char16_t* letters, size_t count, unsigned longest) {
        std::u16string text(1 + random() % longest, u'x');
        for (char16_t& unit : text) unit = letters[random() % count];
        return text;
    };
    auto path = [&] {
        std::u16string text = u"Soft\\Golden";
        for (unsigned depth = 1 + random() % 3; depth-- > 0;) text += u"\\" + name(u"aAbBcC", 6, 4);
        return text;
    };
    auto operate = [&](int count) {
        for (int n = 0; n < count; ++n) {
            const unsigned what = random() % 10;
            const std::u16string key = path();
            HKEY handle = nullptr;
            if (what == 8) {
                ZelRegDeleteKey(HKEY_CURRENT_USER, key.c_str(), 1);
            } else if (what == 9) {
                if (ZelRegOpenKey(HKEY_CURRENT_USER, key.c_str(), &handle, 1) == ERROR_SUCCESS)
                    ZelRegDeleteValue(handle, name(u"xXyY", 4, 2).c_str(), 1);
            } else if (ZelRegCreateKey(HKEY_CURRENT_USER, key.c_str(), &handle, 1) == ERROR_SUCCESS && what < 7) {
                const DWORD types[] = {REG_SZ, REG_BINARY, REG_DWORD, REG_MULTI_SZ};
                const DWORD type = types[random() % 4];
                std::string data(type == REG_DWORD ? 4 : random() % 13, '\0');
                for (char& byte : data) byte = char(random());
                ZelRegSetValueEx(handle, name(u"xXyY", 4, 2).c_str(), 0, type,
                                 reinterpret_cast<const BYTE*>(data.data()), DWORD(data.size()), 1);
            }
        }
    };
    operate(8000);
    CZelRegistry reg(1);
    ASSERT_EQ(1, reg.SaveToFile(u"Soft\\Golden", file.c_str()));
    const std::string first = zeltest::ReadFile(dir.file("random.reg"));
    EXPECT_EQ(158287u, first.size());
    EXPECT_EQ(11716691178003079455ULL, Fingerprint(first));

    operate(3000);
    ASSERT_EQ(1, reg.LoadFromFile(file.c_str()));
    ASSERT_EQ(1, reg.SaveToFile(u"Soft\\Golden", file.c_str()));
    const std::string second = zeltest::ReadFile(dir.file("random.reg"));
    EXPECT_EQ(169489u, second.size());
    EXPECT_EQ(13683575812263669788ULL, Fingerprint(second));
}

class RegistryFileInput : public RegistryFile {};

// Every cut of a good file loads what stands before the cut; a whole header is enough for 1.
TEST_P(RegistryFileInput, CutFilesLoadTheirHead) {
    Build(u"Soft\\Cut\\Top");
    CZelRegistry reg(side());
    ASSERT_EQ(1, reg.SaveToFile(u"Soft\\Cut\\Top", File("good.reg").c_str()));
    const std::string good = Bytes("good.reg");
    const size_t header = 4 + std::strlen("Soft\\Cut\\Top");
    // The system registry writes its store at every change, so there a sample of the lengths will do.
    const size_t step = side() == 0 ? 7 : 1;
    for (size_t length = 0; length <= good.size(); length += (length < header + 8 ? 1 : step)) {
        Put("cut.reg", good.substr(0, length));
        ASSERT_EQ(length >= header ? 1 : 0, reg.LoadFromFile(File("cut.reg").c_str())) << length;
    }
    Put("cut.reg", good);
    ASSERT_EQ(1, reg.LoadFromFile(File("cut.reg").c_str()));
    ASSERT_EQ(1, reg.SaveToFile(u"Soft\\Cut\\Top", File("again.reg").c_str()));
    EXPECT_EQ(good, Bytes("again.reg"));
}

TEST_P(RegistryFileInput, OverlongFieldsEndTheLoad) {
    CZelRegistry reg(side());
    const std::string head = Text("Soft\\Long\\T");
    const std::string first = Text("T\\First") + Le(1) + Text("v") + Le(3) + Le(1) + "1";
    const std::string name259(259, 'n'), name260(260, 'n');
    DWORD value = 0;

    // A header of 260 bytes has no path to load to.
    Put("h.reg", Text("Soft\\" + std::string(255, 'h')) + first);
    EXPECT_EQ(0, reg.LoadFromFile(File("h.reg").c_str()));

    // A value name of 260 bytes ends the load; what came before stays; 259 bytes is read.
    Put("n.reg", head + first + Text("T\\Second") + Le(2) + Text(name259) + Le(3) + Le(1) + "2" + Text(name260) +
                     Le(3) + Le(1) + "3" + Text("T\\Third") + Le(1) + Text("v") + Le(3) + Le(1) + "4");
    EXPECT_EQ(1, reg.LoadFromFile(File("n.reg").c_str()));
    CZelRegistry second(u"Soft\\Long\\T\\Second", HKEY_CURRENT_USER, side());
    BYTE byte = 0;
    DWORD size = 1;
    EXPECT_EQ(1, second.GetBinaryValue(nullptr, std::u16string(259, u'n').c_str(), &byte, &size));
    EXPECT_FALSE(Exists(u"Soft\\Long\\T\\Third", side()));
    EXPECT_TRUE(Exists(u"Soft\\Long\\T\\First", side()));

    // A data size beyond the file's end, and a count of records far beyond what follows.
    Put("d.reg", head + first + Text("T\\Data") + Le(2) + Text("v") + Le(3) + Le(0xFFFFFFF0u) + "zz");
    EXPECT_EQ(1, reg.LoadFromFile(File("d.reg").c_str()));
    Put("c.reg", head + Text("T\\Count") + Le(0xFFFFFFFFu) + Text("v") + Le(4) + Le(4) + Le(6));
    EXPECT_EQ(1, reg.LoadFromFile(File("c.reg").c_str()));
    EXPECT_EQ(1, CZelRegistry(u"Soft\\Long\\T\\Count", HKEY_CURRENT_USER, side()).GetDwordValue(nullptr, u"v", &value));
    EXPECT_EQ(6u, value);
}

INSTANTIATE_TEST_SUITE_P(Side, RegistryFileInput, ::testing::Values(0, 1),
                         [](const auto& info) { return info.param ? "Tree" : "System"; });

}  // namespace
