// The calling thread's warnings: a ring of four slots, one always free, so three warnings at most;
// a fourth drops the oldest.
#include <cstdlib>

#include "frame/error_block.h"
#include "frame/thread_data.h"

namespace {

constexpr int kMessageChars = 1024;

DWORD Next(DWORD slot) { return (slot + 1) % ZEL_WARNING_SLOTS; }

bool Empty(const ZelThreadData* record) { return record->head == record->tail; }

// A new zeroed block, allocated so that a failing allocation cannot touch the current error.
ZelErrorInfo* NewWarning(ZelThreadData* record) {
    ZelErrorInfo saved = record->error;
    auto* block = static_cast<ZelErrorInfo*>(calloc(1, sizeof(ZelErrorInfo)));
    record->error = saved;
    return block;
}

void RemoveOldest(ZelThreadData* record) {
    free(record->warnings[record->head]);
    record->warnings[record->head] = nullptr;
    record->head = Next(record->head);
}

void Enqueue(ZelThreadData* record, ZelErrorInfo* block) {
    if (Next(record->tail) == record->head) RemoveOldest(record);
    record->warnings[record->tail] = block;
    record->tail = Next(record->tail);
}

}  // namespace

BOOL ZelSetWarningEx(DWORD code, DWORD kind, const void* data, DWORD size) {
    ZelThreadData* record = ZelGetThreadData();
    if (!record) return FALSE;
    ZelErrorInfo* block = NewWarning(record);
    if (!block) return FALSE;
    ZelFillBlock(block, code, kind, data, size);
    Enqueue(record, block);
    return TRUE;
}

BOOL ZelSetWarning(DWORD code) { return ZelSetWarningEx(code, 0, nullptr, 0); }

void ZelSetWarningMesg(const WCHAR* text) {
    ZelThreadData* record = ZelGetThreadData();
    if (!record) return;
    ZelErrorInfo* block = NewWarning(record);
    if (!block) return;
    ZelFillTextBlock(block, ZEL_ERROR_MESSAGE, 1, text);
    Enqueue(record, block);
}

void ZelSetWarningMesgID(HMODULE module, UINT stringId) {
    WCHAR text[kMessageChars];
    ZelLoadStringW(module, stringId, text, kMessageChars);
    ZelSetWarningMesg(text);
}

DWORD ZelGetWarning(BOOL remove) {
    ZelThreadData* record = ZelGetThreadData();
    if (!record || Empty(record)) return 0;
    DWORD code = record->warnings[record->head]->code;
    if (remove) RemoveOldest(record);
    return code;
}

BOOL ZelGetWarningDetail(ZelErrorDetail* detail, BOOL remove) {
    ZelThreadData* record = ZelGetThreadData();
    if (!record || Empty(record)) return FALSE;
    BOOL described = ZelDescribeError(record->warnings[record->head], detail);
    if (remove) RemoveOldest(record);
    return described;
}

void ZelClearWarning() {
    ZelThreadData* record = ZelGetThreadData();
    if (!record) return;
    while (!Empty(record)) RemoveOldest(record);
}
