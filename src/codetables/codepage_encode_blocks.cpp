// The block kernel of the table path's encoder, in AVX-512: 32 units at a time. Each unit's code
// comes from one table entry, gathered sixteen at a time (the ASCII units and the half-width
// Katakana of 932 need none); a code gives its high byte when it has one, then its low byte, and a
// byte compress packs the bytes of the block. Code page 936 writes a unit with a four-byte form
// as the four bytes of its direct table and a pair as the four bytes of its code point, so its
// units take a 32-bit lane each.
#include <cstdint>

#include "codetables/code_tables.h"
#include "codetables/codepage_block_kernels.h"
#include "codetables/codepage_table_path.h"

#if ZEL_UTF_BLOCKS

namespace {

using zel::codepage::Entries;
using zel::codepage::kAll16;

// Writes the bytes of `bytes` that keep marks, side by side; gives how many.
ZEL_AVX512 inline unsigned StoreBytes(BYTE* out, __m512i bytes, uint64_t keep) {
    const unsigned count = unsigned(__builtin_popcountll(keep));
    _mm512_mask_storeu_epi8(out, __mmask64(count >= 64 ? ~uint64_t(0) : (uint64_t(1) << count) - 1),
                            _mm512_maskz_compress_epi8(keep, bytes));
    return count;
}

// The codes of 32 units (the unit itself below 0x80), and which lanes may not be taken: the unit
// 0xFFFF, whose entry the table ends with.
template <ZelTablePage kPage>
ZEL_AVX512 inline __m512i CodesOf(const WORD* table, __m512i units, uint32_t& refused) {
    const uint32_t ascii = _mm512_cmple_epu16_mask(units, _mm512_set1_epi16(0x7F));
    const uint32_t last = _mm512_cmpeq_epi16_mask(units, _mm512_set1_epi16(-1));
    uint32_t reads = ~ascii & ~last;
    __m512i codes = units;
    if constexpr (kPage == ZelTablePage::Kana932) {
        // U+FF60 to U+FF9F are the single bytes 0xA0 to 0xDF.
        const uint32_t halfWidth = _mm512_cmpge_epu16_mask(units, _mm512_set1_epi16(short(0xFF60))) &
                                   _mm512_cmple_epu16_mask(units, _mm512_set1_epi16(short(0xFF9F)));
        codes = _mm512_mask_sub_epi16(units, halfWidth, units, _mm512_set1_epi16(short(0xFEC0)));
        reads &= ~halfWidth;
    }
    refused = last;
    return _mm512_mask_mov_epi16(codes, reads, Entries(table, units, reads));
}

// The bytes of 32 codes of one or two bytes, two byte lanes each, and which of them are kept.
ZEL_AVX512 inline __m512i BytesOf(__m512i codes, uint64_t& keep) {
    const uint32_t two = _mm512_cmpgt_epu16_mask(codes, _mm512_set1_epi16(0xFF));
    keep = _pdep_u64(two, 0xAAAAAAAAAAAAAAAAull) | 0x5555555555555555ull;
    // The high byte first where there is one: the code turned about, its high byte in the low lane.
    const __m512i turned = _mm512_shldi_epi16(codes, codes, 8);
    return _mm512_mask_mov_epi16(codes, two, turned);
}

template <ZelTablePage kPage>
ZEL_AVX512 void EncodeBlocks(const WORD* table, const WCHAR*& text, const WCHAR* end, BYTE*& out) {
    const WCHAR* p = text;
    BYTE* o = out;
    while (end - p >= 32) {
        const __m512i units = _mm512_loadu_si512(p);
        uint32_t refused;
        const __m512i codes = CodesOf<kPage>(table, units, refused);
        uint64_t keep;
        const __m512i bytes = BytesOf(codes, keep);
        const unsigned stop = refused ? unsigned(__builtin_ctz(refused)) : 32;
        if (stop < 32) keep &= (uint64_t(1) << 2 * stop) - 1;
        o += StoreBytes(o, bytes, keep);
        p += stop;
        if (stop < 32) break;
    }
    text = p;
    out = o;
}

// The four bytes of a pair in 936, the first in the lowest byte.
DWORD PairCode(WCHAR high, WCHAR low) {
    const DWORD codePoint = 0x10000 + ((DWORD(high) - 0xD800) << 10) + (DWORD(low) - 0xDC00);
    BYTE bytes[4];
    Zel936FourBytesOfPlace(DWORD(Zel936SupplementaryPlaceOf(codePoint)), bytes);
    return DWORD(bytes[0]) | DWORD(bytes[1]) << 8 | DWORD(bytes[2]) << 16 | DWORD(bytes[3]) << 24;
}

// Code page 936. A lane of 32 bits a unit: the code's one or two bytes, or the four bytes of the
// direct table where the code is the marker and the unit has a four-byte form.
ZEL_AVX512 void Encode936Blocks(const WORD* table, const DWORD* fourByteCodes, const WCHAR*& text,
                                const WCHAR* end, BYTE*& out, const BYTE* outEnd) {
    const WCHAR* p = text;
    BYTE* o = out;
    alignas(64) static constexpr int kLow[16] = {0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23};
    alignas(64) static constexpr int kHigh[16] = {8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31};
    // 16-bit lane k to the low half of 32-bit lane k.
    alignas(64) static constexpr short kToQuarters[32] = {0, 0, 1, 0, 2,  0, 3,  0, 4,  0, 5,  0, 6,  0, 7,  0,
                                                          8, 0, 9, 0, 10, 0, 11, 0, 12, 0, 13, 0, 14, 0, 15, 0};
    while (end - p >= 32) {
        const __m512i units = _mm512_loadu_si512(p);
        uint32_t refused;
        const __m512i codes = CodesOf<ZelTablePage::Gb936>(table, units, refused);
        const uint32_t marked =
            _mm512_cmpeq_epi16_mask(codes, _mm512_set1_epi16(short(kZel936FourByteMarker))) & ~refused;
        const uint32_t two = _mm512_cmpgt_epu16_mask(codes, _mm512_set1_epi16(0xFF));
        // Each code turned about where it has two bytes, in 32-bit lanes: even units, odd units.
        const __m512i turned = _mm512_mask_mov_epi16(codes, two, _mm512_shldi_epi16(codes, codes, 8));
        __m512i even = _mm512_and_si512(turned, _mm512_set1_epi32(0xFFFF));
        __m512i odd = _mm512_maskz_srli_epi32(kAll16, turned, 16);
        // Where the block ends depends on the units alone, so that the next block's loads need not
        // wait for this one's gathers.
        const uint32_t high = _mm512_cmpge_epu16_mask(units, _mm512_set1_epi16(short(0xD800))) &
                              _mm512_cmple_epu16_mask(units, _mm512_set1_epi16(short(0xDBFF)));
        const uint32_t low = _mm512_cmpge_epu16_mask(units, _mm512_set1_epi16(short(0xDC00))) &
                             _mm512_cmple_epu16_mask(units, _mm512_set1_epi16(short(0xDFFF)));
        const uint32_t cut = high >> 31;
        const uint32_t pairs = high & marked & (low >> 1);
        // The other marked units may have a four-byte form: up to sixteen of them side by side and
        // one gather of the direct table; a seventeenth goes to the walk.
        const uint32_t others = marked & ~high & ~low;
        const __m512i index = _mm512_maskz_permutexvar_epi16(0x55555555u, _mm512_load_si512(kToQuarters),
                                                             _mm512_maskz_compress_epi16(others, units));
        const unsigned count = unsigned(__builtin_popcount(others));
        if (count > 16) refused |= _pdep_u32(1u << 16, others);
        const __m512i found =
            _mm512_mask_i32gather_epi32(_mm512_setzero_si512(), __mmask16(count >= 16 ? 0xFFFF : (1u << count) - 1),
                                        index, fourByteCodes, 4);
        const uint32_t hasCode = _mm512_test_epi32_mask(found, found);
        uint32_t four = _pdep_u32(hasCode, others);
        const __m512i fourCodes = _mm512_maskz_compress_epi32(__mmask16(hasCode), found);
        uint32_t left = pairs & (refused ? (1u << __builtin_ctz(refused)) - 1 : ~0u);
        for (; left; left &= left - 1) {
            const unsigned lane = unsigned(__builtin_ctz(left));
            const int code = int(PairCode(p[lane], p[lane + 1]));
            if (lane & 1) odd = _mm512_mask_set1_epi32(odd, __mmask16(1u << lane / 2), code);
            else even = _mm512_mask_set1_epi32(even, __mmask16(1u << lane / 2), code);
        }
        four |= pairs;
        const uint32_t stopAt = refused | cut << 31;
        const unsigned stop = stopAt ? unsigned(__builtin_ctz(stopAt)) : 32;
        const uint32_t taken = (stop < 32 ? (1u << stop) - 1 : ~0u) & ~(pairs << 1);
        // Lengths 1, 2 or 4: the kept bytes of each 32-bit lane, lane order restored.
        const uint32_t second = (two | four) & taken;
        const uint32_t third = four & taken;
        const uint32_t fourLow = four & ~pairs & 0xFFFF;
        alignas(64) static constexpr int kLanes[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
        const __m512i laterCodes = _mm512_maskz_permutexvar_epi32(
            kAll16,
            _mm512_add_epi32(_mm512_load_si512(kLanes), _mm512_set1_epi32(__builtin_popcount(fourLow))),
            fourCodes);
        const __m512i lanes[2] = {
            _mm512_mask_expand_epi32(_mm512_permutex2var_epi32(even, _mm512_load_si512(kLow), odd),
                                     __mmask16(fourLow), fourCodes),
            _mm512_mask_expand_epi32(_mm512_permutex2var_epi32(even, _mm512_load_si512(kHigh), odd),
                                     __mmask16((four & ~pairs) >> 16), laterCodes)};
        uint64_t keep[2];
        for (int half = 0; half < 2; ++half) {
            const uint32_t t = taken >> 16 * half & 0xFFFF, s = second >> 16 * half & 0xFFFF,
                           f = third >> 16 * half & 0xFFFF;
            keep[half] = _pdep_u64(t, 0x1111111111111111ull) | _pdep_u64(s, 0x2222222222222222ull) |
                         _pdep_u64(f, 0x4444444444444444ull) | _pdep_u64(f, 0x8888888888888888ull);
        }
        const long length = __builtin_popcountll(keep[0]) + __builtin_popcountll(keep[1]);
        // Four bytes for one unit can outgrow the room that the walk keeps: two bytes for every
        // unit left. Such a block goes to the walk.
        if ((outEnd - o) - length < 2 * ((end - p) - long(stop))) break;
        o += StoreBytes(o, lanes[0], keep[0]);
        o += StoreBytes(o, lanes[1], keep[1]);
        p += stop;
        if (refused) break;
    }
    text = p;
    out = o;
}

}  // namespace

void ZelEncodeBlocks(ZelTablePage page, const WORD* uni2Mb, const DWORD* fourByteCodes, const WCHAR*& text,
                     const WCHAR* end, BYTE*& out, const BYTE* outEnd) {
    switch (page) {
    case ZelTablePage::Kana932: return EncodeBlocks<ZelTablePage::Kana932>(uni2Mb, text, end, out);
    case ZelTablePage::Gb936: return Encode936Blocks(uni2Mb, fourByteCodes, text, end, out, outEnd);
    case ZelTablePage::Plain: break;
    }
    EncodeBlocks<ZelTablePage::Plain>(uni2Mb, text, end, out);
}

#endif  // ZEL_UTF_BLOCKS
