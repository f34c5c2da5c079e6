// CZelIniManager::LoadCfgFromFile: the whole file into one buffer of 16-bit units, checked for the
// byte order mark and the header, then parsed. The buffer has a zero unit behind the text, and
// behind a last odd byte, so that the string functions stop inside it.
#include <zel/frame.h>
#include <zel/paths.h>
#include <zel/settings.h>

#include <bit>
#include <cstdlib>

#include "settings/ini_internal.h"
#include "strings/wstr.h"

namespace {

// The units are little-endian in the file.
void ToHostOrder(WCHAR* units, size_t count) {
    if constexpr (std::endian::native == std::endian::big) {
        for (size_t index = 0; index < count; ++index)
            units[index] = static_cast<WCHAR>((units[index] >> 8) | (units[index] << 8));
    } else {
        (void)units;
        (void)count;
    }
}

}  // namespace

int CZelIniManager::CheckHeaderInfo() {
    if (headerInfo.empty() || !streamOpen || !readCursor) return 1;
    return wcsncmp(readCursor, headerInfo.c_str(), headerInfo.size()) == 0 ? 1 : 0;
}

LONG CZelIniManager::LoadCfgFromFile(const WCHAR* path) {
    ZelPathToAbsolute(path ? path : u"", filePath);
    stream = u__wfopen(filePath, u"rb");
    if (!stream) {
        ZelClearError();
        return 3;
    }
    streamOpen = 1;

    long size = -1;
    if (std::fseek(stream, 0, SEEK_END) == 0) size = std::ftell(stream);
    // Sizes are kept in 32 bits: a file of 2 GB or more is not to be had either.
    if (size < 0 || size >= 0x7FFFFFFFL || std::fseek(stream, 0, SEEK_SET) != 0) {
        _ReleaseRead();
        return 2;
    }
    fileSize = static_cast<LONG>(size);

    const size_t units = (static_cast<size_t>(fileSize) + 1) / 2 + 1;
    readBuffer = static_cast<WCHAR*>(std::calloc(units, sizeof(WCHAR)));
    if (!readBuffer) {
        ZelSetError(kZelIniOutOfMemory);
        _ReleaseRead();
        return 2;
    }
    const size_t read = std::fread(readBuffer, 1, static_cast<size_t>(fileSize), stream);
    if (read < static_cast<size_t>(fileSize) && !std::feof(stream)) {
        _ReleaseRead();
        return 2;
    }
    ToHostOrder(readBuffer, units);

    if (readBuffer[0] != kZelIniByteOrderMark) {
        _ReleaseRead();
        return 5;
    }
    readCursor = readBuffer + 1;
    if (!CheckHeaderInfo()) {
        _ReleaseRead();
        return 4;
    }

    const int parsed = _LoadCfgInfo();
    _ReleaseRead();
    if (!parsed) return 2;
    modified = 0;
    return 0;
}
