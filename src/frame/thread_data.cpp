#include "frame/thread_data.h"

#include <cstdlib>

#include "frame/own_module.h"
#include "platform/win32.h"

DWORD g_zelThreadSlot = TLS_OUT_OF_INDEXES;

// The message that says memory ran out.
static constexpr UINT kOutOfMemoryString = 275;

ZelThreadData* ZelPeekThreadData() {
    if (g_zelThreadSlot == TLS_OUT_OF_INDEXES) return nullptr;
    return static_cast<ZelThreadData*>(TlsGetValue(g_zelThreadSlot));
}

ZelThreadData* ZelGetThreadData() {
    if (g_zelThreadSlot == TLS_OUT_OF_INDEXES) return nullptr;
    if (auto* record = static_cast<ZelThreadData*>(TlsGetValue(g_zelThreadSlot))) return record;
    auto* record = static_cast<ZelThreadData*>(calloc(1, sizeof(ZelThreadData)));
    if (!record) {
        char text[128] = "";
        LoadStringA(g_zelOwnModule.resourceHandle, kOutOfMemoryString, text, sizeof text);
        MessageBoxA(nullptr, text, nullptr, MB_ICONHAND);
        return nullptr;
    }
    if (!TlsSetValue(g_zelThreadSlot, record)) {
        free(record);
        return nullptr;
    }
    return record;
}

void ZelFreeThreadData() {
    ZelThreadData* record = ZelPeekThreadData();
    if (!record) return;
    ZelClearWarning();
    free(record);
    TlsSetValue(g_zelThreadSlot, nullptr);
}
