// Block decoding for the table path of the double-byte code pages: 64 bytes at a time in vector
// registers, chosen at run time (the processor's level is the one the UTF converters use). The
// walk one character at a time stays the reference: a block kernel only ever consumes what that
// walk would consume, with the same units, and leaves every other character to it.
#ifndef ZEL_CODETABLES_CODEPAGE_BLOCKS_H
#define ZEL_CODETABLES_CODEPAGE_BLOCKS_H

#include <zel/wintypes.h>

#include "strings/utf_blocks.h"

// How a page reads its bytes beyond a table read: 932 has its single half-width bytes, 936 its
// four-byte sequences.
enum class ZelTablePage { Plain, Kana932, Gb936 };

#if ZEL_UTF_BLOCKS
// Whether the kernels below may run: the processor has what they use and zel::utf::BlockLevel(),
// which tests lower, is 2 or more.
bool ZelCodePageBlocks();

// The decoding kernel, called only where ZelCodePageBlocks() holds, for a table of
// 0x10000 - first entries with first at or above 0x8000; unitsOfPlaces is Zel936UnitsOfPlaces()
// for 936. text lies at the start of a character; the kernel moves text and out past whole blocks
// while 64 bytes or more are left before end (a four-byte sequence of 936 that a block would cut
// starts the next one), and returns early at a character it leaves to the walk one at a time (the
// pair 0xFF 0xFF; for 936 a four-byte sequence of an odd shape, or a code that the table opens
// where the kernel reads two bytes, or the reverse). It reads text[0] to text[64] of each block,
// consumes at most 65 bytes a block, never writes more units than it consumes bytes and writes
// nothing behind out.
void ZelDecodeBlocks(ZelTablePage page, const WORD* mb2Uni, unsigned first, const WCHAR* unitsOfPlaces,
                     const BYTE*& text, const BYTE* end, WCHAR*& out);

// The encoding kernel, on the same terms, for a table of 65536 entries; fourByteCodes is
// Zel936FourByteCodes() for 936. It moves text and out past whole blocks of 32 units while 32 or
// more are left before end (the first half of a pair in a block's last lane starts the next
// block), and returns early at a unit it leaves to the walk one at a time (the unit 0xFFFF; for
// 936 a seventeenth unit in a block that may have a four-byte form), or before a block of 936
// whose four-byte codes would leave less room than the walk keeps: two bytes for every unit
// before end, which the room from out to outEnd must hold when the kernel is called. It writes
// nothing behind out.
void ZelEncodeBlocks(ZelTablePage page, const WORD* uni2Mb, const DWORD* fourByteCodes, const WCHAR*& text,
                     const WCHAR* end, BYTE*& out, const BYTE* outEnd);
#endif

#endif  // ZEL_CODETABLES_CODEPAGE_BLOCKS_H
