// Surrogate pair arithmetic.
#include <gtest/gtest.h>

#include <zel/strings.h>

namespace {

TEST(UtfSurrogates, PackAndUnpack) {
    EXPECT_EQ(_UCSCHAR_TO_SURCHAR(0xFFFF) | _UCSCHAR_TO_SURCHAR(0), 0u);  // the basic plane has no pair
    EXPECT_EQ(_SURCHAR_TO_UCSCHAR(0xD83DDE00), 0x1F600u);
    // Every pair agrees with the converters, and comes back; the step lands on both ends.
    for (DWORD c = 0x10000; c <= 0x10FFFF; c += 55) {
        const ZelUTF32 value = c;
        const ZelUTF32* src = &value;
        ZelUTF16 pair[2];
        ZelUTF16* tgt = pair;
        ASSERT_EQ(ZelConvertUTF32toUTF16(&src, src + 1, &tgt, pair + 2, ZelConvStrict), ZelConvOk);
        ASSERT_EQ(_UCSCHAR_TO_SURCHAR(c), DWORD(pair[0]) << 16 | pair[1]);
        ASSERT_EQ(_SURCHAR_TO_UCSCHAR(_UCSCHAR_TO_SURCHAR(c)), c);
        ASSERT_EQ(_MAKE_UCSCHAR(pair[0], pair[1]), c);
    }
}

TEST(UtfSurrogates, NothingIsChecked) {
    // Beyond U+10FFFF the high half runs past its range: 0x110000 gives two low halves.
    EXPECT_EQ(_UCSCHAR_TO_SURCHAR(0x110000), 0xDC00DC00u);
    // Halves out of their ranges give the plain 32-bit arithmetic, with the low half or-ed in.
    EXPECT_EQ(_MAKE_UCSCHAR(0xD801, 0xE3FF), 0x107FFu);
    EXPECT_EQ(_MAKE_UCSCHAR(0xD800, 0x0041), 0x2441u);  // wrapped around
    EXPECT_EQ(_SURCHAR_TO_UCSCHAR(0x00410042), _MAKE_UCSCHAR(0x41, 0x42));
}

}  // namespace
