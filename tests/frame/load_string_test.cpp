// Strings read from a module's string table by the library itself.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <zel/frame.h>

#include "support/resource_fixtures.h"

using zeltest::ResourceData;

namespace {

std::u16string Load(HMODULE module, UINT id, int size, int* length = nullptr) {
    std::vector<WCHAR> buffer(static_cast<size_t>(size) + 1, u'#');
    const int n = ZelLoadStringW(module, id, buffer.data(), size);
    if (length) *length = n;
    return buffer.data();
}

TEST(LoadString, IdsFindTheirBlockAndPlace) {
    // String 275 is the fourth of block 18, made here by hand.
    std::vector<std::u16string> block(16);
    block[3] = u"two hundred seventy-five";
    block[15] = u"two hundred eighty-seven";
    ResourceData file(std::vector<zelres::Resource>{{6, 18, zelres::StringBlock(block)}});
    int length = 0;
    EXPECT_EQ(Load(file.handle(), 275, 64, &length), u"two hundred seventy-five");
    EXPECT_EQ(length, 24);
    EXPECT_EQ(Load(file.handle(), 287, 64), u"two hundred eighty-seven");
    EXPECT_EQ(Load(file.handle(), 274, 64, &length), u"");  // empty in its block
    EXPECT_EQ(length, 0);
    EXPECT_EQ(Load(file.handle(), 291, 64, &length), u"");  // no such block
    EXPECT_EQ(length, 0);
    EXPECT_EQ(Load(nullptr, 275, 64, &length), u"");
    EXPECT_EQ(length, 0);
}

TEST(LoadString, CutsToTheSizeAndDecodesEscapesAfterTheCut) {
    ResourceData file({{1, u"abcdef"}, {2, u"/uAC00/uB098 end"}, {3, u"x/uAC00"}});
    int length = 0;
    EXPECT_EQ(Load(file.handle(), 1, 4, &length), u"abc");
    EXPECT_EQ(length, 3);
    EXPECT_EQ(Load(file.handle(), 2, 64, &length), u"가나 end");
    EXPECT_EQ(length, 6);
    // Cut inside the escape: what is left of it stays as text.
    EXPECT_EQ(Load(file.handle(), 3, 6, &length), u"x/uAC");
    EXPECT_EQ(length, 5);
    // Size 1 gives an empty string, size 0 leaves the buffer alone.
    EXPECT_EQ(Load(file.handle(), 1, 1, &length), u"");
    EXPECT_EQ(length, 0);
    WCHAR untouched[2] = {u'#', 0};
    EXPECT_EQ(ZelLoadStringW(file.handle(), 1, untouched, 0), 0);
    EXPECT_EQ(untouched[0], u'#');
}

TEST(LoadString, DamagedBlocksReadAsMissing) {
    // Lengths that run past the block's end, before and at the string asked for, and a block that
    // ends inside its strings.
    std::vector<uint8_t> longFirst = {0xFF, 0x7F, 'a', 0};
    std::vector<uint8_t> longOwn = {0, 0, 0x10, 0, 'a', 0};
    std::vector<uint8_t> oddEnd = {1, 0, 'a', 0, 1};
    ResourceData file(std::vector<zelres::Resource>{{6, 1, longFirst}, {6, 2, longOwn}, {6, 3, oddEnd}});
    for (UINT id : {1u, 2u, 17u, 32u, 33u, 34u}) {
        int length = -1;
        EXPECT_EQ(Load(file.handle(), id, 64, &length), u"") << id;
        EXPECT_EQ(length, 0) << id;
    }
}

TEST(LoadString, RecordsLookInTheResourceFileThenInTheModule) {
    ResourceData resources({{1, u"from the resources"}});
    ResourceData module({{1, u"from the module"}, {2, u"only in the module"}});
    ZelModuleDef record{u"Test.Strings", nullptr, module.handle(), resources.handle(), 1, 0, nullptr};
    WCHAR wide[64];
    EXPECT_EQ(ZelLoadStringExW(&record, 1, wide, 64), 18);
    EXPECT_EQ(std::u16string(wide), u"from the resources");
    EXPECT_EQ(ZelLoadStringExW(&record, 2, wide, 64), 18);
    EXPECT_EQ(std::u16string(wide), u"only in the module");
    char narrow[64];
    EXPECT_EQ(ZelLoadStringExA(&record, 2, narrow, 64), 18);
    EXPECT_EQ(std::string(narrow), "only in the module");
    record.resourceHandle = nullptr;
    EXPECT_EQ(ZelLoadStringExA(&record, 1, narrow, 64), 15);
    EXPECT_EQ(ZelLoadStringExW(&record, 3, wide, 64), 0);
    EXPECT_EQ(wide[0], 0);
}

}  // namespace
