// The block-transcoding converters against the scalar ones: on random and adversarial text, with
// every cut of the source and every target size near the end, both give the same status, stop
// both pointers at the same place, write the same units and leave everything behind the target
// pointer untouched.
#include <gtest/gtest.h>

#include <zel/strings.h>

#include <cstdint>
#include <random>
#include <vector>

#include "strings/utf_blocks.h"
#include "strings/utf_test_types.h"

namespace {

using namespace utf_test;

// One run into a target filled with a mark beforehand; the outcome holds the whole target.
template <typename From, typename To>
Outcome<To> Run(Converter<From, To> convert, const From* in, size_t count, size_t room, DWORD flags) {
    const std::vector<From> source(in, in + count);  // exactly its size, for the address sanitizer
    std::vector<To> target(room, To(0xA5));
    const From* src = source.data();
    To* tgt = target.data();
    const ZelConvResult status = convert(&src, source.data() + count, &tgt, target.data() + room, flags);
    EXPECT_TRUE(tgt >= target.data() && tgt <= target.data() + room);
    return {status, size_t(src - source.data()), target};
}

// Holds the exported converter to the scalar one on in: whole, cut at every place from `cutsFrom`
// on, and with every target room from `roomsFrom` to a little above what the whole needs.
template <typename From, typename To>
void ExpectSame(Converter<From, To> blocks, Converter<From, To> scalar, const std::vector<From>& in,
                size_t cutsFrom = SIZE_MAX, size_t roomsFrom = SIZE_MAX) {
    const size_t fullRoom = in.size() * (sizeof(To) == 1 ? 3 : 1) + 8;
    for (DWORD flags : {DWORD(ZelConvStrict), DWORD(ZelConvLenient)}) {
        auto same = [&](size_t count, size_t room) {
            const Outcome<To> expected = Run(scalar, in.data(), count, room, flags);
            const Outcome<To> actual = Run(blocks, in.data(), count, room, flags);
            return expected == actual ? testing::AssertionSuccess()
                                      : testing::AssertionFailure()
                                            << "source " << testing::PrintToString(in) << ", cut at " << count
                                            << ", room " << room << ", flags " << flags << ": status "
                                            << actual.status << " (" << expected.status << "), consumed "
                                            << actual.consumed << " (" << expected.consumed << ")";
        };
        ASSERT_TRUE(same(in.size(), fullRoom));
        for (size_t cut = std::min(cutsFrom, in.size()); cut < in.size(); ++cut) ASSERT_TRUE(same(cut, fullRoom));
        const size_t needed = Run(scalar, in.data(), in.size(), fullRoom, flags).consumed * (sizeof(To) == 1 ? 3 : 1);
        for (size_t room = std::min(roomsFrom, needed); room < needed + 4; ++room) ASSERT_TRUE(same(in.size(), room));
    }
}

void ExpectSame8(const Bytes& in, size_t cutsFrom = SIZE_MAX, size_t roomsFrom = SIZE_MAX) {
    ExpectSame(&ZelConvertUTF8toUTF16, &zel::utf::ScalarUTF8toUTF16, in, cutsFrom, roomsFrom);
}
void ExpectSame16(const Units16& in, size_t cutsFrom = SIZE_MAX, size_t roomsFrom = SIZE_MAX) {
    ExpectSame(&ZelConvertUTF16toUTF8, &zel::utf::ScalarUTF16toUTF8, in, cutsFrom, roomsFrom);
}

Bytes Utf8(std::u16string_view text) {
    Bytes out(text.size() * 3);
    const ZelUTF16* src = reinterpret_cast<const ZelUTF16*>(text.data());
    ZelUTF8* tgt = out.data();
    zel::utf::ScalarUTF16toUTF8(&src, src + text.size(), &tgt, out.data() + out.size(), ZelConvLenient);
    out.resize(size_t(tgt - out.data()));
    return out;
}

// Korean with ASCII, Latin and a character beyond the basic plane: every kind of sequence the
// blocks take, and one they leave.
const std::u16string_view kKorean =
    u"\uD55C\uAD6D\uC5B4 \uBB38\uC7A5\uACFC ASCII words, caf\u00E9 \u00FCber, \uAC00\uB098\uB2E4\uB77C "
    u"\u3042\u30AB\u6F22 \U0001F600 \uD7A3\uAC00 end.\n";

// What can break a block, as UTF-8: illegal, overlong, surrogate, cut, four-byte and the edges
// of the two- and three-byte ranges.
const Bytes kFaults8[] = {{0x80},       {0xBF},       {0xC0, 0x80},       {0xC1, 0xBF},       {0xC2},
                          {0xC2, 0x80}, {0xDF, 0xBF}, {0xE0, 0x9F, 0xBF}, {0xE0, 0xA0, 0x80}, {0xED, 0x9F, 0xBF},
                          {0xED, 0xA0, 0x80},         {0xED, 0xBF, 0xBF}, {0xEF, 0xBF, 0xBF}, {0xEA, 0xB0},
                          {0xF0, 0x90, 0x80, 0x80},   {0xF4, 0x90, 0x80, 0x80},               {0xF8},
                          {0xFF},       {0x7F},       {0x00}};

// The same for UTF-16: lone and paired halves and the edges of the encoded lengths.
const Units16 kFaults16[] = {{0xD800}, {0xDBFF}, {0xDC00}, {0xDFFF}, {0xD83D, 0xDE00}, {0xDC00, 0xD800},
                             {0x7F},   {0x80},   {0x7FF},  {0x800},  {0xD7FF},         {0xE000},
                             {0xFFFF}, {0x0000}};

// Runs body for each block kernel that this processor has, the widest first.
template <typename Body>
void ForEachKernel(Body body) {
    zel::utf::LimitBlockLevel(2);
    for (int level = zel::utf::BlockLevel(); level >= 1; --level) {
        SCOPED_TRACE(testing::Message() << "kernel level " << level);
        zel::utf::LimitBlockLevel(level);
        body();
        if (testing::Test::HasFatalFailure()) break;
    }
    zel::utf::LimitBlockLevel(2);
}

// Every fault at every place of the text and of a run of ASCII, so that each falls at every lane
// of a block and on both sides of a block's end.
template <typename Unit, size_t kFaults, typename Expect>
void ExpectFaultsAnywhere(std::initializer_list<std::vector<Unit>> bases, const std::vector<Unit> (&faults)[kFaults],
                          Expect expectSame) {
    for (const std::vector<Unit>& base : bases) {
        for (const std::vector<Unit>& fault : faults) {
            for (size_t at = 0; at <= base.size(); ++at) {
                std::vector<Unit> in = base;
                in.insert(in.begin() + ptrdiff_t(at), fault.begin(), fault.end());
                ASSERT_NO_FATAL_FAILURE(expectSame(in, 0, 0));
            }
        }
    }
}

TEST(UtfBlocks, FaultAtEveryPlace) {
    ForEachKernel([] {
        ExpectFaultsAnywhere({Utf8(kKorean), Bytes(80, 'x')}, kFaults8, ExpectSame8);
        ExpectFaultsAnywhere({Units16(kKorean.begin(), kKorean.end()), Units16(48, u'x')}, kFaults16, ExpectSame16);
    });
}

// Every cut of the source and every target room, on plain text.
TEST(UtfBlocks, EveryCutAndEveryRoom) {
    ForEachKernel([] {
        Bytes text;
        for (int i = 0; i < 3; ++i) {
            const Bytes more = Utf8(kKorean);
            text.insert(text.end(), more.begin(), more.end());
        }
        ExpectSame8(text, 0, 0);
        const std::u16string korean(kKorean);
        const std::u16string text16 = korean + korean + korean;
        ExpectSame16(Units16(text16.begin(), text16.end()), 0, 0);
    });
}

// Random text from pieces that the blocks take and pieces that stop them, in proportions that
// leave long plain runs; and random bytes and units.
TEST(UtfBlocks, RandomText) {
    ForEachKernel([] {
        std::mt19937 random(20240611);
        auto below = [&random](unsigned n) { return unsigned(random() % n); };
        for (int round = 0; round < 1500; ++round) {
            Bytes in;
            Units16 in16;
            const size_t length = 1 + below(160);
            const unsigned faultOdds = 1 + below(200);
            while (in.size() < length) {
                const unsigned kind = below(10);
                if (below(faultOdds) == 0) {
                    const Bytes& fault = kFaults8[below(std::size(kFaults8))];
                    in.insert(in.end(), fault.begin(), fault.end());
                    const Units16& fault16 = kFaults16[below(std::size(kFaults16))];
                    in16.insert(in16.end(), fault16.begin(), fault16.end());
                    continue;
                }
                const char16_t c = kind < 4   ? char16_t(0x20 + below(0x5F))
                                   : kind < 8 ? char16_t(0xAC00 + below(11172))
                                   : kind < 9 ? char16_t(0x80 + below(0x780))
                                              : char16_t(0x800 + below(0xD000));
                const Bytes bytes = Utf8(std::u16string_view(&c, 1));
                in.insert(in.end(), bytes.begin(), bytes.end());
                in16.push_back(c);
            }
            ASSERT_NO_FATAL_FAILURE(ExpectSame8(in, in.size() - 4, in.size() - 4));
            ASSERT_NO_FATAL_FAILURE(ExpectSame16(in16, in16.size() - 4, in16.size() * 3 - 8));
            Bytes noise(length);
            for (ZelUTF8& b : noise) b = ZelUTF8(below(4) ? 0x80 + below(0x80) : below(0x100));
            Units16 noise16(length);
            for (ZelUTF16& u : noise16) u = ZelUTF16(below(4) ? 0xD000 + below(0x1000) : below(0x10000));
            ASSERT_NO_FATAL_FAILURE(ExpectSame8(noise));
            ASSERT_NO_FATAL_FAILURE(ExpectSame16(noise16));
        }
    });
}

}  // namespace
