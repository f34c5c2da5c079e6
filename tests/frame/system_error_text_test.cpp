// Texts of system codes from the system's message table, alone and through the error state.
#include <gtest/gtest.h>

#include <string>

#include <zel/frame.h>

#include "frame/error_block.h"
#include "support/support.h"

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

TEST_F(SystemErrorText, WithAndWithoutInsert) {
    ZelErrorDetail detail = Marked();
    EXPECT_TRUE(ZelFormatSystemError(nullptr, 0x80070005, &detail));
    EXPECT_EQ(std::u16string(detail.text), u"Access is denied. ");

    // The insert fills the message's first place; a message without one leaves it unused.
    EXPECT_TRUE(ZelFormatSystemError(u"c:\\bin\\tool.exe", 0x800700C1, &detail));
    EXPECT_EQ(std::u16string(detail.text), u"c:\\bin\\tool.exe is not a valid Win32 application. ");
    EXPECT_TRUE(ZelFormatSystemError(u"c:\\bin\\tool.exe", 0x80070002, &detail));
    EXPECT_EQ(std::u16string(detail.text), u"The system cannot find the file specified. ");
    // A long text is cut to 259 characters.
    std::u16string name(400, u'n');
    EXPECT_TRUE(ZelFormatSystemError(name.c_str(), 0x800700C1, &detail));
    EXPECT_EQ(std::u16string(detail.text), name.substr(0, 259));

    // A code the table lacks writes nothing.
    for (DWORD code : {0x80071234u, 0x82000001u}) {
        detail = Marked();
        EXPECT_FALSE(ZelFormatSystemError(nullptr, code, &detail)) << std::hex << code;
        EXPECT_FALSE(ZelFormatSystemError(u"x", code, &detail)) << std::hex << code;
        EXPECT_EQ(detail.text[0], u'@');
    }
}

TEST_F(SystemErrorText, InsertTakesTheRoadThroughTheAnsiCodePage) {
    zeltest::ScopedEnv acp("ZEL_ACP", std::string("949"));
    ZelErrorDetail detail = Marked();
    ASSERT_TRUE(ZelFormatSystemError(u"c:\\한글\\도구.exe", 0x800700C1, &detail));
    EXPECT_EQ(std::u16string(detail.text), u"c:\\한글\\도구.exe is not a valid Win32 application. ");
}

TEST_F(SystemErrorText, ErrorDetailDescribesSystemCodes) {
    ZelErrorDetail detail;
    ZelSetError(0x80070002);
    EXPECT_FALSE(ZelGetErrorDetail(&detail));  // the formatter answers 1 for a text it made
    EXPECT_EQ(std::u16string(detail.text), u"The system cannot find the file specified. ");

    // A file error with a system code takes the system's text.
    ZelSetFileError(0x80070005, u"c:\\data\\locked.txt");
    EXPECT_FALSE(ZelGetErrorDetail(&detail));
    EXPECT_EQ(std::u16string(detail.text), u"Access is denied. ");
}

}  // namespace
