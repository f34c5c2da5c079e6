// The block kernel of the table path's decoder, in AVX-512.
//
// Where the characters start follows from one bit a byte: h, the byte would open a double-byte
// code if a character started there (at or above the first code with the byte behind it, and for
// 932 outside the half-width bytes). The byte behind a byte without h always starts a character,
// so a byte is the second of a code exactly when an odd run of h bytes stands before it; one
// subtraction over the 64 bits of a block finds those runs. Each start then gets its unit: the
// byte itself, or for an opening byte the table entry of the code that it and the byte behind it
// make, gathered sixteen at a time; a compress puts the units of the starts side by side.
#include "codetables/codepage_blocks.h"

#include <cstdint>

#include "codetables/code_tables.h"

#if ZEL_UTF_BLOCKS
#include <immintrin.h>

namespace {

#define ZEL_AVX512 __attribute__((target("avx2,popcnt,bmi,bmi2,avx512f,avx512bw,avx512vbmi2")))

// The 32-bit shifts go through their masked forms: the plain ones start from an undefined value,
// which g++ 12 warns of.
constexpr __mmask16 kAll16 = 0xFFFF;
constexpr uint64_t kOddBits = 0xAAAAAAAAAAAAAAAAull;
// Code page 932 reads 0xA0 to 0xDF as U+FF60 to U+FF9F.
constexpr short kHalfWidthOffset = short(0xFEC0);

// The units of the 32 bytes from p, one starting at each of them; leads marks the opening bytes.
// A table read that the kernel must not make (the entry behind the last one, for the code 0xFFFF)
// leaves its lane to be refused.
template <ZelTablePage kPage>
ZEL_AVX512 inline __m512i UnitsOf(const BYTE* p, __mmask32 leads, const WORD* table, unsigned first,
                                  __mmask32& refused) {
    const __m512i b = _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
    const __m512i n = _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 1)));
    const __m512i code = _mm512_or_si512(_mm512_slli_epi16(b, 8), n);
    const __mmask32 last = _mm512_cmpeq_epi16_mask(code, _mm512_set1_epi16(-1)) & leads;
    const uint32_t reads = leads & ~last;
    // The even lanes' indexes in the low halves of 32-bit lanes, the odd lanes' in the high.
    const __m512i index = _mm512_sub_epi16(code, _mm512_set1_epi16(short(first)));
    const __m512i zero = _mm512_setzero_si512();
    const __m512i even = _mm512_mask_i32gather_epi32(zero, __mmask16(_pext_u32(reads, 0x55555555u)),
                                                     _mm512_and_si512(index, _mm512_set1_epi32(0xFFFF)), table, 2);
    const __m512i odd = _mm512_mask_i32gather_epi32(zero, __mmask16(_pext_u32(reads, 0xAAAAAAAAu)),
                                                    _mm512_maskz_srli_epi32(kAll16, index, 16), table, 2);
    const __m512i entries = _mm512_mask_blend_epi16(__mmask32(0xAAAAAAAAu), even, _mm512_maskz_slli_epi32(kAll16, odd, 16));
    __m512i single = b;
    if constexpr (kPage == ZelTablePage::Kana932) {
        const __mmask32 halfWidth = _mm512_cmpge_epu16_mask(b, _mm512_set1_epi16(0xA0)) &
                                    _mm512_cmple_epu16_mask(b, _mm512_set1_epi16(0xDF));
        single = _mm512_mask_add_epi16(b, halfWidth, b, _mm512_set1_epi16(kHalfWidthOffset));
    }
    const __m512i units = _mm512_mask_blend_epi16(leads, single, entries);
    refused = last;
    if constexpr (kPage == ZelTablePage::Gb936)
        refused |= _mm512_cmpeq_epi16_mask(units, _mm512_set1_epi16(short(kZel936OpenerMarker))) & leads;
    return units;
}

// Writes the units of the starts below `before` and gives how many.
ZEL_AVX512 inline unsigned Store(WCHAR* out, __m512i units, __mmask32 starts) {
    const unsigned count = unsigned(__builtin_popcount(starts));
    _mm512_mask_storeu_epi16(out, __mmask32((uint64_t(1) << count) - 1), _mm512_maskz_compress_epi16(starts, units));
    return count;
}

template <ZelTablePage kPage>
ZEL_AVX512 void DecodeBlocks(const WORD* table, unsigned first, const BYTE*& text, const BYTE* end, WCHAR*& out) {
    const BYTE* p = text;
    WCHAR* o = out;
    const __m512i firstHigh = _mm512_set1_epi8(char(first >> 8));
    const __m512i firstLow = _mm512_set1_epi8(char(first & 0xFF));
    while (end - p >= 64) {
        const __m512i bytes = _mm512_loadu_si512(p);
        const __mmask64 high = _mm512_movepi8_mask(bytes);
        if (!high) {
            _mm512_storeu_si512(o, _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))));
            _mm512_storeu_si512(o + 32,
                                _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 32))));
            p += 64;
            o += 64;
            continue;
        }
        const __m512i next = _mm512_loadu_si512(p + 1);
        uint64_t h = _mm512_cmpgt_epu8_mask(bytes, firstHigh) |
                     (_mm512_cmpeq_epi8_mask(bytes, firstHigh) & _mm512_cmpge_epu8_mask(next, firstLow));
        if constexpr (kPage == ZelTablePage::Kana932)
            h &= ~(_mm512_cmpge_epu8_mask(bytes, _mm512_set1_epi8(char(0xA0))) &
                   _mm512_cmple_epu8_mask(bytes, _mm512_set1_epi8(char(0xDF))));
        // Runs of h: every second byte from the start of a run opens a code.
        const uint64_t runs = (((h << 1) | kOddBits) - h) ^ kOddBits;
        const uint64_t leads = runs & h;
        const uint64_t starts = ~(runs ^ h);
        for (int half = 0; half < 2; ++half) {
            __mmask32 refused;
            const __m512i units = UnitsOf<kPage>(p + 32 * half, __mmask32(leads >> 32 * half), table, first, refused);
            __mmask32 keep = __mmask32(starts >> 32 * half);
            if (refused) {
                // Up to the first character left to the walk one at a time.
                const unsigned at = unsigned(__builtin_ctz(refused));
                o += Store(o, units, keep & __mmask32((1u << at) - 1));
                text = p + 32 * half + at;
                out = o;
                return;
            }
            o += Store(o, units, keep);
        }
        // A code opened by the last byte ends behind the block.
        p += 64 + (leads >> 63);
    }
    text = p;
    out = o;
}

}  // namespace

void ZelDecodeBlocks(ZelTablePage page, const WORD* mb2Uni, unsigned first, const BYTE*& text, const BYTE* end,
                     WCHAR*& out) {
    switch (page) {
    case ZelTablePage::Kana932: return DecodeBlocks<ZelTablePage::Kana932>(mb2Uni, first, text, end, out);
    case ZelTablePage::Gb936: return DecodeBlocks<ZelTablePage::Gb936>(mb2Uni, first, text, end, out);
    case ZelTablePage::Plain: break;
    }
    DecodeBlocks<ZelTablePage::Plain>(mb2Uni, first, text, end, out);
}

#endif  // ZEL_UTF_BLOCKS
