// Symbol defines and the layout direction. Both are settled at the first question of a process,
// so every case asks in a child that forgets its parent's answers.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include <zel/frame.h>

#include "frame/own_module.h"
#include "frame/resource_lookup.h"
#include "support/resource_fixtures.h"
#include "support/support.h"

using zeltest::ResourceData;

namespace {

const char kDefineKey[] = "Software\\Morvalis\\Shared\\Common\\SymbolDefine";

// In a child with a fresh define list, the names as values of the key, and string 102 from a
// resource file of our own.
void WithDefines(const std::vector<std::string>& names, const std::u16string& languageNames,
                 const std::function<void()>& body) {
    ResourceData resources({{102, languageNames}});
    EXPECT_EQ(zeltest::RunInChild([&] {
                  for (const std::string& name : names)
                      zeltest::SetRegistryText(HKEY_LOCAL_MACHINE, kDefineKey, name, "");
                  g_zelOwnModule.resourceHandle = resources.handle();
                  ZelForgetDefines();
                  body();
                  return ::testing::Test::HasFailure() ? 1 : 0;
              }),
              0);
    // The child wrote to the registry that every case of this program shares.
    for (const std::string& name : names) zeltest::DeleteRegistryValue(HKEY_LOCAL_MACHINE, kDefineKey, name);
}

TEST(Defines, WholeNamesOnlyAndCaseCounts) {
    WithDefines({"ABC"}, u"", [] {
        EXPECT_TRUE(ZelIsDefined(u"ABC"));
        EXPECT_FALSE(ZelIsDefined(u"AB"));
        EXPECT_FALSE(ZelIsDefined(u"BC"));
        EXPECT_FALSE(ZelIsDefined(u"abc"));
        EXPECT_TRUE(ZelIsDefined(u""));  // at the start of the list, before ";"
        EXPECT_FALSE(ZelIsDefined(nullptr));
    });
}

TEST(Defines, ResourceStringAddsItsNamesAfterTheRegistrys) {
    WithDefines({"FIRST"}, u"KOREAN;HANJA", [] {
        EXPECT_TRUE(ZelIsDefined(u"FIRST"));
        EXPECT_TRUE(ZelIsDefined(u"KOREAN"));
        EXPECT_TRUE(ZelIsDefined(u"HANJA"));
        EXPECT_FALSE(ZelIsDefined(u"KOREAN;HANJA;X"));
    });
    // Only the first occurrence is tested: the tail of XABC hides the ABC behind it.
    WithDefines({"XABC"}, u"ABC", [] { EXPECT_FALSE(ZelIsDefined(u"ABC")); });
}

TEST(Defines, NamesThatDoNotFitTheListAreLeftOut) {
    // ";" and 25 names of 9 characters with their ";" fill 251 of 259 characters; a name of 8
    // characters no longer fits, one of 7 still does.
    std::vector<std::string> names;
    for (int i = 0; i < 25; ++i) names.push_back("NAME" + std::string(5 - std::to_string(i).size(), '0') + std::to_string(i));
    names.push_back("TOOLONG8");
    names.push_back("FITS__7");
    WithDefines(names, u"LANGUAGE", [] {
        EXPECT_TRUE(ZelIsDefined(u"NAME00000"));
        EXPECT_TRUE(ZelIsDefined(u"NAME00024"));
        EXPECT_FALSE(ZelIsDefined(u"TOOLONG8"));
        EXPECT_TRUE(ZelIsDefined(u"FITS__7"));
        EXPECT_FALSE(ZelIsDefined(u"LANGUAGE"));  // the list is full
    });
}

TEST(LayoutDirection, AskedAgainUntilTheLibraryHasItsFile) {
    ResourceData rightToLeft({{111, u"1"}});
    ResourceData none({{1, u"x"}});
    EXPECT_EQ(zeltest::RunInChild([&] {
                  ZelForgetDefines();
                  g_zelOwnModule.resourceHandle = nullptr;
                  if (ZelLayoutIsR2L()) return 1;
                  g_zelOwnModule.resourceHandle = rightToLeft.handle();
                  if (!ZelLayoutIsR2L()) return 2;
                  // With a file and no string 111 the answer 0 is final.
                  ZelForgetDefines();
                  g_zelOwnModule.resourceHandle = none.handle();
                  if (ZelLayoutIsR2L()) return 3;
                  g_zelOwnModule.resourceHandle = rightToLeft.handle();
                  return ZelLayoutIsR2L() ? 4 : 0;
              }),
              0);
    EXPECT_FALSE(ZelLayoutIsR2L());  // the library's own languages run left to right
}

}  // namespace
