// The code page front end on the system's conversion: counts, terminators and small buffers. The
// Japanese text goes through EUC-JP (20932), which has no code table file, so the system converts it
// whatever tables are installed.
#include <gtest/gtest.h>
#include <zel/codetables.h>

#include <string>

namespace {

const char kNihon[] = "\xC6\xFC\xCB\xDC";  // 日本 in EUC-JP

TEST(CodePageFront, CountsAndTerminatorsOfTheMainForms) {
    WCHAR wide[8];
    // With a length of -1 the system's count includes the terminator; with a length, it doesn't.
    EXPECT_EQ(3, ZelAnsiToUnicode(0, 20932, kNihon, -1, wide, 8, 0));
    EXPECT_EQ(std::u16string(u"日本"), wide);
    EXPECT_EQ(2, ZelAnsiToUnicode(0, 20932, kNihon, 4, wide, 8, 0));
    EXPECT_EQ(0, wide[2]);

    char narrow[8];
    EXPECT_EQ(5, ZelUnicodeToAnsi(0, 20932, u"日本", -1, narrow, 8, nullptr));
    EXPECT_EQ(std::string(kNihon), narrow);
    EXPECT_EQ(1, ZelUnicodeToAnsi(0, 1252, u"日", 1, narrow, 8, "*"));
    EXPECT_EQ(std::string("*"), narrow);

    // A size of 1 writes the terminator alone; 0 writes nothing.
    wide[0] = u'x';
    EXPECT_EQ(0, ZelAnsiToUnicode(0, 20932, kNihon, -1, wide, 1, 0));
    EXPECT_EQ(0, wide[0]);
    narrow[0] = 'x';
    EXPECT_EQ(0, ZelUnicodeToAnsi(0, 20932, u"日", -1, narrow, 0, nullptr));
    EXPECT_EQ('x', narrow[0]);
}

TEST(CodePageFront, AFullBufferKeepsItsTerminatorInside) {
    char narrow[5] = {'x', 'x', 'x', 'x', 'x'};
    // Four bytes of text and the terminator fill the whole buffer.
    EXPECT_EQ(5, ZelUnicodeToAnsi(0, 20932, u"日本", -1, narrow, 5, nullptr));
    EXPECT_EQ(0, narrow[4]);
    // One byte less, and the system converts nothing: an empty text.
    char small[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(0, ZelUnicodeToAnsi(0, 20932, u"日本", -1, small, 4, nullptr));
    EXPECT_EQ(0, small[0]);
}

TEST(CodePageFront, AnsiToAnsiGoesThroughWideText) {
    char utf8[16];
    EXPECT_EQ(7, ZelAnsiToAnsi(0, 20932, kNihon, -1, 65001, utf8, 16, nullptr));
    EXPECT_EQ(std::string("日本"), utf8);
    // A target of one byte holds the terminator only.
    EXPECT_EQ(0, ZelAnsiToAnsi(0, 20932, kNihon, -1, 65001, utf8, 1, nullptr));
    EXPECT_EQ(0, utf8[0]);
}

TEST(CodePageFront, TheOverloadsLeaveSmallBuffersAlone) {
    WCHAR wide[4] = {u'x', u'x', u'x', u'x'};
    EXPECT_EQ(0, ZelAnsiToUnicode(0, 20932, kNihon, -1, wide, 1));
    EXPECT_EQ(u'x', wide[0]);
    EXPECT_EQ(3, ZelAnsiToUnicode(0, 20932, kNihon, -1, wide, 4));
    EXPECT_EQ(std::u16string(u"日本"), wide);
    // Too small for the system: nothing converted and no terminator.
    wide[0] = u'x';
    EXPECT_EQ(0, ZelAnsiToUnicode(0, 20932, kNihon, -1, wide, 2));
    char narrow[8] = "xxxxxxx";
    EXPECT_EQ(0, ZelUnicodeToAnsi(0, 20932, u"日本", -1, narrow, 3));
    EXPECT_EQ('x', narrow[2]);
    EXPECT_EQ(4, ZelAnsiToAnsi(0, 20932, "\xC6\xFC", -1, 65001, narrow, 8));
    EXPECT_EQ(std::string("日"), narrow);
}

}  // namespace
