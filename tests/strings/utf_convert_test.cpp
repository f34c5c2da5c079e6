// The six UTF converters: statuses, where both pointers stop, resuming, strict and lenient runs.
#include <gtest/gtest.h>

#include <zel/strings.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "strings/utf_test_types.h"

namespace {

using namespace utf_test;

using R8 = Outcome<ZelUTF8>;
using R16 = Outcome<ZelUTF16>;
using R32 = Outcome<ZelUTF32>;

// One call over the whole source into a target of exactly room places.
template <typename From, typename To>
Outcome<To> Convert(Converter<From, To> convert, const std::vector<From>& in, size_t room, DWORD flags) {
    std::vector<To> target(room);
    const From* src = in.data();
    To* tgt = target.data();
    const ZelConvResult status = convert(&src, in.data() + in.size(), &tgt, target.data() + room, flags);
    EXPECT_TRUE(src >= in.data() && src <= in.data() + in.size());
    EXPECT_TRUE(tgt >= target.data() && tgt <= target.data() + room);
    target.resize(size_t(tgt - target.data()));
    return {status, size_t(src - in.data()), target};
}

template <typename From, typename To>
Outcome<To> ConvertAll(Converter<From, To> convert, const std::vector<From>& in, DWORD flags = ZelConvStrict) {
    return Convert(convert, in, in.size() * 4, flags);
}

const DWORD kStrict = ZelConvStrict, kLenient = ZelConvLenient;

Bytes B(std::initializer_list<int> bytes) { return Bytes(bytes.begin(), bytes.end()); }
Units16 U16(std::u16string_view s) { return Units16(s.begin(), s.end()); }
Units32 U32(std::u32string_view s) { return Units32(s.begin(), s.end()); }
Bytes Utf8Of(const Units32& values) { return ConvertAll(&ZelConvertUTF32toUTF8, values, ZelConvLenient).out; }

// Mixed text with runs long enough for the word-sized paths: ASCII, Latin, Hangul, Kana, CJK and
// characters beyond the basic plane.
const Units32 kMixed =
    U32(U"Plain ASCII words, then caf\u00E9 \u00FCber \uAC00\uB098\uB2E4 \uD55C\uAE00\uACFC \u3072\u3089\u304C\u306A "
        U"\u30AB\u30BF\u30AB\u30CA \u6F22\u5B57 \U0001F600\U00020000\U0010FFFF and a closing run of ASCII words.\n");

TEST(UtfConvert, KnownEncodingsAndEmptySources) {
    const Bytes utf8 = B({0x41, 0x00, 0xC3, 0xA9, 0xEA, 0xB0, 0x80, 0xE3, 0x81, 0x82, 0xF0, 0x9F, 0x98, 0x80});
    const Units16 utf16 = U16(std::u16string_view(u"A\0\u00E9\uAC00\u3042\U0001F600", 7));
    const Units32 utf32 = U32(std::u32string_view(U"A\0\u00E9\uAC00\u3042\U0001F600", 6));  // a zero is a character
    for (DWORD flags : {kStrict, kLenient}) {
        EXPECT_EQ(ConvertAll(&ZelConvertUTF8toUTF16, utf8, flags).out, utf16);
        EXPECT_EQ(ConvertAll(&ZelConvertUTF8toUTF32, utf8, flags).out, utf32);
        EXPECT_EQ(ConvertAll(&ZelConvertUTF16toUTF8, utf16, flags).out, utf8);
        EXPECT_EQ(ConvertAll(&ZelConvertUTF16toUTF32, utf16, flags).out, utf32);
        EXPECT_EQ(ConvertAll(&ZelConvertUTF32toUTF8, utf32, flags).out, utf8);
        EXPECT_EQ(ConvertAll(&ZelConvertUTF32toUTF16, utf32, flags).out, utf16);
    }
    // A source at or behind its end changes nothing, even with no target room.
    auto untouched = []<typename From, typename To>(Converter<From, To> convert) {
        const From text[2] = {0x41, 0x42};
        To place{};
        for (const From* end : {text + 1, text + 0}) {
            const From* src = text + 1;
            To* tgt = &place;
            EXPECT_EQ(convert(&src, end, &tgt, tgt, ZelConvStrict), ZelConvOk);
            EXPECT_TRUE(src == text + 1 && tgt == &place);
        }
    };
    untouched(&ZelConvertUTF8toUTF16), untouched(&ZelConvertUTF8toUTF32), untouched(&ZelConvertUTF16toUTF8);
    untouched(&ZelConvertUTF16toUTF32), untouched(&ZelConvertUTF32toUTF8), untouched(&ZelConvertUTF32toUTF16);
}

// Stopping for want of room anywhere and resuming in a fresh target gives what one run gives,
// stops by illegal source included; so a character is written whole or not at all, a pair too. A
// stop that made no progress is retried with one place more.
template <typename From, typename To>
void ExpectStepsMatchOneRun(Converter<From, To> convert, const std::vector<From>& in, DWORD flags) {
    const Outcome<To> whole = ConvertAll(convert, in, flags);
    for (size_t room = 1; room <= 9; ++room) {
        Outcome<To> steps{ZelConvOk, 0, {}};
        for (size_t grant = room;;) {
            const Outcome<To> step =
                Convert(convert, std::vector<From>(in.begin() + ptrdiff_t(steps.consumed), in.end()), grant, flags);
            steps.consumed += step.consumed;
            steps.out.insert(steps.out.end(), step.out.begin(), step.out.end());
            steps.status = step.status;
            if (step.status != ZelConvTargetExhausted) break;
            grant = step.consumed == 0 ? grant + 1 : room;
        }
        EXPECT_EQ(steps, whole) << "room " << room << ", flags " << flags;
    }
}

TEST(UtfConvert, ResumingAfterTargetExhaustedMatchesOneRun) {
    const Bytes utf8 = Utf8Of(kMixed);
    const Units16 utf16 = ConvertAll(&ZelConvertUTF32toUTF16, kMixed).out;
    Bytes irregular8 = utf8;  // a surrogate's three-byte form
    irregular8.insert(irregular8.begin() + 30, {0xED, 0xB0, 0x80});
    Units16 irregular16 = utf16;  // a lone low surrogate, and a high one before a plain unit
    irregular16.insert(irregular16.begin() + 20, {0xDC00, 0x41, 0xDBFF, 0x42});
    Units32 irregular32 = kMixed;  // a surrogate and values beyond the last code point
    irregular32.insert(irregular32.begin() + 20, {0xD800, 0x41, 0x110000, 0x1FFFFF, 0xFFFFFFFF});
    for (DWORD flags : {kStrict, kLenient}) {
        for (const Bytes& in : {utf8, irregular8}) {
            ExpectStepsMatchOneRun(&ZelConvertUTF8toUTF16, in, flags);
            ExpectStepsMatchOneRun(&ZelConvertUTF8toUTF32, in, flags);
        }
        for (const Units16& in : {utf16, irregular16}) {
            ExpectStepsMatchOneRun(&ZelConvertUTF16toUTF8, in, flags);
            ExpectStepsMatchOneRun(&ZelConvertUTF16toUTF32, in, flags);
        }
        ExpectStepsMatchOneRun(&ZelConvertUTF32toUTF8, kMixed, flags);
        ExpectStepsMatchOneRun(&ZelConvertUTF32toUTF8, irregular32, flags);
        ExpectStepsMatchOneRun(&ZelConvertUTF32toUTF16, kMixed, flags);
    }
    // A strict run reports the values it passed over only at its end, so resuming can lose that
    // status; a lenient run resumes exactly.
    ExpectStepsMatchOneRun(&ZelConvertUTF32toUTF16, irregular32, ZelConvLenient);
}

// A UTF-8 source cut anywhere stops on the first byte of the cut sequence; given the rest, the
// converter goes on from there as if nothing had happened.
template <typename To>
void ExpectCutSourceResumes(Converter<ZelUTF8, To> convert, const Bytes& in) {
    const Outcome<To> whole = ConvertAll(convert, in);
    for (size_t cut = 0; cut <= in.size(); ++cut) {
        Outcome<To> head = ConvertAll(convert, Bytes(in.begin(), in.begin() + ptrdiff_t(cut)));
        EXPECT_EQ(head.status, head.consumed == cut ? ZelConvOk : ZelConvSourceExhausted) << cut;
        EXPECT_LT(cut - head.consumed, 4u) << cut;
        const Outcome<To> tail = ConvertAll(convert, Bytes(in.begin() + ptrdiff_t(head.consumed), in.end()));
        head.out.insert(head.out.end(), tail.out.begin(), tail.out.end());
        EXPECT_EQ((Outcome<To>{tail.status, head.consumed + tail.consumed, head.out}), whole) << cut;
    }
}

TEST(UtfConvert, CutUtf8SourceResumes) {
    ExpectCutSourceResumes(&ZelConvertUTF8toUTF16, Utf8Of(kMixed));
    ExpectCutSourceResumes(&ZelConvertUTF8toUTF32, Utf8Of(kMixed));
}

// Both decoders in both modes stop at the same place with the same status; each case has one
// ASCII byte for every byte before the stop.
void ExpectDecodeStop(const Bytes& in, ZelConvResult status, size_t consumed, size_t room = 64) {
    for (DWORD flags : {kStrict, kLenient}) {
        EXPECT_EQ(Convert(&ZelConvertUTF8toUTF16, in, room, flags), (R16{status, consumed, Units16(consumed, 0x61)}));
        EXPECT_EQ(Convert(&ZelConvertUTF8toUTF32, in, room, flags), (R32{status, consumed, Units32(consumed, 0x61)}));
    }
}

TEST(UtfConvert, Utf8TruncatedAndIllegalSequences) {
    ExpectDecodeStop(B({0x61, 0xE2, 0x82}), ZelConvSourceExhausted, 1);
    ExpectDecodeStop(B({0x61, 0xF0, 0x9F, 0x98}), ZelConvSourceExhausted, 1);
    // The length is tested before legality: 0xF8 and 0xFC announce five and six bytes, so near the
    // end they are cut off, as is a short sequence that is malformed anyway; with all their bytes
    // present they are illegal.
    ExpectDecodeStop(B({0x61, 0xF8, 0x62, 0x63}), ZelConvSourceExhausted, 1);
    ExpectDecodeStop(B({0x61, 0xFC, 0x80, 0x80, 0x80, 0x80}), ZelConvSourceExhausted, 1);
    ExpectDecodeStop(B({0x61, 0xE0, 0x41}), ZelConvSourceExhausted, 1);
    ExpectDecodeStop(B({0x61, 0xF8, 0x88, 0x80, 0x80, 0x80}), ZelConvSourceIllegal, 1);
    ExpectDecodeStop(B({0x61, 0xFC, 0x84, 0x80, 0x80, 0x80, 0x80}), ZelConvSourceIllegal, 1);
    // Legality is tested before the target: with no place left, a stray trailing byte, overlong
    // forms and a value beyond U+10FFFF are still reported as such, also behind a run of ASCII
    // long enough for the fast loop.
    for (const Bytes& sequence : {B({0x80}), B({0xC0, 0x80}), B({0xE0, 0x9F, 0xBF}), B({0xF4, 0x90, 0x80, 0x80})}) {
        Bytes in(9, 0x61);
        in.insert(in.end(), sequence.begin(), sequence.end());
        in.resize(in.size() + 16, 0x61);
        ExpectDecodeStop(in, ZelConvSourceIllegal, 9);
        ExpectDecodeStop(in, ZelConvSourceIllegal, 9, 9);
    }
    // A surrogate's three-byte form stops only a strict UTF-16 run, and there the target is tested
    // first: a full target stops the run without an error.
    const Bytes surrogate = B({0x61, 0xED, 0xA0, 0x80, 0x62});
    EXPECT_EQ(Convert(&ZelConvertUTF8toUTF16, surrogate, 8, kStrict), (R16{ZelConvSourceIllegal, 1, U16(u"a")}));
    EXPECT_EQ(Convert(&ZelConvertUTF8toUTF16, surrogate, 1, kStrict), (R16{ZelConvTargetExhausted, 1, U16(u"a")}));
}

// Every value's encoding decodes back to it, and nothing else decodes: every sequence of one and
// two bytes, every first and second byte of three, and otherwise each byte at the edges of the
// ranges that the rules tell apart; alone (the step by step path) and followed by text (the fast
// loop). A sequence is legal when the value its payload bits spell is at most U+10FFFF and encodes
// back to the very same bytes.
TEST(UtfConvert, Utf8DecodersAcceptExactlyTheEncodings) {
    size_t accepted = 0;
    auto probe = [&accepted](const Bytes& sequence) {
        ZelUTF32 value = sequence.size() == 1 ? sequence[0] : sequence[0] & (0x7Fu >> sequence.size());
        for (size_t k = 1; k < sequence.size(); ++k) value = value << 6 | (sequence[k] & 0x3Fu);
        const bool legal = value <= ZEL_UNICODE_LAST && Utf8Of({value}) == sequence;
        for (size_t padding : {0, 8}) {
            Bytes in = sequence;
            in.resize(sequence.size() + padding, 0x41);
            Units32 text(padding + 1, 0x41);
            text[0] = value;
            const R32 to32 = legal ? R32{ZelConvOk, in.size(), text} : R32{ZelConvSourceIllegal, 0, {}};
            const R16 to16 = legal ? R16{ZelConvOk, in.size(), ConvertAll(&ZelConvertUTF32toUTF16, text, kLenient).out}
                                   : R16{ZelConvSourceIllegal, 0, {}};
            ASSERT_EQ(ConvertAll(&ZelConvertUTF8toUTF32, in), to32) << testing::PrintToString(in);
            ASSERT_EQ(ConvertAll(&ZelConvertUTF8toUTF16, in, kLenient), to16) << testing::PrintToString(in);
            accepted += legal;
        }
    };
    const ZelUTF8 edges[] = {0x00, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xFF};
    auto isEdge = [&edges](unsigned b) { return std::find(std::begin(edges), std::end(edges), b) != std::end(edges); };
    for (unsigned b0 = 0; b0 < 0xF8; ++b0) {  // five and six bytes are never legal: tested above
        const size_t length = b0 < 0xC0 ? 1 : b0 < 0xE0 ? 2 : b0 < 0xF0 ? 3 : 4;
        for (unsigned b1 = 0; b1 < (length > 1 ? 0x100u : 1u); ++b1) {
            for (size_t i = 0; i < (length > 2 ? std::size(edges) : 1); ++i) {
                for (size_t j = 0; j < (length > 3 ? std::size(edges) : 1); ++j) {
                    if (length == 4 && !isEdge(b1)) continue;
                    Bytes sequence = {ZelUTF8(b0), ZelUTF8(b1), edges[i], edges[j]};
                    sequence.resize(length);
                    probe(sequence);
                    if (HasFatalFailure()) return;
                }
            }
        }
    }
    // Legal, in both runs: 0x80 single bytes, 0x780 pairs of bytes, 992 first and second bytes of
    // three (0xE0 0xA0 to 0xEF 0xBF) with six trailing bytes of the edges, and 24 of four (4 behind
    // 0xF0, 6 behind 0xF1 to 0xF3, 2 behind 0xF4) with six times six.
    EXPECT_EQ(accepted, 2 * (0x80u + 0x780u + 992 * 6 + 24 * 6 * 6));
}

// Whole ranges through the fast loops and back.
TEST(UtfConvert, EveryCodePointRoundTrips) {
    Units32 all;
    for (ZelUTF32 c = 0; c <= ZEL_UNICODE_LAST; ++c)
        if (c < ZEL_SURROGATE_HIGH_FIRST || c > ZEL_SURROGATE_LOW_LAST) all.push_back(c);
    const R16 utf16 = ConvertAll(&ZelConvertUTF32toUTF16, all);
    const R8 utf8 = ConvertAll(&ZelConvertUTF32toUTF8, all);
    ASSERT_EQ(utf16.status, ZelConvOk);
    ASSERT_EQ(utf8.status, ZelConvOk);
    EXPECT_EQ(ConvertAll(&ZelConvertUTF16toUTF32, utf16.out).out, all);
    EXPECT_EQ(ConvertAll(&ZelConvertUTF8toUTF32, utf8.out).out, all);
    EXPECT_EQ(ConvertAll(&ZelConvertUTF16toUTF8, utf16.out).out, utf8.out);
    EXPECT_EQ(ConvertAll(&ZelConvertUTF8toUTF16, utf8.out).out, utf16.out);
}

TEST(UtfConvert, Utf16LoneSurrogates) {
    // Where a strict run stops with ZelConvSourceIllegal, what it writes before, and what a lenient run
    // gives, lone halves as values.
    struct Case { Units16 in; size_t strictStop; Units32 strict, lenient; };
    const Case cases[] = {
        {{0x61, 0xDC00, 0x62}, 1, {0x61}, {0x61, 0xDC00, 0x62}},      // a low half alone
        {{0x61, 0xD800, 0x62}, 1, {0x61}, {0x61, 0xD800, 0x62}},      // a high half before a plain unit
        {{0xDBFF, 0xD83D, 0xDE00}, 0, {}, {0xDBFF, 0x1F600}},         // a high half before a pair
        {{0xD83D, 0xDE00, 0xDE00}, 2, {0x1F600}, {0x1F600, 0xDE00}},  // a pair and a low half
        {{0x61, 0xD800}, 2, {0x61, 0xD800}, {0x61, 0xD800}},          // last: no pair to make, no error
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.in));
        const ZelConvResult status = c.strictStop < c.in.size() ? ZelConvSourceIllegal : ZelConvOk;
        EXPECT_EQ(ConvertAll(&ZelConvertUTF16toUTF32, c.in, kStrict), (R32{status, c.strictStop, c.strict}));
        EXPECT_EQ(ConvertAll(&ZelConvertUTF16toUTF8, c.in, kStrict), (R8{status, c.strictStop, Utf8Of(c.strict)}));
        EXPECT_EQ(ConvertAll(&ZelConvertUTF16toUTF32, c.in, kLenient), (R32{ZelConvOk, c.in.size(), c.lenient}));
        // Lone halves take their three-byte form.
        EXPECT_EQ(ConvertAll(&ZelConvertUTF16toUTF8, c.in, kLenient), (R8{ZelConvOk, c.in.size(), Utf8Of(c.lenient)}));
    }
    // The pairing comes before the target test: a full target still reports the lone half.
    EXPECT_EQ(Convert(&ZelConvertUTF16toUTF32, Units16({0xDC00}), 0, ZelConvStrict).status, ZelConvSourceIllegal);
    EXPECT_EQ(Convert(&ZelConvertUTF16toUTF8, Units16({0xDC00}), 0, ZelConvStrict).status, ZelConvSourceIllegal);
}

TEST(UtfConvert, Utf32ToUtf16) {
    const Units32 beyond = {0x41, 0x110000, 0x42}, surrogate = {0x61, 0xDC00, 0x62};
    auto to16 = [](const Units32& in, size_t room, DWORD f) { return Convert(&ZelConvertUTF32toUTF16, in, room, f); };
    // Beyond U+10FFFF a strict run passes over the value, converts the rest and reports it at the
    // end, with the source used up; a lenient run writes U+FFFD.
    EXPECT_EQ(to16(beyond, 8, kStrict), (R16{ZelConvSourceIllegal, 3, U16(u"AB")}));
    EXPECT_EQ(to16(beyond, 8, kLenient), (R16{ZelConvOk, 3, U16(u"A\uFFFDB")}));
    // A later stop replaces the remembered status.
    EXPECT_EQ(to16({0xFFFFFFFF, 0x41, 0x42}, 1, kStrict), (R16{ZelConvTargetExhausted, 2, U16(u"A")}));
    EXPECT_EQ(to16({0x110000, 0x41, 0xDFFF, 0x42}, 8, kStrict), (R16{ZelConvSourceIllegal, 2, U16(u"A")}));
    // Surrogate values stop a strict run and pass a lenient one (any flags but 0) as they are; the
    // target is tested before the value.
    EXPECT_EQ(to16(surrogate, 8, kStrict), (R16{ZelConvSourceIllegal, 1, U16(u"a")}));
    EXPECT_EQ(to16(surrogate, 8, 0x80000000u), (R16{ZelConvOk, 3, {0x61, 0xDC00, 0x62}}));
    EXPECT_EQ(to16(surrogate, 1, kStrict), (R16{ZelConvTargetExhausted, 1, U16(u"a")}));
}

TEST(UtfConvert, Utf32ToUtf8) {
    // Up to 0x1FFFFF every value takes its four bytes, which the decoders refuse; from 0x200000 up,
    // U+FFFD. Neither is an error.
    const Units32 beyond = {0x110000, 0x1FFFFF, 0x200000, 0xFFFFFFFF}, surrogate = {0x61, 0xD800, 0x62};
    const Bytes beyond8 = B({0xF4, 0x90, 0x80, 0x80, 0xF7, 0xBF, 0xBF, 0xBF, 0xEF, 0xBF, 0xBD, 0xEF, 0xBF, 0xBD});
    for (DWORD flags : {kStrict, kLenient})
        EXPECT_EQ(Convert(&ZelConvertUTF32toUTF8, beyond, 16, flags), (R8{ZelConvOk, 4, beyond8}));
    EXPECT_EQ(Convert(&ZelConvertUTF32toUTF8, surrogate, 8, kStrict), (R8{ZelConvSourceIllegal, 1, B({0x61})}));
    EXPECT_EQ(Convert(&ZelConvertUTF32toUTF8, surrogate, 8, kLenient),
              (R8{ZelConvOk, 3, B({0x61, 0xED, 0xA0, 0x80, 0x62})}));
    // Here the value is tested before the target.
    EXPECT_EQ(Convert(&ZelConvertUTF32toUTF8, surrogate, 1, kStrict), (R8{ZelConvSourceIllegal, 1, B({0x61})}));
}

}  // namespace
