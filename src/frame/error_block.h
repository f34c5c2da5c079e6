// Filling an error block, shared by the current error and the warnings. Every copy keeps to the
// 1024 bytes of data: longer data is cut, and a text keeps its terminator within the block.
#ifndef ZEL_FRAME_ERROR_BLOCK_H
#define ZEL_FRAME_ERROR_BLOCK_H

#include <zel/frame.h>

// Characters of text that a block holds, without the terminator.
constexpr size_t kZelBlockTextChars = ZEL_ERROR_DATA_SIZE / sizeof(WCHAR) - 1;
// Characters of a file name behind the 32-bit file error number, without the terminator.
constexpr size_t kZelBlockFileNameChars = (ZEL_ERROR_DATA_SIZE - sizeof(DWORD)) / sizeof(WCHAR) - 1;

// code and kind; data only when the pointer and the size are both non-zero.
void ZelFillBlock(ZelErrorInfo* block, DWORD code, DWORD kind, const void* data, DWORD size);
// code and kind, and the text with its terminator in data (a null text is empty).
void ZelFillTextBlock(ZelErrorInfo* block, DWORD code, DWORD kind, const WCHAR* text);
// Code 10, kind 1: the file error number and the file name behind it.
void ZelFillFileBlock(ZelErrorInfo* block, DWORD fileError, const WCHAR* fileName);

// The file name that a file error block holds, and its error number.
DWORD ZelBlockFileError(const BYTE* data);
const WCHAR* ZelBlockFileName(const BYTE* data);

// Describes a block by its owner's callback into detail; 1 when the callback answered 0.
BOOL ZelDescribeError(const ZelErrorInfo* block, ZelErrorDetail* detail);

// The system's text for a system code, with insert as the message's first argument when given;
// TRUE when it wrote detail->text.
BOOL ZelFormatSystemError(const WCHAR* insert, DWORD code, ZelErrorDetail* detail);

#endif  // ZEL_FRAME_ERROR_BLOCK_H
