#include "frame/error_block.h"

#include <cstring>


namespace {

// Copies at most maxChars characters of text and a terminator to dest, which is byte-addressed
// and need not be aligned for 16-bit units.
void CopyText(BYTE* dest, const WCHAR* text, size_t maxChars) {
    size_t length = 0;
    if (text)
        while (length < maxChars && text[length]) ++length;
    if (length) memmove(dest, text, length * sizeof(WCHAR));
    const WCHAR terminator = 0;
    memcpy(dest + length * sizeof(WCHAR), &terminator, sizeof terminator);
}

}  // namespace

void ZelFillBlock(ZelErrorInfo* block, DWORD code, DWORD kind, const void* data, DWORD size) {
    block->code = code;
    block->kind = kind;
    if (data && size) memmove(block->data, data, size < ZEL_ERROR_DATA_SIZE ? size : ZEL_ERROR_DATA_SIZE);
}

void ZelFillTextBlock(ZelErrorInfo* block, DWORD code, DWORD kind, const WCHAR* text) {
    block->code = code;
    block->kind = kind;
    CopyText(block->data, text, kZelBlockTextChars);
}

void ZelFillFileBlock(ZelErrorInfo* block, DWORD fileError, const WCHAR* fileName) {
    block->code = ZEL_ERROR_FILE;
    block->kind = 1;
    memcpy(block->data, &fileError, sizeof fileError);
    CopyText(block->data + sizeof fileError, fileName, kZelBlockFileNameChars);
}

DWORD ZelBlockFileError(const BYTE* data) {
    DWORD fileError;
    memcpy(&fileError, data, sizeof fileError);
    return fileError;
}

const WCHAR* ZelBlockFileName(const BYTE* data) { return reinterpret_cast<const WCHAR*>(data + sizeof(DWORD)); }

BOOL ZelDescribeError(const ZelErrorInfo* block, ZelErrorDetail* detail) {
    if (!block || block->code == 0 || !detail) return FALSE;
    detail->code = block->code;
    detail->kind = block->kind;
    memcpy(detail->data, block->data, sizeof detail->data);
    detail->text[0] = 0;
    detail->text2[0] = 0;
    detail->extra = 0;
    // System and run-time codes, and the small plain ones, belong to the library itself.
    LONG moduleId = 0, subModuleId = 0;
    if (!(block->code & (ZEL_ERROR_SYSTEM_BIT | ZEL_ERROR_RUNTIME_BIT))) {
        moduleId = static_cast<LONG>(ZEL_ERROR_MODULE(block->code));
        subModuleId = static_cast<LONG>(ZEL_ERROR_SUBMODULE(block->code));
    }
    ZelModuleDef* module = ZelGetModuleDef(moduleId);
    if (!module) return FALSE;
    ZelSubModuleFunc func = ZelGetSubModuleFunc(module, subModuleId);
    if (!func) return FALSE;
    return func(module, subModuleId, ZEL_SUBMODULE_DESCRIBE, detail, 0) == 0 ? TRUE : FALSE;
}
