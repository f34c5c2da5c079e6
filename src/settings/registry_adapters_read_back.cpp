#include "settings/registry_adapters_read_back.h"

#include <zel/strings.h>

#include <climits>

#include "paths/os/ansi_text.h"
#include "strings/wstr.h"

namespace {

template <typename Length>
void GiveBack(const char* ansi, size_t ansiBytes, WCHAR* buffer, Length* length) {
    if (!buffer && !length) return;
    const ZelWideResult wide(ansi, ansiBytes);
    if (buffer && length) {
        const long long wanted = *length;
        const int size = wanted > INT_MAX ? INT_MAX : static_cast<int>(wanted);
        ustrlcpy(buffer, wide.get(), size);
        // A size of 0 writes nothing, not even a terminator, so nothing may be measured then.
        *length = size == 0 ? 0 : static_cast<Length>(wcslen(buffer));
    } else if (buffer) {
        wcscpy(buffer, wide.get());
    } else {
        *length = static_cast<Length>(wcslen(wide.get()));
    }
}

}  // namespace

void ZelGiveNameBack(const char* ansi, size_t ansiBytes, WCHAR* buffer, DWORD* length) {
    GiveBack(ansi, ansiBytes, buffer, length);
}

void ZelGiveNameBack(const char* ansi, size_t ansiBytes, WCHAR* buffer, LONG* length) {
    GiveBack(ansi, ansiBytes, buffer, length);
}
