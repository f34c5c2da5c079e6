// The code page front end on the system's conversion: counts, terminators and small buffers. The
// Korean text goes through EUC-KR (51949), which has no code table file, so the system converts it
// whatever tables are installed.
#include <gtest/gtest.h>
#include <zel/codetables.h>

#include <string>

namespace {

const char kHangul[] = "\xC7\xD1\xB1\xDB";  // 한글 in EUC-KR

TEST(CodePageFront, CountsAndTerminatorsOfTheMainForms) {
    WCHAR wide[8];
    // With a length of -1 the system's count includes the terminator; with a length, it doesn't.
    EXPECT_EQ(3, ZelAnsiToUnicode(0, 51949, kHangul, -1, wide, 8, 0));
    EXPECT_EQ(std::u16string(u"한글"), wide);
    EXPECT_EQ(2, ZelAnsiToUnicode(0, 51949, kHangul, 4, wide, 8, 0));
    EXPECT_EQ(0, wide[2]);

    char narrow[8];
    EXPECT_EQ(5, ZelUnicodeToAnsi(0, 51949, u"한글", -1, narrow, 8, nullptr));
    EXPECT_EQ(std::string(kHangul), narrow);
    EXPECT_EQ(1, ZelUnicodeToAnsi(0, 1252, u"한", 1, narrow, 8, "*"));
    EXPECT_EQ(std::string("*"), narrow);

    // A size of 1 writes the terminator alone; 0 writes nothing.
    wide[0] = u'x';
    EXPECT_EQ(0, ZelAnsiToUnicode(0, 51949, kHangul, -1, wide, 1, 0));
    EXPECT_EQ(0, wide[0]);
    narrow[0] = 'x';
    EXPECT_EQ(0, ZelUnicodeToAnsi(0, 51949, u"한", -1, narrow, 0, nullptr));
    EXPECT_EQ('x', narrow[0]);
}

TEST(CodePageFront, AFullBufferKeepsItsTerminatorInside) {
    char narrow[5] = {'x', 'x', 'x', 'x', 'x'};
    // Four bytes of text and the terminator fill the whole buffer.
    EXPECT_EQ(5, ZelUnicodeToAnsi(0, 51949, u"한글", -1, narrow, 5, nullptr));
    EXPECT_EQ(0, narrow[4]);
    // One byte less, and the system converts nothing: an empty text.
    char small[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(0, ZelUnicodeToAnsi(0, 51949, u"한글", -1, small, 4, nullptr));
    EXPECT_EQ(0, small[0]);
}

TEST(CodePageFront, AnsiToAnsiGoesThroughWideText) {
    char utf8[16];
    EXPECT_EQ(7, ZelAnsiToAnsi(0, 51949, kHangul, -1, 65001, utf8, 16, nullptr));
    EXPECT_EQ(std::string("한글"), utf8);
    // A target of one byte holds the terminator only.
    EXPECT_EQ(0, ZelAnsiToAnsi(0, 51949, kHangul, -1, 65001, utf8, 1, nullptr));
    EXPECT_EQ(0, utf8[0]);
}

TEST(CodePageFront, TheOverloadsLeaveSmallBuffersAlone) {
    WCHAR wide[4] = {u'x', u'x', u'x', u'x'};
    EXPECT_EQ(0, ZelAnsiToUnicode(0, 51949, kHangul, -1, wide, 1));
    EXPECT_EQ(u'x', wide[0]);
    EXPECT_EQ(3, ZelAnsiToUnicode(0, 51949, kHangul, -1, wide, 4));
    EXPECT_EQ(std::u16string(u"한글"), wide);
    // Too small for the system: nothing converted and no terminator.
    wide[0] = u'x';
    EXPECT_EQ(0, ZelAnsiToUnicode(0, 51949, kHangul, -1, wide, 2));
    char narrow[8] = "xxxxxxx";
    EXPECT_EQ(0, ZelUnicodeToAnsi(0, 51949, u"한글", -1, narrow, 3));
    EXPECT_EQ('x', narrow[2]);
    EXPECT_EQ(4, ZelAnsiToAnsi(0, 51949, "\xC7\xD1", -1, 65001, narrow, 8));
    EXPECT_EQ(std::string("한"), narrow);
}

}  // namespace
