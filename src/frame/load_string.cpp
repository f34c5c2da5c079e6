// Strings of a module's string table. ZelLoadStringW reads the table itself: a block of 16
// strings, each a 16-bit length followed by its units, and every read stays within the block's
// size, so a damaged block reads as a missing string.
#include <zel/frame.h>
#include <zel/strings.h>

#include "platform/win32.h"

namespace {

constexpr UINT kStringsPerBlock = 16;
constexpr UINT kHighestStringId = 0xFFFF;

WORD UnitAt(const BYTE* bytes, DWORD offset) { return static_cast<WORD>(bytes[offset] | bytes[offset + 1] << 8); }

int Empty(WCHAR* buffer) {
    buffer[0] = 0;
    return 0;
}

}  // namespace

int ZelLoadStringW(HMODULE module, UINT id, WCHAR* buffer, int size) {
    if (!buffer || size <= 0) return 0;
    if (size == 1 || id > kHighestStringId) return Empty(buffer);
    HRSRC block = FindResourceA(module, MAKEINTRESOURCEA((id >> 4) + 1), RT_STRING);
    if (!block) return Empty(buffer);
    const BYTE* bytes = static_cast<const BYTE*>(LoadResource(module, block));
    const DWORD blockSize = SizeofResource(module, block);
    if (!bytes) return Empty(buffer);

    DWORD offset = 0;
    for (UINT skip = id % kStringsPerBlock; skip > 0; --skip) {
        if (blockSize - offset < 2) return Empty(buffer);
        offset += 2 + 2 * static_cast<DWORD>(UnitAt(bytes, offset));
        if (offset > blockSize) return Empty(buffer);
    }
    if (blockSize - offset < 2) return Empty(buffer);
    DWORD length = UnitAt(bytes, offset);
    offset += 2;
    if (length > (blockSize - offset) / 2) return Empty(buffer);
    if (length > static_cast<DWORD>(size - 1)) length = static_cast<DWORD>(size - 1);
    if (length == 0) return Empty(buffer);
    for (DWORD i = 0; i < length; ++i) buffer[i] = UnitAt(bytes, offset + 2 * i);
    buffer[length] = 0;
    // Escapes are decoded after the cut: an escape cut in two stays as text.
    return ZelHexChrToUniStr(buffer, buffer);
}

int ZelLoadStringExW(ZelModuleDef* module, UINT id, WCHAR* buffer, int size) {
    if (!module) return buffer && size > 0 ? Empty(buffer) : 0;
    int length = 0;
    if (module->resourceHandle) length = ZelLoadStringW(module->resourceHandle, id, buffer, size);
    if (length == 0) length = ZelLoadStringW(module->moduleHandle, id, buffer, size);
    return length;
}

int ZelLoadStringExA(ZelModuleDef* module, UINT id, char* buffer, int size) {
    if (!module) {
        if (buffer && size > 0) buffer[0] = 0;
        return 0;
    }
    int length = 0;
    if (module->resourceHandle) length = LoadStringA(module->resourceHandle, id, buffer, size);
    if (length == 0) length = LoadStringA(module->moduleHandle, id, buffer, size);
    return length;
}
