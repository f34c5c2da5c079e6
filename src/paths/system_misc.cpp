// Small system queries: the volume serial number, a rounding multiply-divide, the window map.
#include <zel/paths.h>

#include "paths/os/ansi_text.h"
#include "platform/win32.h"
#include "strings/wstr.h"
#include "platform/process_object.h"

DWORD ZelGetVolumeSerialNumber(const WCHAR* path) {
    if (!path || !*path) return 0;
    WCHAR drive[_MAX_DRIVE];
    _wsplitpath(path, drive, nullptr, nullptr, nullptr);
    WCHAR root[8];
    _snwprintf(root, 8, u"%s\\", drive);
    DWORD serial = 0;
    if (!GetVolumeInformationA(ZelNarrowArg(root).get(), nullptr, 0, &serial, nullptr, nullptr, nullptr, 0)) return 0;
    return serial;
}

// Rounds half away from zero for a positive divisor. A divisor of 0 gives 0, and a quotient beyond
// 32 bits its low 32 bits: the caller keeps to the range.
int ZelIntMulDiv(int a, int b, int c) {
    if (c == 0) return 0;
    long long product = static_cast<long long>(a) * b;
    long long half = c >> 1;
    product = product < 0 ? product - half : product + half;
    return static_cast<int>(static_cast<unsigned long long>(product / c));
}

namespace {

constinit ZelProcessObject<std::map<HWND, void*>> windowMap;

}  // namespace

std::map<HWND, void*>& GetWMSWindowMap() { return *windowMap; }
