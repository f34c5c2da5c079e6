// Texts of system codes from the system's message table, alone and through the error state.
#include <gtest/gtest.h>

#include <string>

#include <zel/frame.h>

#include "frame/error_block.h"
#include "support/support.h"
#include "support/system.h"

namespace {

class SystemErrorText : public ::testing::Test {
protected:
    void SetUp() override { ZelClearError(); }
    void TearDown() override { ZelClearError(); }

    // A record whose text holds a mark, to see whether a call wrote it.
    static ZelErrorDetail Marked() {
        ZelErrorDetail detail{};
        detail.text[0] = u'@';
        return detail;
    }
};

// The texts below are the English ones: the system gives the user's language.
bool English() { return zeltest::SystemLocale({.lcid = "0x409"}).active(); }

// The system's English text of a code with the insert in its first place. Wine words its English
// messages otherwise (README, "Windows").
std::u16string SystemText(DWORD code, const std::u16string& insert = {}) {
    const bool wine = zeltest::RunningUnderWine();
    switch (code & 0xFFFF) {
    case 5: return wine ? u"Access denied. " : u"Access is denied. ";
    case 2: return wine ? u"File not found. " : u"The system cannot find the file specified. ";
    default: return wine ? u"Bad EXE format for " + insert + u". " : insert + u" is not a valid Win32 application. ";
    }
}

TEST_F(SystemErrorText, WithAndWithoutInsert) {
    if (!English()) GTEST_SKIP() << "the run in English checks the texts";
    ZelErrorDetail detail = Marked();
    EXPECT_TRUE(ZelFormatSystemError(nullptr, 0x80070005, &detail));
    EXPECT_EQ(std::u16string(detail.text), SystemText(5));

    // The insert fills the message's first place; a message without one leaves it unused.
    EXPECT_TRUE(ZelFormatSystemError(u"c:\\bin\\tool.exe", 0x800700C1, &detail));
    EXPECT_EQ(std::u16string(detail.text), SystemText(0xC1, u"c:\\bin\\tool.exe"));
    EXPECT_TRUE(ZelFormatSystemError(u"c:\\bin\\tool.exe", 0x80070002, &detail));
    EXPECT_EQ(std::u16string(detail.text), SystemText(2));
    // A long text is cut to 259 characters.
    std::u16string name(400, u'n');
    EXPECT_TRUE(ZelFormatSystemError(name.c_str(), 0x800700C1, &detail));
    EXPECT_EQ(std::u16string(detail.text), SystemText(0xC1, name).substr(0, 259));

    // A code the table lacks writes nothing.
    for (DWORD code : {0x80071234u, 0x82000001u}) {
        detail = Marked();
        EXPECT_FALSE(ZelFormatSystemError(nullptr, code, &detail)) << std::hex << code;
        EXPECT_FALSE(ZelFormatSystemError(u"x", code, &detail)) << std::hex << code;
        EXPECT_EQ(detail.text[0], u'@');
    }
}

TEST_F(SystemErrorText, InsertTakesTheRoadThroughTheAnsiCodePage) {
    // Korean survives the Korean code page: the text is the one of a plain name, with that name.
    zeltest::SystemLocale korean({.acp = "949"});
    if (!korean.active()) GTEST_SKIP() << "the run in the Korean code page checks it";
    ZelErrorDetail plain = Marked(), detail = Marked();
    ASSERT_TRUE(ZelFormatSystemError(u"c:\\x\\y.exe", 0x800700C1, &plain));
    ASSERT_TRUE(ZelFormatSystemError(u"c:\\한글\\도구.exe", 0x800700C1, &detail));
    std::u16string expected = plain.text;
    ASSERT_NE(expected.find(u"c:\\x\\y.exe"), std::u16string::npos);
    expected.replace(expected.find(u"c:\\x\\y.exe"), 10, u"c:\\한글\\도구.exe");
    EXPECT_EQ(std::u16string(detail.text), expected);
}

TEST_F(SystemErrorText, ErrorDetailDescribesSystemCodes) {
    if (!English()) GTEST_SKIP() << "the run in English checks the texts";
    ZelErrorDetail detail;
    ZelSetError(0x80070002);
    EXPECT_FALSE(ZelGetErrorDetail(&detail));  // the formatter answers 1 for a text it made
    EXPECT_EQ(std::u16string(detail.text), SystemText(2));

    // A file error with a system code takes the system's text.
    ZelSetFileError(0x80070005, u"c:\\data\\locked.txt");
    EXPECT_FALSE(ZelGetErrorDetail(&detail));
    EXPECT_EQ(std::u16string(detail.text), SystemText(5));
}

}  // namespace
