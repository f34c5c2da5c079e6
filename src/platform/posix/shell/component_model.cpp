// The component model's calls. Objects are reached only from inside their own process, so a
// disconnection has no connections to cut.
#include "platform/win32.h"

HRESULT CoDisconnectObject(LPUNKNOWN /*unknown*/, DWORD /*reserved*/) { return S_OK; }
