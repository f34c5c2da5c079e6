// The in-memory registry tree, each test on a tree of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "settings/virtual_registry.h"
#include "settings/virtual_registry_memory.h"

namespace {

VirtualRegKey* Key(HKEY handle) { return reinterpret_cast<VirtualRegKey*>(handle); }

const BYTE* Bytes(const void* data) { return static_cast<const BYTE*>(data); }

HKEY Create(VirtualRegistry& tree, HKEY parent, const WCHAR* path) {
    HKEY key = nullptr;
    EXPECT_EQ(1, tree.CreateKey(parent, path, &key));
    return key;
}

TEST(VirtualRegistry, KeyNamesFoldCaseAndPathsSkipEmptyParts) {
    VirtualRegistry tree;
    HKEY first = Create(tree, HKEY_CURRENT_USER, u"Software\\Aa");
    EXPECT_EQ(first, Create(tree, HKEY_CURRENT_USER, u"SOFTWARE\\aA"));
    EXPECT_EQ(u"Aa", Key(first)->name);  // the form of the first creation
    EXPECT_EQ(3u, Key(first)->depth);
    HKEY opened = nullptr;
    EXPECT_EQ(1, tree.OpenKey(HKEY_CURRENT_USER, u"software\\AA", &opened));
    EXPECT_EQ(first, opened);

    // Doubled, leading and trailing back slashes make no keys of their own; the text stays whole.
    WCHAR path[] = u"\\\\A\\\\B\\";
    HKEY b = Create(tree, HKEY_LOCAL_MACHINE, path);
    EXPECT_EQ(std::u16string(u"\\\\A\\\\B\\"), path);
    EXPECT_EQ(u"B", Key(b)->name);
    EXPECT_EQ(3u, Key(b)->depth);
    EXPECT_EQ(u"A", Key(b)->parent->name);

    EXPECT_EQ(b, Create(tree, b, u"\\\\"));  // no components: the key itself

    // A walk that ends early leaves where it ended: the start key without sub-keys, else null.
    HKEY out = nullptr;
    EXPECT_EQ(0, tree.OpenKey(b, u"X", &out));
    EXPECT_EQ(b, out);
    EXPECT_EQ(0, tree.OpenKey(HKEY_LOCAL_MACHINE, u"A\\X", &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(1, tree.OpenKey(HKEY_CLASSES_ROOT, nullptr, &out));
    EXPECT_EQ(u"HKEY_CLASSES_ROOT", Key(out)->name);
    EXPECT_EQ(1u, Key(out)->depth);
    EXPECT_EQ(0, tree.OpenKey(nullptr, u"X", &out));  // a null handle is refused
}

TEST(VirtualRegistry, DefaultText) {
    VirtualRegistry tree;
    HKEY key = Create(tree, HKEY_CURRENT_USER, u"D");
    EXPECT_EQ(0, tree.SetDefault(HKEY_CURRENT_USER, u"D\\Missing", u"t"));
    EXPECT_EQ(0u, Key(key)->subKeyCount);
    WCHAR buffer[8] = {};
    LONG length = -1;
    EXPECT_EQ(0, tree.QueryDefault(HKEY_CURRENT_USER, u"D", buffer, 8, &length));  // empty is a failure
    EXPECT_EQ(1, tree.SetDefault(HKEY_CURRENT_USER, u"d", u"text"));
    EXPECT_EQ(1, tree.QueryDefault(HKEY_CURRENT_USER, u"D", buffer, 8, &length));
    EXPECT_EQ(std::u16string(u"text"), buffer);
    EXPECT_EQ(4, length);
    EXPECT_EQ(0, tree.QueryDefault(HKEY_CURRENT_USER, u"D", buffer, 4, &length));  // no room for the end

    // Through the value calls: a null name is the default text, with the size in characters.
    const WCHAR other[] = u"new";
    EXPECT_EQ(1, tree.SetValueEx(key, nullptr, REG_BINARY, Bytes(other), 1));
    DWORD type = 0, size = sizeof buffer;
    EXPECT_EQ(1, tree.QueryValueEx(key, nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size));
    EXPECT_EQ(std::u16string(u"new"), buffer);
    EXPECT_EQ(3u, size);
}

TEST(VirtualRegistry, ValuesKeepTheirTypeAndTheMaximaNeverFall) {
    VirtualRegistry tree;
    HKEY key = Create(tree, HKEY_CURRENT_USER, u"V");
    const WCHAR text[] = u"abc";
    EXPECT_EQ(1, tree.SetValueEx(key, u"Long name", REG_SZ, Bytes(text), sizeof text));
    EXPECT_EQ(0, tree.SetValueEx(key, u"Long name", REG_DWORD, Bytes("\1\0\0\0"), 4));
    WCHAR read[8] = {};
    DWORD type = 0, size = sizeof read;
    EXPECT_EQ(1, tree.QueryValueEx(key, u"Long name", &type, reinterpret_cast<BYTE*>(read), &size));
    EXPECT_EQ(std::u16string(u"abc"), read);

    // Value names are exact: x and X are two values.
    EXPECT_EQ(1, tree.SetValueEx(key, u"x", REG_DWORD, Bytes("\1\0\0\0"), 4));
    EXPECT_EQ(1, tree.SetValueEx(key, u"X", REG_BINARY, Bytes("\2"), 1));
    EXPECT_EQ(3u, Key(key)->valueCount);

    EXPECT_EQ(1, tree.DeleteValue(key, u"Long name"));
    EXPECT_EQ(2u, Key(key)->valueCount);
    EXPECT_EQ(u"x", Key(key)->values[0].name);  // later records moved down
    EXPECT_EQ(9u, Key(key)->maxValueNameLength);
    EXPECT_EQ(8u, Key(key)->maxValueDataLength);
    EXPECT_EQ(1, tree.SetValueEx(key, u"Long name", REG_DWORD, Bytes("\1\0\0\0"), 4));

    // An empty name is a record of its own, and blank: any write of it takes effect.
    EXPECT_EQ(1, tree.SetValueEx(key, u"", REG_DWORD, Bytes("\1\0\0\0"), 4));
    EXPECT_EQ(1, tree.SetValueEx(key, u"", REG_BINARY, Bytes("\7"), 1));
    EXPECT_EQ(DWORD{REG_BINARY}, Key(key)->values.back().type);
}

TEST(VirtualRegistry, ReadsCopyByTypeWithinTheGivenSize) {
    VirtualRegistry tree;
    HKEY key = Create(tree, HKEY_CURRENT_USER, u"R");
    const BYTE text[] = {'a', 0, 0, 0, 'b', 0};  // a zero unit inside
    EXPECT_EQ(1, tree.SetValueEx(key, u"sz", REG_SZ, text, sizeof text));
    BYTE out[16];
    std::memset(out, 0xEE, sizeof out);
    DWORD size = sizeof out;
    EXPECT_EQ(1, tree.QueryValueEx(key, u"sz", nullptr, out, &size));
    const BYTE expected[] = {'a', 0, 0, 0, 0, 0, 0, 0, 0xEE};
    EXPECT_EQ(0, std::memcmp(expected, out, sizeof expected));
    EXPECT_EQ(6u, size);

    EXPECT_EQ(1, tree.SetValueEx(key, u"dw", REG_DWORD, Bytes("\1\2\3\4\5\6"), 6));
    std::memset(out, 0xEE, sizeof out);
    size = 4;  // the value's length is 6, but a read gives four bytes
    EXPECT_EQ(1, tree.QueryValueEx(key, u"dw", nullptr, out, &size));
    EXPECT_EQ(0, std::memcmp("\1\2\3\4\xEE", out, 5));
    EXPECT_EQ(6u, size);

    EXPECT_EQ(1, tree.SetValueEx(key, u"bin", REG_BINARY, Bytes("0123456789"), 10));
    size = 9;
    std::memset(out, 0xEE, sizeof out);
    EXPECT_EQ(0, tree.QueryValueEx(key, u"bin", nullptr, out, &size));
    EXPECT_EQ(10u, size);
    EXPECT_EQ(0xEE, out[0]);
}

TEST(VirtualRegistry, EnumValueChecksNameAndDataRoom) {
    VirtualRegistry tree;
    HKEY key = Create(tree, HKEY_CURRENT_USER, u"E");
    EXPECT_EQ(1, tree.SetValueEx(key, u"name", REG_BINARY, Bytes("12345"), 5));
    WCHAR name[8] = {};
    BYTE data[8] = {};
    DWORD type = 0, size = 4;
    EXPECT_EQ(0, tree.EnumValue(key, 0, name, 3, &type, data, &size));
    EXPECT_EQ(0, tree.EnumValue(key, 0, name, 4, &type, data, &size));  // data of 5 in 4
    EXPECT_EQ(0, data[0]);
    size = 5;
    EXPECT_EQ(1, tree.EnumValue(key, 0, name, 4, &type, data, &size));
    EXPECT_EQ(std::u16string(u"name"), name);
    EXPECT_EQ(0, std::memcmp("12345", data, 5));
    EXPECT_EQ(0, tree.EnumValue(key, 1, name, 8, &type, nullptr, nullptr));
}

TEST(VirtualRegistry, KeysListInOrderAndOnlyLeavesGo) {
    VirtualRegistry tree;
    HKEY parent = Create(tree, HKEY_CURRENT_USER, u"P");
    for (const WCHAR* name : {u"one", u"two", u"three"}) Create(tree, parent, name);
    Create(tree, parent, u"two\\deep");
    WCHAR name[8] = {};
    EXPECT_EQ(1, tree.EnumKey(parent, 1, name, 8));
    EXPECT_EQ(std::u16string(u"two"), name);
    EXPECT_EQ(0, tree.EnumKey(parent, 2, name, 5));  // "three" needs 6 units

    EXPECT_EQ(0, tree.DeleteKey(parent, u"two"));
    EXPECT_EQ(3u, Key(parent)->subKeyCount);
    EXPECT_EQ(1, tree.DeleteKey(parent, u"two\\deep"));
    EXPECT_EQ(1, tree.DeleteKey(parent, u"TWO"));
    EXPECT_EQ(1, tree.EnumKey(parent, 1, name, 8));
    EXPECT_EQ(std::u16string(u"three"), name);
    EXPECT_EQ(1, tree.DeleteKey(parent, u"one"));
    EXPECT_EQ(nullptr, Key(parent)->firstChild->prevSibling);

}

TEST(VirtualRegistry, DeletionSearchesTheCurrentHiveOnly) {
    VirtualRegistry tree;
    HKEY user = Create(tree, HKEY_CURRENT_USER, u"U\\leaf");
    Create(tree, HKEY_LOCAL_MACHINE, u"M");  // the local machine's hive is current now
    EXPECT_EQ(0, tree.DeleteKey(user, nullptr));  // filed with the current user's keys
    HKEY child = Create(tree, user, u"child");  // filed with the local machine's keys
    HKEY root = nullptr;
    tree.OpenKey(HKEY_CURRENT_USER, nullptr, &root);
    EXPECT_EQ(0, tree.DeleteKey(child, nullptr));
    tree.OpenKey(HKEY_LOCAL_MACHINE, nullptr, &root);
    EXPECT_EQ(1, tree.DeleteKey(child, nullptr));
    EXPECT_EQ(0u, Key(user)->subKeyCount);
    EXPECT_EQ(1, tree.DeleteKey(HKEY_CURRENT_USER, u"U\\LEAF"));

    // A hive root without sub-keys goes, and the next use makes a new one.
    EXPECT_EQ(1, tree.DeleteKey(HKEY_LOCAL_MACHINE, u"M"));
    EXPECT_EQ(1, tree.DeleteKey(HKEY_LOCAL_MACHINE, nullptr));
    HKEY fresh = nullptr;
    EXPECT_EQ(1, tree.OpenKey(HKEY_LOCAL_MACHINE, nullptr, &fresh));
    EXPECT_EQ(0u, Key(fresh)->subKeyCount);

    // While the hive's list still holds a key of another hive, that key stands first in it.
    HKEY u = nullptr;
    tree.OpenKey(HKEY_CURRENT_USER, u"U", &u);
    tree.OpenKey(HKEY_LOCAL_MACHINE, nullptr, &fresh);
    HKEY filed = Create(tree, u, u"filed");
    EXPECT_EQ(1, tree.DeleteKey(HKEY_LOCAL_MACHINE, nullptr));
    EXPECT_EQ(1, tree.OpenKey(HKEY_LOCAL_MACHINE, nullptr, &fresh));
    EXPECT_EQ(filed, fresh);
}

// Many children of one key against a plain list of names: creation finds a name in any case,
// sub-keys list in order by rising, falling and scattered index between deletions, and the hive
// list closes its gaps without losing a key.
TEST(VirtualRegistry, ManyChildrenAnswerAsAPlainList) {
    VirtualRegistry tree;
    HKEY parent = Create(tree, HKEY_CURRENT_USER, u"Many");
    std::vector<std::u16string> model;
    std::vector<HKEY> handles;
    auto fold = [](std::u16string name) {
        for (char16_t& unit : name) unit = unit >= u'a' && unit <= u'z' ? unit - 32 : unit;
        return name;
    };
    auto find = [&](const std::u16string& name) {
        for (size_t i = 0; i < model.size(); ++i)
            if (fold(model[i]) == fold(name)) return static_cast<int>(i);
        return -1;
    };
    std::mt19937 random(3);
    WCHAR name[16];
    for (int step = 0; step < 6000; ++step) {
        std::u16string text(1 + random() % 3, u'x');
        for (char16_t& unit : text) unit = u"aAbBcC_[{"[random() % 9];
        const int at = find(text);
        switch (random() % 4) {
        case 0: {
            HKEY made = Create(tree, parent, text.c_str());
            if (at < 0) {
                model.push_back(text);
                handles.push_back(made);
            } else {
                ASSERT_EQ(handles[size_t(at)], made) << step;
            }
            break;
        }
        case 1:
            ASSERT_EQ(at >= 0 ? 1 : 0, tree.DeleteKey(parent, text.c_str())) << step;
            if (at >= 0) {
                model.erase(model.begin() + at);
                handles.erase(handles.begin() + at);
            }
            break;
        default: {
            const DWORD index = random() % 2 ? DWORD(random() % (model.size() + 2)) : DWORD(step % 7 ? step % 50 : 49 - step % 50);
            ASSERT_EQ(index < model.size() ? 1 : 0, tree.EnumKey(parent, index, name, 16)) << step;
            if (index < model.size()) {
                ASSERT_EQ(model[index], name) << step;
            }
            HKEY opened = nullptr;
            ASSERT_EQ(at >= 0 ? 1 : 0, tree.OpenKey(parent, text.c_str(), &opened)) << step;
        }
        }
    }
    EXPECT_EQ(model.size(), Key(parent)->subKeyCount);
}

// Names about as long as the key holds in place, and data about as long as a value holds: each
// reads back whole through every call, after records move and data changes its length.
TEST(VirtualRegistry, NamesAndDataAtTheEdgesOfWhatAKeyHoldsInPlace) {
    VirtualRegistry tree;
    HKEY parent = Create(tree, HKEY_CURRENT_USER, u"Edges");
    for (size_t length : {12, 13, 14, 40}) {
        std::u16string name(length, u'n');
        name[0] = u'N';
        HKEY made = Create(tree, parent, name.c_str());
        std::u16string other = name;
        other[0] = u'n';
        HKEY opened = nullptr;
        ASSERT_EQ(1, tree.OpenKey(parent, other.c_str(), &opened));
        EXPECT_EQ(made, opened);
        EXPECT_EQ(name, Key(made)->name);
    }
    WCHAR listed[64];
    ASSERT_EQ(1, tree.EnumKey(parent, 3, listed, 64));
    EXPECT_EQ(u"N" + std::u16string(39, u'n'), listed);

    // Values of 0 to 100 bytes; the first one goes, so the others move down.
    const std::vector<size_t> sizes = {5, 0, 23, 24, 25, 100};
    auto bytes = [](size_t size, int seed) {
        std::vector<BYTE> data(size);
        for (size_t i = 0; i < size; ++i) data[i] = BYTE(i * 7 + seed);
        return data;
    };
    const std::u16string names[] = {u"gone", u"v0", u"v23", u"v24", u"v25", u"v100"};
    for (size_t i = 0; i < sizes.size(); ++i) {
        const std::vector<BYTE> data = bytes(sizes[i], 1);
        ASSERT_EQ(1, tree.SetValueEx(parent, names[i].c_str(), REG_BINARY, data.data(), DWORD(data.size())));
    }
    ASSERT_EQ(1, tree.DeleteValue(parent, u"gone"));
    // Long data made short and short made long, in place.
    const std::vector<BYTE> shorter = bytes(3, 9), longer = bytes(60, 9);
    ASSERT_EQ(1, tree.SetValueEx(parent, u"v100", REG_BINARY, shorter.data(), DWORD(shorter.size())));
    ASSERT_EQ(1, tree.SetValueEx(parent, u"v0", REG_BINARY, longer.data(), DWORD(longer.size())));
    const std::vector<std::vector<BYTE>> expected = {longer, bytes(23, 1), bytes(24, 1), bytes(25, 1), shorter};
    for (size_t i = 0; i < expected.size(); ++i) {
        BYTE data[128] = {};
        DWORD size = sizeof data, type = 0;
        ASSERT_EQ(1, tree.QueryValueEx(parent, names[i + 1].c_str(), &type, data, &size)) << i;
        EXPECT_EQ(expected[i], std::vector<BYTE>(data, data + size)) << i;
        WCHAR name[16];
        BYTE listedData[128] = {};
        DWORD listedSize = sizeof listedData;
        ASSERT_EQ(1, tree.EnumValue(parent, DWORD(i), name, 15, &type, listedData, &listedSize)) << i;
        EXPECT_EQ(names[i + 1], name);
        EXPECT_EQ(expected[i], std::vector<BYTE>(listedData, listedData + listedSize)) << i;
    }
}

// Blocks of the tree's memory, of every size class and beyond, taken and given back at random:
// each keeps its own bytes while it is held, whichever released block it reuses, and after all
// were given back (the chunks go back too) the memory serves again.
TEST(VirtualRegistryMemory, BlocksKeepTheirBytesWhateverTheyReuse) {
    VirtualRegPrepareMemory();
    struct Held {
        BYTE* block;
        size_t size;
        BYTE fill;
    };
    std::mt19937 random(11);
    for (int round = 0; round < 2; ++round) {
        std::vector<Held> held;
        auto intact = [](const Held& h) {
            return std::all_of(h.block, h.block + h.size, [&](BYTE b) { return b == h.fill; });
        };
        for (int step = 0; step < 4000; ++step) {
            if (!held.empty() && random() % 3 == 0) {
                const size_t at = random() % held.size();
                ASSERT_TRUE(intact(held[at])) << step;
                VirtualRegRelease(held[at].block, held[at].size);
                held.erase(held.begin() + static_cast<std::ptrdiff_t>(at));
                continue;
            }
            const size_t size = random() % 8 == 0 ? 1025 + random() % 3000 : 1 + random() % 1024;
            const Held h{static_cast<BYTE*>(VirtualRegAllocate(size)), size, BYTE(step)};
            ASSERT_EQ(0u, reinterpret_cast<uintptr_t>(h.block) % 16);
            std::memset(h.block, h.fill, size);
            held.push_back(h);
        }
        for (const Held& h : held) {
            ASSERT_TRUE(intact(h));
            VirtualRegRelease(h.block, h.size);
        }
    }
}

}  // namespace
