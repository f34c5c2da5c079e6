// The block kernels of the UTF-8 and UTF-16 converters, in AVX2 and chosen at run time.
//
// UTF-8 to UTF-16 takes 16 bytes (32 when they are all ASCII). Each byte is classified at once:
// continuation bytes, first bytes of two and three, and anything of four bytes or more, which the
// scalar code takes. The block is plainly valid when the continuation bytes are exactly those that
// its first bytes ask for (the last character may reach two bytes behind the block), no two-byte
// form is overlong and no three-byte form is overlong or a surrogate. Then each byte position
// gets the value of a character starting there, in 16-bit lanes, and the lanes of the first bytes
// are gathered to the front, eight at a time, by a shuffle that their mask picks.
//
// UTF-16 to UTF-8 takes 8 units (16 when they are all ASCII) without a surrogate. Each unit is
// encoded in one 32-bit lane, its first byte lowest, and the bytes that its length keeps are
// gathered four lanes at a time by a shuffle that the four lengths pick.
//
// A gathering store writes a whole register, more than the units it keeps; the kernels put back
// what lay behind the new target pointer, so that nothing is written behind it.
#include "strings/utf_blocks.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>

#if ZEL_UTF_BLOCKS
#include <immintrin.h>
#endif

namespace zel::utf {

namespace {

// 0 not asked yet, 1 no, 2 yes.
constinit std::atomic<int> blocksState{0};

}  // namespace

bool BlocksAvailable() {
#if ZEL_UTF_BLOCKS
    int state = blocksState.load(std::memory_order_relaxed);
    if (state == 0) {
        __builtin_cpu_init();
        state = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("popcnt") ? 2 : 1;
        blocksState.store(state, std::memory_order_relaxed);
    }
    return state == 2;
#else
    return false;
#endif
}

#if ZEL_UTF_BLOCKS

namespace {

struct alignas(16) Shuffle {
    uint8_t index[16];
};

// Gathers to the front the 16-bit lanes whose bits an 8-bit mask sets; the rest become zero.
alignas(64) constexpr std::array<Shuffle, 256> kKeepLanes16 = [] {
    std::array<Shuffle, 256> table{};
    for (unsigned mask = 0; mask < 256; ++mask) {
        unsigned out = 0;
        for (unsigned lane = 0; lane < 8; ++lane) {
            if (!(mask >> lane & 1)) continue;
            table[mask].index[out++] = uint8_t(2 * lane);
            table[mask].index[out++] = uint8_t(2 * lane + 1);
        }
        while (out < 16) table[mask].index[out++] = 0x80;
    }
    return table;
}();

// Gathers to the front the first 1 to 3 bytes of each of four 32-bit lanes; the index holds each
// lane's length less one in two bits, lane 0 lowest.
alignas(64) constexpr std::array<Shuffle, 256> kKeepBytes = [] {
    std::array<Shuffle, 256> table{};
    for (unsigned lengths = 0; lengths < 256; ++lengths) {
        unsigned out = 0;
        for (unsigned lane = 0; lane < 4; ++lane) {
            const unsigned length = std::min(3u, (lengths >> 2 * lane & 3) + 1);
            for (unsigned b = 0; b < length; ++b) table[lengths].index[out++] = uint8_t(4 * lane + b);
        }
        while (out < 16) table[lengths].index[out++] = 0x80;
    }
    return table;
}();

// Spreads four bits to the low bit of four 2-bit fields.
constexpr uint8_t kSpread[16] = {0x00, 0x01, 0x04, 0x05, 0x10, 0x11, 0x14, 0x15,
                                 0x40, 0x41, 0x44, 0x45, 0x50, 0x51, 0x54, 0x55};

#define ZEL_AVX2 __attribute__((target("avx2,popcnt")))

ZEL_AVX2 inline __m128i Load16(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
ZEL_AVX2 inline void Store16(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
ZEL_AVX2 inline __m128i Pick(const Shuffle& shuffle) {
    return _mm_load_si128(reinterpret_cast<const __m128i*>(shuffle.index));
}
ZEL_AVX2 inline unsigned Mask(__m128i v) { return unsigned(_mm_movemask_epi8(v)); }
ZEL_AVX2 inline __m128i Bytes(int b) { return _mm_set1_epi8(static_cast<char>(b)); }

// Stores two gathered halves, the first keeping `first` units, and gives the units kept in all;
// what lay behind them is put back.
template <typename Unit>
ZEL_AVX2 inline void StoreGathered(Unit*& tgt, __m128i low, __m128i high, unsigned first, unsigned all) {
    const __m128i behind = Load16(tgt + all);
    Store16(tgt, low);
    Store16(tgt + first, high);
    Store16(tgt + all, behind);
    tgt += all;
}

}  // namespace

ZEL_AVX2 void Utf8ToUtf16Blocks(const ZelUTF8*& src, const ZelUTF8* fastEnd, ZelUTF16*& tgt) {
    const ZelUTF8* s = src;
    ZelUTF16* t = tgt;
    while (fastEnd - s >= 16) {
        if (fastEnd - s >= 24) {
            const __m256i ascii = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s));
            if (!_mm256_movemask_epi8(ascii)) {
                _mm256_storeu_si256(reinterpret_cast<__m256i*>(t), _mm256_cvtepu8_epi16(_mm256_castsi256_si128(ascii)));
                _mm256_storeu_si256(reinterpret_cast<__m256i*>(t + 16),
                                    _mm256_cvtepu8_epi16(_mm256_extracti128_si256(ascii, 1)));
                s += 32;
                t += 32;
                continue;
            }
        }
        // in1 and in2 hold the bytes one and two places behind those of in0: the second and third
        // byte of a sequence that starts at a lane of in0.
        const __m128i in0 = Load16(s), in1 = Load16(s + 1), in2 = Load16(s + 2);
        const unsigned high = Mask(in0);
        if (!high) {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(t), _mm256_cvtepu8_epi16(in0));
            s += 16;
            t += 16;
            continue;
        }
        const __m128i highBytes = _mm_cmplt_epi8(in0, _mm_setzero_si128());
        const __m128i fromE0 = _mm_and_si128(_mm_cmpgt_epi8(in0, Bytes(0xDF)), highBytes);
        const unsigned cont = Mask(_mm_cmplt_epi8(in0, Bytes(0xC0)));
        const unsigned fromF0 = Mask(_mm_cmpgt_epi8(in0, Bytes(0xEF))) & high;
        const unsigned lead3 = Mask(fromE0);
        const unsigned lead2 = high & ~cont & ~lead3;
        // Continuation bytes at positions 0 to 17, and those that the first bytes ask for.
        const uint32_t contAll = cont | Mask(_mm_cmplt_epi8(in2, Bytes(0xC0))) << 2;
        const uint32_t expected = (lead2 | lead3) << 1 | lead3 << 2;
        // Overlong: 0xC0 and 0xC1, 0xE0 before 0x80 to 0x9F. Surrogates: 0xED before 0xA0 to 0xBF.
        const __m128i secondHigh = _mm_cmpeq_epi8(_mm_and_si128(in1, Bytes(0x20)), Bytes(0x20));
        const __m128i refused =
            _mm_or_si128(_mm_cmpeq_epi8(_mm_and_si128(in0, Bytes(0xFE)), Bytes(0xC0)),
                         _mm_or_si128(_mm_andnot_si128(secondHigh, _mm_cmpeq_epi8(in0, Bytes(0xE0))),
                                      _mm_and_si128(secondHigh, _mm_cmpeq_epi8(in0, Bytes(0xED)))));
        if (fromF0 | Mask(refused) | ((expected ^ contAll) & 0xFFFF) | (expected & ~contAll & 0x30000)) break;

        const __m256i w0 = _mm256_cvtepu8_epi16(in0), w1 = _mm256_cvtepu8_epi16(in1), w2 = _mm256_cvtepu8_epi16(in2);
        const __m256i low6 = _mm256_set1_epi16(0x3F);
        const __m256i second = _mm256_and_si256(w1, low6);
        const __m256i two = _mm256_or_si256(_mm256_slli_epi16(_mm256_and_si256(w0, _mm256_set1_epi16(0x1F)), 6), second);
        const __m256i three = _mm256_or_si256(_mm256_or_si256(_mm256_slli_epi16(w0, 12), _mm256_slli_epi16(second, 6)),
                                              _mm256_and_si256(w2, low6));
        __m256i units = _mm256_blendv_epi8(w0, two, _mm256_cvtepi8_epi16(highBytes));
        units = _mm256_blendv_epi8(units, three, _mm256_cvtepi8_epi16(fromE0));

        const unsigned keep = ~cont & 0xFFFF;
        const unsigned keepLow = keep & 0xFF, keepHigh = keep >> 8;
        const unsigned first = unsigned(__builtin_popcount(keepLow));
        StoreGathered(t, _mm_shuffle_epi8(_mm256_castsi256_si128(units), Pick(kKeepLanes16[keepLow])),
                      _mm_shuffle_epi8(_mm256_extracti128_si256(units, 1), Pick(kKeepLanes16[keepHigh])), first,
                      first + unsigned(__builtin_popcount(keepHigh)));
        s += 16 + __builtin_popcount(expected >> 16);
    }
    src = s;
    tgt = t;
}

ZEL_AVX2 void Utf16ToUtf8Blocks(const ZelUTF16*& src, const ZelUTF16* fastEnd, ZelUTF8*& tgt) {
    const ZelUTF16* s = src;
    ZelUTF8* t = tgt;
    while (fastEnd - s >= 8) {
        const __m128i in = Load16(s);
        if (fastEnd - s >= 16) {
            const __m128i next = Load16(s + 8);
            if (_mm_testz_si128(_mm_or_si128(in, next), _mm_set1_epi16(static_cast<short>(0xFF80)))) {
                Store16(t, _mm_packus_epi16(in, next));
                s += 16;
                t += 16;
                continue;
            }
        }
        const __m128i surrogates =
            _mm_cmpeq_epi16(_mm_and_si128(in, _mm_set1_epi16(static_cast<short>(0xF800))),
                            _mm_set1_epi16(static_cast<short>(0xD800)));
        if (Mask(surrogates)) break;

        const __m256i c = _mm256_cvtepu16_epi32(in);
        const __m256i low6 = _mm256_set1_epi32(0x3F), mark = _mm256_set1_epi32(0x80);
        const __m256i last = _mm256_or_si256(_mm256_and_si256(c, low6), mark);
        const __m256i two = _mm256_or_si256(_mm256_or_si256(_mm256_srli_epi32(c, 6), _mm256_set1_epi32(0xC0)),
                                            _mm256_slli_epi32(last, 8));
        const __m256i middle = _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi32(c, 6), low6), mark);
        const __m256i three = _mm256_or_si256(
            _mm256_or_si256(_mm256_srli_epi32(c, 12), _mm256_set1_epi32(0xE0)),
            _mm256_or_si256(_mm256_slli_epi32(middle, 8), _mm256_slli_epi32(last, 16)));
        const __m256i atLeast2 = _mm256_cmpgt_epi32(c, _mm256_set1_epi32(0x7F));
        const __m256i is3 = _mm256_cmpgt_epi32(c, _mm256_set1_epi32(0x7FF));
        __m256i bytes = _mm256_blendv_epi8(c, two, atLeast2);
        bytes = _mm256_blendv_epi8(bytes, three, is3);

        const unsigned more = unsigned(_mm256_movemask_ps(_mm256_castsi256_ps(atLeast2)));
        const unsigned most = unsigned(_mm256_movemask_ps(_mm256_castsi256_ps(is3)));
        const unsigned lengthsLow = kSpread[more & 15] + kSpread[most & 15];
        const unsigned lengthsHigh = kSpread[more >> 4] + kSpread[most >> 4];
        const unsigned first = 4 + unsigned(__builtin_popcount(more & 15) + __builtin_popcount(most & 15));
        const unsigned all = 8 + unsigned(__builtin_popcount(more) + __builtin_popcount(most));
        StoreGathered(t, _mm_shuffle_epi8(_mm256_castsi256_si128(bytes), Pick(kKeepBytes[lengthsLow])),
                      _mm_shuffle_epi8(_mm256_extracti128_si256(bytes, 1), Pick(kKeepBytes[lengthsHigh])), first,
                      all);
        s += 8;
    }
    src = s;
    tgt = t;
}

#endif  // ZEL_UTF_BLOCKS

}  // namespace zel::utf
