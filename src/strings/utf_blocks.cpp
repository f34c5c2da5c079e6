// The block kernels of the UTF-8 and UTF-16 converters, in AVX2 and chosen at run time.
//
// UTF-8 to UTF-16 takes 32 bytes at a time. Each byte is classified at once:
// continuation bytes, first bytes of two and three, and anything of four bytes or more, which the
// scalar code takes. The block is plainly valid when the continuation bytes are exactly those that
// its first bytes ask for (the last character may reach two bytes behind the block), no two-byte
// form is overlong and no three-byte form is overlong or a surrogate. Then each byte position
// gets the value of a character starting there, in 16-bit lanes, and the lanes of the first bytes
// are gathered to the front: in AVX2 eight at a time by a shuffle that their mask picks, in
// AVX-512 all at once by a compress.
//
// UTF-16 to UTF-8 takes 8 units in AVX2, 16 in AVX-512 (16 in both when they are all ASCII),
// without a surrogate. Each unit is encoded in one 32-bit lane, its first byte lowest, and the
// bytes that its length keeps are gathered: in AVX2 four lanes at a time by a shuffle that the
// four lengths pick, in AVX-512 all at once by a compress.
//
// A gathering store in AVX2 writes a whole register, more than the units it keeps; the kernels put
// back what lay behind the new target pointer, so that nothing is written behind it.
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

// -1 until asked.
constinit std::atomic<int> detectedLevel{-1};
constinit std::atomic<int> levelLimit{2};

int DetectLevel() {
#if ZEL_UTF_BLOCKS
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("popcnt")) return 0;
    if (!__builtin_cpu_supports("avx512bw") || !__builtin_cpu_supports("avx512vbmi2")) return 1;
    return 2;
#else
    return 0;
#endif
}

}  // namespace

int BlockLevel() {
    int level = detectedLevel.load(std::memory_order_relaxed);
    if (level < 0) {
        level = DetectLevel();
        detectedLevel.store(level, std::memory_order_relaxed);
    }
    return std::min(level, levelLimit.load(std::memory_order_relaxed));
}

void LimitBlockLevel(int level) { levelLimit.store(level, std::memory_order_relaxed); }

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

namespace {

ZEL_AVX2 inline __m256i Load32(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
ZEL_AVX2 inline __m256i Bytes32(int b) { return _mm256_set1_epi8(static_cast<char>(b)); }
ZEL_AVX2 inline uint32_t Mask32(__m256i v) { return uint32_t(_mm256_movemask_epi8(v)); }

// 32 bytes of UTF-8 from s in in0; unless they are all ASCII, in1 and in2 hold the bytes one and
// two places behind those of in0, the second and third byte of a sequence that starts at a lane of
// in0. In a plain block high marks the bytes from 0x80, keep the first bytes, lead3 the first
// bytes of three, and extra counts the bytes of the last sequence behind the block (0 to 2).
struct Utf8Block {
    __m256i in0, in1, in2, highBytes, lead3Bytes;
    uint32_t high, keep, lead3;
    unsigned extra;
};

// What a block of UTF-8 is: ASCII, plain, or something for the scalar code.
enum class Utf8Kind { kAscii, kPlain, kStop };

ZEL_AVX2 inline Utf8Kind ReadUtf8Block(const ZelUTF8* s, Utf8Block& block) {
    block.in0 = Load32(s);
    const uint32_t high = Mask32(block.in0);
    if (!high) return Utf8Kind::kAscii;
    block.in1 = Load32(s + 1);
    block.in2 = Load32(s + 2);
    const __m256i in0 = block.in0, in1 = block.in1;
    block.highBytes = _mm256_cmpgt_epi8(_mm256_setzero_si256(), in0);
    block.lead3Bytes = _mm256_and_si256(_mm256_cmpgt_epi8(in0, Bytes32(0xDF)), block.highBytes);
    const uint32_t cont = Mask32(_mm256_cmpgt_epi8(Bytes32(0xC0), in0));
    const uint32_t fromF0 = Mask32(_mm256_cmpgt_epi8(in0, Bytes32(0xEF))) & high;
    const uint32_t lead3 = Mask32(block.lead3Bytes);
    const uint32_t lead2 = high & ~cont & ~lead3;
    // Continuation bytes at positions 0 to 33, and those that the first bytes ask for.
    const uint64_t contAll = cont | uint64_t(Mask32(_mm256_cmpgt_epi8(Bytes32(0xC0), block.in2))) << 2;
    const uint64_t expected = uint64_t(lead2 | lead3) << 1 | uint64_t(lead3) << 2;
    // Overlong: 0xC0 and 0xC1, 0xE0 before 0x80 to 0x9F. Surrogates: 0xED before 0xA0 to 0xBF.
    const __m256i secondHigh = _mm256_cmpeq_epi8(_mm256_and_si256(in1, Bytes32(0x20)), Bytes32(0x20));
    const __m256i refused =
        _mm256_or_si256(_mm256_cmpeq_epi8(_mm256_and_si256(in0, Bytes32(0xFE)), Bytes32(0xC0)),
                        _mm256_or_si256(_mm256_andnot_si256(secondHigh, _mm256_cmpeq_epi8(in0, Bytes32(0xE0))),
                                        _mm256_and_si256(secondHigh, _mm256_cmpeq_epi8(in0, Bytes32(0xED)))));
    block.high = high;
    block.keep = ~cont;
    block.lead3 = lead3;
    block.extra = unsigned(__builtin_popcountll(expected >> 32));
    const bool plain = !(fromF0 | Mask32(refused) | uint32_t(expected ^ contAll) | (expected & ~contAll) >> 32);
    return plain ? Utf8Kind::kPlain : Utf8Kind::kStop;
}

// The value of a sequence starting at each of 16 bytes, in 16-bit lanes: b0 to b2 are its first
// three bytes, high marks the bytes from 0x80, lead3 the first bytes of three.
ZEL_AVX2 inline __m256i Utf8Values16(__m128i b0, __m128i b1, __m128i b2, __m128i high, __m128i lead3) {
    const __m256i w0 = _mm256_cvtepu8_epi16(b0), low6 = _mm256_set1_epi16(0x3F);
    const __m256i second = _mm256_and_si256(_mm256_cvtepu8_epi16(b1), low6);
    const __m256i two = _mm256_or_si256(_mm256_slli_epi16(_mm256_and_si256(w0, _mm256_set1_epi16(0x1F)), 6), second);
    const __m256i three = _mm256_or_si256(_mm256_or_si256(_mm256_slli_epi16(w0, 12), _mm256_slli_epi16(second, 6)),
                                          _mm256_and_si256(_mm256_cvtepu8_epi16(b2), low6));
    const __m256i units = _mm256_blendv_epi8(w0, two, _mm256_cvtepi8_epi16(high));
    return _mm256_blendv_epi8(units, three, _mm256_cvtepi8_epi16(lead3));
}

ZEL_AVX2 inline __m128i Low(__m256i v) { return _mm256_castsi256_si128(v); }
ZEL_AVX2 inline __m128i High(__m256i v) { return _mm256_extracti128_si256(v, 1); }

ZEL_AVX2 void Utf8ToUtf16Avx2(const ZelUTF8*& src, const ZelUTF8* fastEnd, ZelUTF16*& tgt) {
    const ZelUTF8* s = src;
    ZelUTF16* t = tgt;
    Utf8Block block;
    for (Utf8Kind kind; fastEnd - s >= 32 && (kind = ReadUtf8Block(s, block)) != Utf8Kind::kStop;) {
        if (kind == Utf8Kind::kAscii) {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(t), _mm256_cvtepu8_epi16(Low(block.in0)));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(t + 16), _mm256_cvtepu8_epi16(High(block.in0)));
            s += 32;
            t += 32;
            continue;
        }
        const __m256i units[2] = {
            Utf8Values16(Low(block.in0), Low(block.in1), Low(block.in2), Low(block.highBytes), Low(block.lead3Bytes)),
            Utf8Values16(High(block.in0), High(block.in1), High(block.in2), High(block.highBytes),
                         High(block.lead3Bytes))};
        // Four gathers of eight lanes, one behind the other; what lies behind the last is put back.
        const unsigned all = unsigned(__builtin_popcount(block.keep));
        const __m128i behind = Load16(t + all);
        ZelUTF16* out = t;
        for (int quarter = 0; quarter < 4; ++quarter) {
            const unsigned keep = block.keep >> 8 * quarter & 0xFF;
            const __m128i lanes = quarter & 1 ? High(units[quarter >> 1]) : Low(units[quarter >> 1]);
            Store16(out, _mm_shuffle_epi8(lanes, Pick(kKeepLanes16[keep])));
            out += __builtin_popcount(keep);
        }
        Store16(t + all, behind);
        t += all;
        s += 32 + block.extra;
    }
    src = s;
    tgt = t;
}

#define ZEL_AVX512 __attribute__((target("avx2,popcnt,avx512f,avx512bw,avx512vbmi2")))

// The same 32 bytes at a time, the values in one register, gathered by one compress and written
// by a masked store that writes nothing behind them.
ZEL_AVX512 void Utf8ToUtf16Avx512(const ZelUTF8*& src, const ZelUTF8* fastEnd, ZelUTF16*& tgt) {
    const ZelUTF8* s = src;
    ZelUTF16* t = tgt;
    Utf8Block block;
    for (Utf8Kind kind; fastEnd - s >= 32 && (kind = ReadUtf8Block(s, block)) != Utf8Kind::kStop;) {
        const __m512i w0 = _mm512_cvtepu8_epi16(block.in0);
        if (kind == Utf8Kind::kAscii) {
            _mm512_storeu_si512(t, w0);
            s += 32;
            t += 32;
            continue;
        }
        const __m512i low6 = _mm512_set1_epi16(0x3F);
        const __m512i second = _mm512_and_si512(_mm512_cvtepu8_epi16(block.in1), low6);
        const __m512i two =
            _mm512_or_si512(_mm512_slli_epi16(_mm512_and_si512(w0, _mm512_set1_epi16(0x1F)), 6), second);
        const __m512i three =
            _mm512_or_si512(_mm512_or_si512(_mm512_slli_epi16(w0, 12), _mm512_slli_epi16(second, 6)),
                            _mm512_and_si512(_mm512_cvtepu8_epi16(block.in2), low6));
        __m512i units = _mm512_mask_blend_epi16(block.high, w0, two);
        units = _mm512_mask_blend_epi16(block.lead3, units, three);
        const unsigned all = unsigned(__builtin_popcount(block.keep));
        _mm512_mask_storeu_epi16(t, __mmask32(uint32_t((uint64_t(1) << all) - 1)),
                                 _mm512_maskz_compress_epi16(block.keep, units));
        t += all;
        s += 32 + block.extra;
    }
    src = s;
    tgt = t;
}

}  // namespace

void Utf8ToUtf16Blocks(const ZelUTF8*& src, const ZelUTF8* fastEnd, ZelUTF16*& tgt) {
    (BlockLevel() >= 2 ? Utf8ToUtf16Avx512 : Utf8ToUtf16Avx2)(src, fastEnd, tgt);
}

namespace {

// Eight values below 0x10000 encoded in UTF-8, each in its 32-bit lane, the first byte lowest;
// atLeast2 and is3 mark the lanes of two bytes or more and of three.
ZEL_AVX2 inline __m256i EncodeUtf8(__m256i c, __m256i& atLeast2, __m256i& is3) {
    const __m256i low6 = _mm256_set1_epi32(0x3F), mark = _mm256_set1_epi32(0x80);
    const __m256i last = _mm256_or_si256(_mm256_and_si256(c, low6), mark);
    const __m256i two = _mm256_or_si256(_mm256_or_si256(_mm256_srli_epi32(c, 6), _mm256_set1_epi32(0xC0)),
                                        _mm256_slli_epi32(last, 8));
    const __m256i middle = _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi32(c, 6), low6), mark);
    const __m256i three =
        _mm256_or_si256(_mm256_or_si256(_mm256_srli_epi32(c, 12), _mm256_set1_epi32(0xE0)),
                        _mm256_or_si256(_mm256_slli_epi32(middle, 8), _mm256_slli_epi32(last, 16)));
    atLeast2 = _mm256_cmpgt_epi32(c, _mm256_set1_epi32(0x7F));
    is3 = _mm256_cmpgt_epi32(c, _mm256_set1_epi32(0x7FF));
    return _mm256_blendv_epi8(_mm256_blendv_epi8(c, two, atLeast2), three, is3);
}

// The mask of the bytes that EncodeUtf8 wrote, 4 bits a lane.
ZEL_AVX2 inline uint32_t EncodedBytes(__m256i atLeast2, __m256i is3) {
    const __m256i kept = _mm256_blendv_epi8(
        _mm256_blendv_epi8(_mm256_set1_epi32(0x80), _mm256_set1_epi32(0x8080), atLeast2), _mm256_set1_epi32(0x808080),
        is3);
    return Mask32(kept);
}

ZEL_AVX2 void Utf16ToUtf8Avx2(const ZelUTF16*& src, const ZelUTF16* fastEnd, ZelUTF8*& tgt) {
    const ZelUTF16* s = src;
    ZelUTF8* t = tgt;
    while (fastEnd - s >= 8) {
        const __m128i in = Load16(s);
        const __m128i nonAscii = _mm_set1_epi16(static_cast<short>(0xFF80));
        if (_mm_testz_si128(in, nonAscii)) {
            // ASCII: then 16 units at a time while it lasts.
            _mm_storel_epi64(reinterpret_cast<__m128i*>(t), _mm_packus_epi16(in, in));
            s += 8;
            t += 8;
            while (fastEnd - s >= 16) {
                const __m128i low = Load16(s), high = Load16(s + 8);
                if (!_mm_testz_si128(_mm_or_si128(low, high), nonAscii)) break;
                Store16(t, _mm_packus_epi16(low, high));
                s += 16;
                t += 16;
            }
            continue;
        }
        const __m128i surrogates =
            _mm_cmpeq_epi16(_mm_and_si128(in, _mm_set1_epi16(static_cast<short>(0xF800))),
                            _mm_set1_epi16(static_cast<short>(0xD800)));
        if (Mask(surrogates)) break;

        __m256i atLeast2, is3;
        const __m256i bytes = EncodeUtf8(_mm256_cvtepu16_epi32(in), atLeast2, is3);
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

// 16 units at a time, each encoded in a 32-bit lane, the bytes gathered by one compress and
// written by a masked store that writes nothing behind them.
ZEL_AVX512 void Utf16ToUtf8Avx512(const ZelUTF16*& src, const ZelUTF16* fastEnd, ZelUTF8*& tgt) {
    const ZelUTF16* s = src;
    ZelUTF8* t = tgt;
    while (fastEnd - s >= 16) {
        const __m256i in = Load32(s);
        if (_mm256_testz_si256(in, _mm256_set1_epi16(static_cast<short>(0xFF80)))) {
            Store16(t, _mm_packus_epi16(Low(in), High(in)));
            s += 16;
            t += 16;
            continue;
        }
        const __m256i surrogates = _mm256_cmpeq_epi16(_mm256_and_si256(in, _mm256_set1_epi16(static_cast<short>(0xF800))),
                                                      _mm256_set1_epi16(static_cast<short>(0xD800)));
        if (Mask32(surrogates)) break;

        __m256i atLeast2[2], is3[2];
        const __m256i low = EncodeUtf8(_mm256_cvtepu16_epi32(Low(in)), atLeast2[0], is3[0]);
        const __m256i high = EncodeUtf8(_mm256_cvtepu16_epi32(High(in)), atLeast2[1], is3[1]);
        const __m512i bytes = _mm512_maskz_inserti64x4(__mmask8(0xFF), _mm512_castsi256_si512(low), high, 1);
        const uint64_t keep = EncodedBytes(atLeast2[0], is3[0]) | uint64_t(EncodedBytes(atLeast2[1], is3[1])) << 32;
        const unsigned all = unsigned(__builtin_popcountll(keep));
        _mm512_mask_storeu_epi8(t, __mmask64((uint64_t(1) << all) - 1), _mm512_maskz_compress_epi8(keep, bytes));
        s += 16;
        t += all;
    }
    src = s;
    tgt = t;
}

}  // namespace

void Utf16ToUtf8Blocks(const ZelUTF16*& src, const ZelUTF16* fastEnd, ZelUTF8*& tgt) {
    (BlockLevel() >= 2 ? Utf16ToUtf8Avx512 : Utf16ToUtf8Avx2)(src, fastEnd, tgt);
}

#endif  // ZEL_UTF_BLOCKS

}  // namespace zel::utf
