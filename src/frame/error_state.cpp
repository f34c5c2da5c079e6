// The calling thread's current error. Without a record (no thread slot, or no memory for one) the
// setters do nothing and the getters answer as for a thread without an error.
#include <cstring>

#include "frame/error_block.h"
#include "frame/thread_data.h"

namespace {
// Characters a message loaded by its string id may have.
constexpr int kMessageChars = 1024;
}

DWORD ZelGetError() {
    ZelThreadData* record = ZelGetThreadData();
    return record ? record->error.code : 0;
}

void ZelSetError(DWORD code) {
    if (ZelThreadData* record = ZelGetThreadData()) ZelFillBlock(&record->error, code, 0, nullptr, 0);
}

void ZelSetErrorEx(DWORD code, DWORD kind, const void* data, DWORD size) {
    if (ZelThreadData* record = ZelGetThreadData()) ZelFillBlock(&record->error, code, kind, data, size);
}

void ZelSetFileError(DWORD fileError, const WCHAR* fileName) {
    if (ZelThreadData* record = ZelGetThreadData()) ZelFillFileBlock(&record->error, fileError, fileName);
}

void ZelSetErrorMesg(const WCHAR* text) {
    if (ZelThreadData* record = ZelGetThreadData()) ZelFillTextBlock(&record->error, ZEL_ERROR_MESSAGE, 1, text);
}

void ZelSetErrorMesgID(HMODULE module, UINT stringId) {
    WCHAR text[kMessageChars];
    ZelLoadStringW(module, stringId, text, kMessageChars);
    ZelSetErrorMesg(text);
}

void ZelClearError() {
    if (ZelThreadData* record = ZelGetThreadData()) {
        record->error.code = 0;
        record->error.kind = 0;
    }
}

void ZelStoreError(ZelErrorInfo* block) {
    if (!block) return;
    if (ZelThreadData* record = ZelGetThreadData())
        memcpy(block, &record->error, sizeof *block);
    else
        memset(block, 0, sizeof *block);
}

void ZelRestoreError(const ZelErrorInfo* block) {
    if (!block) return;
    if (ZelThreadData* record = ZelGetThreadData()) memmove(&record->error, block, sizeof record->error);
}

BOOL ZelGetErrorDetail(ZelErrorDetail* detail) {
    ZelThreadData* record = ZelGetThreadData();
    return record ? ZelDescribeError(&record->error, detail) : FALSE;
}
