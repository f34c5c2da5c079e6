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
// The decoding kernel, called only where zel::utf::BlockLevel() is 2 or more, for a table of
// 0x10000 - first entries with first at or above 0x8000; unitsOfPlaces is Zel936UnitsOfPlaces()
// for 936. text lies at the start of a character; the kernel moves text and out past whole blocks
// while 64 bytes or more are left before end, and returns early at a character it leaves to the
// walk one at a time (the pair 0xFF 0xFF; for 936 a four-byte sequence at a block's end, of an
// odd shape, or one that the table does not open as the kernel reads it). It reads text[0] to
// text[64] of each block, consumes at most 65 bytes a block, never writes more units than it
// consumes bytes and writes nothing behind out.
void ZelDecodeBlocks(ZelTablePage page, const WORD* mb2Uni, unsigned first, const WCHAR* unitsOfPlaces,
                     const BYTE*& text, const BYTE* end, WCHAR*& out);

// The encoding kernel, on the same terms, for a table of 65536 entries; fourByteCodes is
// Zel936FourByteCodes() for 936. It moves text and out past whole blocks of 32 units while 32 or
// more are left before end, and returns early at a unit it leaves to the walk one at a time (the
// unit 0xFFFF; for 936 a unit whose code is the marker without a four-byte form, among them the
// halves of pairs). The room from out to outEnd must hold two bytes for every unit before end, and
// still does when the kernel returns.
void ZelEncodeBlocks(ZelTablePage page, const WORD* uni2Mb, const DWORD* fourByteCodes, const WCHAR*& text,
                     const WCHAR* end, BYTE*& out, const BYTE* outEnd);
#endif

#endif  // ZEL_CODETABLES_CODEPAGE_BLOCKS_H
