// Whether the bidi walks may use registers of sixteen bytes: SSE2, which every x86-64 processor
// has. Elsewhere the walks take their plain loops, which give the same results.
#ifndef ZEL_BIDI_BIDI_SIMD_H
#define ZEL_BIDI_BIDI_SIMD_H

#if defined(__SSE2__)
#include <emmintrin.h>
#define ZEL_BIDI_SSE2 1
#else
#define ZEL_BIDI_SSE2 0
#endif

#endif  // ZEL_BIDI_BIDI_SIMD_H
