// KChar and UTF-16 with a small table set of our own: each class of the code space, the flags
// that open it, the lookups behind the direct tables, and the old Hangul sequences.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <zel/codetables.h>
#include <zel/paths.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "code_table_writer.h"
#include "codetables/code_tables.h"
#include "codetables/hangul.h"
#include "codetables/kchar_internal.h"
#include "platform/win32.h"
#include "support/support.h"
#include "table_path_fixture.h"

namespace {

using KString = std::basic_string<KChar>;

constexpr DWORD kAllHangul = KConvSymbol | KConvHangul | KConvOldHangul;

class KCharTest : public ::testing::Test {
protected:
    void SetUp() override {
        code_ = dir_.path() + "/Code";
        ASSERT_TRUE(std::filesystem::create_directory(code_.c_str()));
        common_.emplace(dir_.path());
        ASSERT_TRUE(common_->registered());
        ZelResetCodeTablesForTest();
        WriteTables();
        ASSERT_EQ(kZelTableReady, LoadUnicodeTbl());
    }
    void TearDown() override {
        ZelResetCodeTablesForTest();
        common_.reset();
    }

    void Write(const std::string& kind, const std::vector<uint16_t>& elements) {
        const size_t count = kind == "pua" ? elements.size() / 4 : elements.size();
        ASSERT_TRUE(zeltables::WriteFile(zeltables::FileName(code_, 320, kind), {}, count,
                                         zeltables::Payload16(elements)));
    }

    void WriteTables() {
        std::vector<uint16_t> gen(16384, 0x3441), com(3328, 0x3441), pua(25600, 0), cjk(28416, 0x3441);
        for (size_t i = 0; i < pua.size(); i += 4) pua[i] = 0x3441;
        gen[0x41] = 0x41;
        gen[0x2000] = 0x0300;
        gen[0x3131] = 0x8841;  // the KS Jamo are Johab codes
        gen[0x314F] = 0x8461;
        com[0xFF01 - 0xF300] = 0x0400;
        cjk[0x4E00 - 0x3400] = 0x4000;
        cjk[0xF900 - 0x8C00] = 0x4001;
        cjk[0x4E01 - 0x3400] = 0x4001;  // the compatibility ideograph wins the way back
        pua[0xBC * 4] = 0x8821;         // U+E0BC: a code with a marked medial
        pua[0xBD * 4] = 0xD461;         // U+E0BD: an old initial with a modern medial
        pua[0x1785 * 4] = 0x8841;       // U+F785: a private-use Jamo
        Write("gen", gen);
        Write("com", com);
        Write("pua", pua);
        Write("cjk", cjk);
        Write("u2k", {0x2002, 0x0302, 0xFF02, 0x0402, 0x4E10, 0x4010, 0x4E12, 0x4012, 0xF901, 0x4020});
        Write("k2u", {0x0301, 0x2001, 0x4030, 0x4E40});
        Write("kor", {0x4E00, 0x4E05, 0x4E12, 0x4E11});
        Write("jpn", {0x4E10, 0x4E11, 0x4E00, 0x4E06});
        Write("chs", {0xF901, 0x4E30});
        Write("aux", {0xE100, 0x3800, 0x2603, 0x3801, 0xDC00, 0x3802});
    }

    zeltest::TempDir dir_;
    std::string code_;
    std::optional<ScopedCommon> common_;
};

std::u16string ToUnicode(DWORD flags, const KString& text, int size = 64, const WCHAR* substitute = nullptr) {
    std::vector<WCHAR> out(size + 1, 0x7777);
    const int n = ZelKCharToUnicode(flags, text.c_str(), -1, out.data(), size, substitute);
    EXPECT_EQ(0x7777, out[size]) << "written past the size";
    EXPECT_EQ(0, out[n]);
    return std::u16string(out.data(), n);
}

KString ToKChar(DWORD flags, const std::u16string& text, int size = 64, const KChar* substitute = nullptr) {
    std::vector<KChar> out(size + 1, 0x7777);
    const int n = ZelUnicodeToKChar(flags, text.c_str(), static_cast<int>(text.size()), out.data(), size, substitute);
    EXPECT_EQ(0x7777, out[size]) << "written past the size";
    EXPECT_EQ(0, out[n]);
    return KString(out.data(), n);
}

TEST_F(KCharTest, GeneralCharactersNeedTheSymbolFlag) {
    EXPECT_EQ(u'A', ZelKCharToUnicodeBase(0x41, KConvSymbol));
    EXPECT_EQ(0x41, ZelUnicodeToKCharBase(u'A', KConvSymbol));
    EXPECT_EQ(0xFFFD, ZelKCharToUnicodeBase(0x41, KConvHanja | KConvHangul));
    EXPECT_EQ(0x3441, ZelUnicodeToKCharBase(u'A', KConvHanja | KConvHangul));
    // The extra pairs answer for what the direct tables lack.
    EXPECT_EQ(0x2001, ZelKCharToUnicodeBase(0x0301, KConvSymbol));
    EXPECT_EQ(0x0302, ZelUnicodeToKCharBase(0x2002, KConvSymbol));
    EXPECT_EQ(0x2000, ZelKCharToUnicodeBase(0x0300, KConvSymbol));
    // The code of no mapping is itself unmapped.
    EXPECT_EQ(0xFFFD, ZelKCharToUnicodeBase(0x3441, KConvSymbol));
}

TEST_F(KCharTest, CommonAndAuxiliaryNeedNoFlag) {
    EXPECT_EQ(0x0400, ZelUnicodeToKCharBase(0xFF01, 0));
    EXPECT_EQ(0x0402, ZelUnicodeToKCharBase(0xFF02, 0));
    EXPECT_EQ(0xFF01, ZelKCharToUnicodeBase(0x0400, KConvSymbol));
    // Every lookup that fails ends in the auxiliary pairs, whatever the range.
    EXPECT_EQ(0x3800, ZelUnicodeToKCharBase(0xE100, 0));
    EXPECT_EQ(0x3801, ZelUnicodeToKCharBase(0x2603, 0));
    EXPECT_EQ(0x3802, ZelUnicodeToKCharBase(0xDC00, 0));
    EXPECT_EQ(0x3441, ZelUnicodeToKCharBase(0xDC01, kAllHangul | KConvHanja));
    EXPECT_EQ(0xE100, ZelKCharToUnicodeBase(0x3800, 0));
    EXPECT_EQ(0xFFFD, ZelKCharToUnicodeBase(0x3803, 0));
}

TEST_F(KCharTest, HanjaWithLanguageVariants) {
    EXPECT_EQ(0x4E00, ZelKCharToUnicodeBase(0x4000, KConvHanja));
    EXPECT_EQ(0xFFFD, ZelKCharToUnicodeBase(0x4000, KConvSymbol));
    EXPECT_EQ(0x4000, ZelUnicodeToKCharBase(0x4E00, KConvHanja));
    EXPECT_EQ(0xF900, ZelKCharToUnicodeBase(0x4001, KConvHanja));
    EXPECT_EQ(0x4E40, ZelKCharToUnicodeBase(0x4030, KConvHanja));

    // Toward Unicode one language flag picks its variant; two pick none.
    EXPECT_EQ(0x4E05, ZelKCharToUnicodeBase(0x4000, KConvHanja | KConvKor));
    EXPECT_EQ(0x4E06, ZelKCharToUnicodeBase(0x4000, KConvHanja | KConvJpn));
    EXPECT_EQ(0x4E00, ZelKCharToUnicodeBase(0x4000, KConvHanja | KConvKor | KConvJpn));

    // Toward KChar a variant opens a second pass; Kor is tried before Jpn.
    EXPECT_EQ(0x3441, ZelUnicodeToKCharBase(0x4E11, KConvHanja));
    EXPECT_EQ(0x4010, ZelUnicodeToKCharBase(0x4E11, KConvHanja | KConvJpn));
    EXPECT_EQ(0x4012, ZelUnicodeToKCharBase(0x4E11, KConvHanja | KConvKor));
    EXPECT_EQ(0x4012, ZelUnicodeToKCharBase(0x4E11, KConvHanja | KConvKor | KConvJpn));
    EXPECT_EQ(0x4010, ZelUnicodeToKCharBase(0x4E11, KConvHanja | KConvCht | KConvJpn));  // Cht has no pair
    EXPECT_EQ(0x3441, ZelUnicodeToKCharBase(0x4E11, KConvJpn));
    // A variant that is a compatibility ideograph is refused.
    EXPECT_EQ(0x4020, ZelUnicodeToKCharBase(0xF901, KConvHanja));
    EXPECT_EQ(0x3441, ZelUnicodeToKCharBase(0x4E30, KConvHanja | KConvChs));
}

TEST_F(KCharTest, EveryModernSyllableRoundTrips) {
    for (WCHAR u = 0xAC00; u <= 0xD7A3; ++u) {
        const KChar h = ZelUnicodeToKCharBase(u, KConvHangul);
        ASSERT_GE(h, 0x8000) << std::hex << int(u);
        ASSERT_EQ(u, ZelKCharToUnicodeBase(h, KConvHangul)) << std::hex << int(u) << " " << h;
    }
    EXPECT_EQ(0x8861, ZelUnicodeToKCharBase(0xAC00, KConvHangul));
    EXPECT_EQ(0xFFFD, ZelKCharToUnicodeBase(0x8861, KConvSymbol | KConvHanja));
    EXPECT_EQ(0x3441, ZelUnicodeToKCharBase(0xAC00, KConvOldHangul));
    // The Johab codes of the KS syllable list are the syllables of the code.
    const WORD* ks = ZelGetKSTblPtr();
    for (int i = 0; i < kZelKsCount; ++i) {
        const WCHAR u = ZelKCharToUnicodeBase(ks[i], KConvHangul);
        ASSERT_TRUE(u >= 0xAC00 && u <= 0xD7A3) << std::hex << ks[i];
        ASSERT_EQ(ks[i], ZelUnicodeToKCharBase(u, KConvHangul));
    }
}

TEST_F(KCharTest, ModernJamoComeBackInCompatibilityForm) {
    EXPECT_EQ(0x8841, ZelUnicodeToKCharBase(0x1100, KConvHangul));
    EXPECT_EQ(0x3131, ZelKCharToUnicodeBase(0x8841, KConvHangul));
    for (WCHAR u = 0x1100; u <= 0x11C2; ++u) {
        if ((u > 0x1112 && u < 0x1161) || (u > 0x1175 && u < 0x11A8)) continue;
        const KChar h = ZelUnicodeToKCharBase(u, KConvHangul);
        EXPECT_EQ(0x3130 + JamoToCompatTbl[u - 0x1100], ZelKCharToUnicodeBase(h, KConvHangul)) << std::hex << int(u);
    }
    // Compatibility Jamo are general characters of the "gen" table.
    EXPECT_EQ(0x8841, ZelUnicodeToKCharBase(0x3131, KConvHangul | KConvSymbol));
    EXPECT_EQ(0x3441, ZelUnicodeToKCharBase(0x3131, KConvHangul));
}

TEST_F(KCharTest, OldJamoTakeTheFirstCodeOfTheirTable) {
    int checked = 0;
    for (int n = 0; n < kZelJohabJamoCount; ++n) {
        const WCHAR u = JohabJamoTbl[n];
        const bool old = (u >= 0x1113 && u <= 0x1159) || (u >= 0x1176 && u <= 0x11A2) || (u >= 0x11C3 && u <= 0x11F9);
        if (!old) continue;
        const KChar h = ZelUnicodeToKCharBase(u, KConvOldHangul);
        ASSERT_EQ(0x8000 + (n / 32) * 1024 + n % 32, h) << std::hex << int(u);
        // A code of a single Jamo needs no flag on the way back.
        ASSERT_EQ(u, ZelKCharToUnicodeBase(h, 0));
        ++checked;
    }
    EXPECT_GT(checked, 150);
    EXPECT_EQ(0x3441, ZelUnicodeToKCharBase(0x1113, KConvHangul));
    EXPECT_EQ(0xFFFD, ZelKCharToUnicodeBase(0x8002, 0));  // an empty entry
}

TEST_F(KCharTest, OldSyllablesByRecordOrSequence) {
    // A marked medial is a syllable of the "pua" records, whatever the flags.
    EXPECT_EQ(0xE0BC, ZelKCharToUnicodeBase(0x8821, 0));
    EXPECT_EQ(0xFFFD, ZelKCharToUnicodeBase(0x8822, kAllHangul));
    EXPECT_EQ(0x8821, ZelUnicodeToKCharBase(0xE0BC, KConvOldHangul));
    EXPECT_EQ(0x3441, ZelUnicodeToKCharBase(0xE0BC, KConvHangul));
    // A code that composes to no modern syllable: its record, else a sequence.
    EXPECT_EQ(0xFFFD, ZelKCharToUnicodeBase(0xD461, KConvHangul));
    EXPECT_EQ(0xE0BD, ZelKCharToUnicodeBase(0xD461, KConvOldHangul));
    EXPECT_EQ(u"\xF7B1\xF80B\xF86A", ToUnicode(KConvOldHangul, {0xD481}));
    EXPECT_EQ(u"\xFFFD", ToUnicode(KConvHangul, {0xD481}));
    // ... and the sequence comes back as the same code.
    EXPECT_EQ(KString{0xD481}, ToKChar(KConvOldHangul, u"\xF7B1\xF80B\xF86A"));
}

TEST_F(KCharTest, PrivateUseJamoFormSequencesInOrder) {
    EXPECT_EQ((KString{0x8861, 0x41}), ToKChar(kAllHangul, u"\xF785\xF807\xF86A" u"A"));
    // What isn't a whole sequence goes unit by unit, by the "pua" record of each.
    EXPECT_EQ(KString{0x8841}, ToKChar(kAllHangul, u"\xF785"));
    EXPECT_EQ(KString{0x3441}, ToKChar(kAllHangul & ~KConvOldHangul, u"\xF785"));
    // An initial after a medial opens a new sequence.
    EXPECT_EQ((KString{0x3441, 0x8841, 0x3441}), ToKChar(kAllHangul, u"\xF807\xF785\xF86A"));
    // A length that ends inside a sequence ends the sequence.
    std::vector<KChar> out(4);
    EXPECT_EQ(2, ZelUnicodeToKChar(kAllHangul, u"\xF785\xF807\xF86A", 2, out.data(), 4, nullptr));
    EXPECT_EQ((KString{0x8841, 0x3441}), KString(out.data()));
    // U+FFFE converts what the multi-code buffer holds.
    WCHAR* multi = GetMultiCode();
    multi[0] = 0xF785;
    multi[1] = 0xF807;
    multi[2] = 0xF86A;
    multi[3] = 0;
    EXPECT_EQ(KString{0x8861}, ToKChar(kAllHangul, u"\xFFFE"));
    EXPECT_EQ(0x3441, ZelUnicodeToKCharBase(0xFFFE, KConvHangul));
}

TEST_F(KCharTest, SubstitutesAndTheEndOfTheBuffer) {
    const WCHAR wideSub[] = u"<?>";
    // The input 0x3441 stays U+FFFD; other unmapped codes take the substitute.
    EXPECT_EQ(u"A\xFFFD<?>", ToUnicode(KConvSymbol, {0x41, 0x3441, 0x4000}, 64, wideSub));
    EXPECT_EQ(u"A<", ToUnicode(KConvSymbol, {0x41, 0x4000, 0x41}, 3, wideSub));
    const KChar kSub[] = {0x3F, 0x3F, 0};
    EXPECT_EQ((KString{0x41, 0x3441, 0x3F, 0x3F}), ToKChar(KConvSymbol, u"A\xFFFD\x4E00", 64, kSub));
    EXPECT_EQ((KString{0x41, 0x3F}), ToKChar(KConvSymbol, u"A\x4E00", 3, kSub));
    // A sequence that doesn't fit is dropped and what follows still goes in.
    EXPECT_EQ(u"A", ToUnicode(KConvSymbol | KConvOldHangul, {0xD481, 0x41}, 3));
    EXPECT_EQ(u"\xF7B1\xF80B\xF86A", ToUnicode(KConvOldHangul, {0xD481, 0x41}, 4));
    // Sizes of 1 and 0 and a null text.
    EXPECT_EQ(u"", ToUnicode(KConvSymbol, {0x41}, 1));
    EXPECT_EQ(0, ZelKCharToUnicode(KConvSymbol, nullptr, -1, nullptr, 0, nullptr));
    WCHAR one[2] = {0x7777, 0x7777};
    EXPECT_EQ(0, ZelKCharToUnicode(KConvSymbol, nullptr, 5, one, 2, nullptr));
    EXPECT_EQ(0, one[0]);
}

TEST_F(KCharTest, ThroughACodePage) {
    const KChar text[] = {0x8861, 0x41, 0};
    char narrow[8] = {};
    // The system's count of a zero-terminated text holds the terminator.
    EXPECT_EQ(4, ZelKCharToAnsi(kAllHangul, 949, text, -1, narrow, sizeof narrow, nullptr));
    EXPECT_STREQ("\xB0\xA1" "A", narrow);
    KChar back[8] = {};
    EXPECT_EQ(2, ZelAnsiToKChar(kAllHangul, 949, narrow, -1, back, 8, nullptr));
    EXPECT_EQ(KString(text), KString(back));
    // Below a size of 2 only a terminator is written.
    narrow[0] = 'x';
    EXPECT_EQ(0, ZelKCharToAnsi(kAllHangul, 949, text, -1, narrow, 1, nullptr));
    EXPECT_EQ(0, narrow[0]);
}

TEST_F(KCharTest, MultiCodeToUnicodeLoadsAndSetsTheMode) {
    WCHAR* multi = GetMultiCode();
    multi[0] = 0xF785;
    multi[1] = 0xF807;
    multi[2] = 0xF86A;
    multi[3] = 0;
    int split = -1;
    EXPECT_EQ(0xAC00, ZelMultiUnicodeToUniCode(7, &split));
    EXPECT_EQ(1, ZelMultiMode());
    EXPECT_EQ(0, split);
    EXPECT_EQ(0xAC00, ZelMultiUnicodeToUniCode(0, nullptr));
    EXPECT_EQ(0, ZelMultiMode());

    ZelResetCodeTablesForTest();
    ZelUnregisterPath(u"Common");
    ASSERT_TRUE(ZelRegisterPath(u"Common", u"\\nonexistent-kchar-tables"));
    EXPECT_EQ(0xFFFD, ZelMultiUnicodeToUniCode(0, &split));
    EXPECT_EQ(kZelTableBusyOrFailed, ZelMainTableState());
}

}  // namespace
