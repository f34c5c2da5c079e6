// Block transcoding for the UTF-8 and UTF-16 converters, and the scalar converters that it
// stands beside. Internal to src/strings/ and to the tests.
//
// The exported converters take plainly valid text a vector register at a time and leave
// everything else (any error, a cut or four-byte sequence, a surrogate, the last bytes of the
// source, a short target) to the scalar code, which stays the reference: the block kernels only
// ever consume what the scalar code would consume with the very same result, so the exported
// converters and the scalar ones below give the same status, the same pointers and the same units
// on every input. Neither writes anything behind the target pointer that it returns.
#ifndef ZEL_STRINGS_UTF_BLOCKS_H
#define ZEL_STRINGS_UTF_BLOCKS_H

#include <zel/strings.h>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define ZEL_UTF_BLOCKS 1
#else
#define ZEL_UTF_BLOCKS 0
#endif

namespace zel::utf {

// The converters without block transcoding.
ZelConvResult ScalarUTF8toUTF16(const ZelUTF8** source, const ZelUTF8* sourceEnd, ZelUTF16** target,
                                ZelUTF16* targetEnd, DWORD flags);
ZelConvResult ScalarUTF16toUTF8(const ZelUTF16** source, const ZelUTF16* sourceEnd, ZelUTF8** target,
                                ZelUTF8* targetEnd, DWORD flags);

// The widest block kernels this processor runs: 0 none, 1 AVX2, 2 AVX-512 (with VBMI2); asked
// once, then remembered.
int BlockLevel();
inline bool BlocksAvailable() { return BlockLevel() > 0; }

// Holds the kernels at or below level, so that tests reach each of them; the processor's own
// level still bounds it.
void LimitBlockLevel(int level);

#if ZEL_UTF_BLOCKS
// The kernels, called only where BlocksAvailable() holds, from the fast loop of the converters
// (see RunConverter): fastEnd has at least 8 more source units behind it and the target has room
// for what fastEnd - src + 8 source units give at the most. Each moves src and tgt past whole
// blocks of plainly valid text and returns at the first block that holds anything else, or when
// fewer than 32 source units (UTF-8) or 8 (UTF-16) are left before fastEnd.
void Utf8ToUtf16Blocks(const ZelUTF8*& src, const ZelUTF8* fastEnd, ZelUTF16*& tgt);
void Utf16ToUtf8Blocks(const ZelUTF16*& src, const ZelUTF16* fastEnd, ZelUTF8*& tgt);
#endif

}  // namespace zel::utf

#endif  // ZEL_STRINGS_UTF_BLOCKS_H
