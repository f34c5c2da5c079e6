// What the block kernels of the table path share: their target, and the read of 16-bit table
// entries at 16-bit indexes, sixteen at a time. Internal to the kernels' sources.
#ifndef ZEL_CODETABLES_CODEPAGE_BLOCK_KERNELS_H
#define ZEL_CODETABLES_CODEPAGE_BLOCK_KERNELS_H

#include <zel/wintypes.h>

#include <cstdint>

#include "codetables/codepage_blocks.h"

#if ZEL_UTF_BLOCKS
#include <immintrin.h>

#define ZEL_AVX512 __attribute__((target("avx2,popcnt,bmi,bmi2,avx512f,avx512bw,avx512vbmi2")))

namespace zel::codepage {

// The 32-bit shifts go through their masked forms: the plain ones start from an undefined value,
// which g++ 12 warns of.
constexpr __mmask16 kAll16 = 0xFFFF;

// The entries of table at the 16-bit indexes of the lanes that reads marks, 0 in the others. An
// entry is read as 32 bits, with the one behind it: the caller leaves the last entry out.
ZEL_AVX512 inline __m512i Entries(const WORD* table, __m512i indexes, uint32_t reads) {
    // The even lanes' indexes in the low halves of 32-bit lanes, the odd lanes' in the high.
    const __m512i zero = _mm512_setzero_si512();
    const __m512i even = _mm512_mask_i32gather_epi32(zero, __mmask16(_pext_u32(reads, 0x55555555u)),
                                                     _mm512_and_si512(indexes, _mm512_set1_epi32(0xFFFF)), table, 2);
    const __m512i odd = _mm512_mask_i32gather_epi32(zero, __mmask16(_pext_u32(reads, 0xAAAAAAAAu)),
                                                    _mm512_maskz_srli_epi32(kAll16, indexes, 16), table, 2);
    return _mm512_mask_blend_epi16(__mmask32(0xAAAAAAAAu), even, _mm512_maskz_slli_epi32(kAll16, odd, 16));
}

}  // namespace zel::codepage

#endif  // ZEL_UTF_BLOCKS

#endif  // ZEL_CODETABLES_CODEPAGE_BLOCK_KERNELS_H
