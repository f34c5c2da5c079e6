// Temporary names below the registered Temp directory, in both name formats.
#include <gtest/gtest.h>
#include <zel/paths.h>

#include <cstdio>
#include <string>

#include "paths/temp_names.h"
#include "platform/win32.h"
#include "support/support.h"
#include "support/system.h"

namespace {

bool Exists(const std::u16string& path) { return zeltest::Exists(ZelPlatformPathToSystem(path.c_str())); }

// A name as the system writes it, compared without the case of its digits under Wine, which
// writes them in lower case where Windows writes upper case.
std::u16string SystemName(std::u16string name) {
    if (zeltest::RunningUnderWine())
        for (WCHAR& c : name) c = c >= u'a' && c <= u'f' ? WCHAR(c - u'a' + u'A') : c;
    return name;
}

void Touch(const std::u16string& path) { zeltest::WriteFile(ZelPlatformPathToSystem(path.c_str()), ""); }

// Temp at a fresh directory for the length of a test, with the default row put back behind it.
class TempName : public ::testing::Test {
protected:
    void SetUp() override {
        ZelPathToAbsolute(u"${Temp}", oldTemp_);
        hadTemp_ = ZelUnregisterPath(u"Temp");
        ASSERT_TRUE(ZelRegisterPath(u"Temp", temp_.c_str()));
    }
    void TearDown() override {
        ZelUnregisterPath(u"Temp");
        if (hadTemp_) ZelRegisterPath(u"Temp", oldTemp_);
    }

    zeltest::TempDir dir_;
    const std::u16string temp_ = ZelPlatformPathFromSystem(dir_.path().c_str());
    WCHAR oldTemp_[MAX_PATH];
    BOOL hadTemp_ = 0;
    WCHAR name_[MAX_PATH];
};

}  // namespace

TEST_F(TempName, AFixedNumberOnlyFormsTheName) {
    EXPECT_EQ(0x1234u, ZelPathMakeTempEx(u"sub\\", u"pre", 0x1234, u"ext", name_));
    char thread[16] = "";
    if (ZelGetWinVersion() > 3) std::snprintf(thread, sizeof thread, "%08x", GetCurrentThreadId());
    EXPECT_EQ(temp_ + u"\\sub\\pre" + ZelPlatformUtf8ToWide(thread) + u"1234.ext", name_);
    EXPECT_FALSE(Exists(temp_ + u"\\sub"));
    EXPECT_EQ(7u, ZelPathMakeTemp(u"abc", 7, name_));
    EXPECT_FALSE(Exists(name_));
    EXPECT_EQ(0u, ZelPathMakeTempEx(std::u16string(260, u's').c_str(), u"t", 1, u"x", name_));
    EXPECT_EQ(0u, ZelPathMakeTempEx(nullptr, u"t", 1, std::u16string(250, u'e').c_str(), name_));
    EXPECT_EQ(u'\0', name_[0]);
}

// As the system writes them: up to three characters of the prefix, then the number in upper case
// hexadecimal without leading zeros.
TEST_F(TempName, SystemNamesCarryTheNumberWithoutLeadingZeros) {
    struct Case {
        const WCHAR* prefix;
        UINT number;
        const WCHAR* name;
    };
    for (const Case& c : {Case{u"pre", 5, u"pre5.tmp"}, Case{u"IMG", 1000, u"IMG3E8.tmp"},
                          Case{u"abcd", 0x1abc, u"abc1ABC.tmp"}, Case{u"", 0xFFFF, u"FFFF.tmp"}}) {
        EXPECT_EQ(c.number, ZelPathMakeTemp(c.prefix, c.number, name_));
        EXPECT_EQ(SystemName(temp_ + u"\\" + c.name), SystemName(name_));
    }
}

TEST_F(TempName, SearchSkipsTakenNamesAndNeverUsesZero) {
    ZelSetTempSequenceCounter(0x10);
    ASSERT_TRUE(ZelPathCreate(u"${Temp}\\s\\") && ZelPathMakeTempEx(u"s\\", u"t", 0x11, u"x", name_));
    Touch(name_);
    EXPECT_EQ(0x12u, ZelPathMakeTempEx(u"s\\", u"t", 0, u"x", name_));
    EXPECT_FALSE(Exists(name_));
    EXPECT_EQ(0x11, ZelTempSequenceCounter());
    ZelSetTempSequenceCounter(0xFFFF);
    EXPECT_EQ(1u, ZelPathMakeTempEx(nullptr, u"t", 0, u"x", name_));
    ZelSetTempSequenceCounter(0);
    EXPECT_NE(0u, ZelPathMakeTempEx(nullptr, u"t", 0, u"x", name_));
    // The system's numbering creates the file.
    EXPECT_NE(0u, ZelPathMakeTemp(u"abc", 0, name_));
    EXPECT_TRUE(Exists(name_));
}

TEST_F(TempName, ImageNamesTakeTheSourceExtensionAndSkipExistingFiles) {
    auto imageName = [&](unsigned n) {
        char digits[16];
        std::snprintf(digits, sizeof digits, "%X", n);
        return temp_ + u"\\IMG" + ZelPlatformUtf8ToWide(digits) + u".jpg";
    };
    WCHAR first[MAX_PATH], second[MAX_PATH];
    ASSERT_TRUE(ZelPathMakeImageTemp(u"c:\\pictures\\b.jpg", first));
    const std::u16string stem = std::u16string(first).substr(temp_.size() + 4);
    const unsigned number = std::stoul(ZelPlatformWideToUtf8(stem), nullptr, 16);
    EXPECT_EQ(SystemName(imageName(number)), SystemName(first));
    Touch(imageName(number + 1));
    ASSERT_TRUE(ZelPathMakeImageTemp(u"b.jpg", second));
    EXPECT_EQ(SystemName(imageName(number + 2)), SystemName(second));
    ASSERT_TRUE(ZelPathMakeImageTemp(u"noextension", second));
    EXPECT_EQ(std::u16string::npos, std::u16string(second).find(u'.', temp_.size()));
}
